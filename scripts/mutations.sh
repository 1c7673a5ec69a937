#!/usr/bin/env bash
# A mutation check of the test suite: each mutation below changes one line of the library or the
# tool, the changed tree is rebuilt incrementally and the suite runs until its first failure. A
# mutation the suite fails on is caught; one it passes is missed. A mutation that does not change
# exactly one line is reported and makes the script fail (after the others have run); -check
# as the first argument only tries every mutation's text, without building. Every file is restored after its
# mutation, and on exit whatever happens.
#   scripts/mutations.sh [build-dir] [filter] [labels-to-exclude]
# The source tree is mutated in place: run it on a copy (git archive HEAD | tar -x -C copy) when
# others edit the tree meanwhile. filter keeps only the mutations whose name matches it;
# labels-to-exclude (a ctest label regex, such as "package") leaves those tests out of the
# mutated runs, which can only lower the count caught.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-mutation}
filter=${2:-.}
exclude=()
if [ -n "${3:-}" ]; then exclude=(-LE "$3"); fi

# name | file | sed substitution. It is found by its text: it must change exactly one line of the
# file, or the script fails (a mutation that no longer matches the code checks nothing).
mutations=(
  "uint32 upper bound off by one|zelk/configuration/impl/Convert.cpp|s/4294967295ULL/4294967294ULL/"
  "int32 lower bound flipped to inclusive|zelk/configuration/impl/Convert.cpp|s/value < -2147483648LL/value <= -2147483648LL/"
  "database id limit off by one|zelk/configuration/impl/Convert.cpp|s/database > 65534/database > 65535/"
  "container id message word|zelk/configuration/impl/Convert.cpp|s/container id cannot/container id can not/"
  "command line parsed from argv[0]|zelk/configuration/impl/CommandLineValueProviderImpl.cpp|s/int i = 1;/int i = 0;/"
  "abbreviation option flipped|zelk/configuration/impl/CommandLineValueProviderImpl.cpp|s/EXACT_FLAG_NAMES) == 0/EXACT_FLAG_NAMES) != 0/"
  "help description width off by one|zelk/configuration/impl/HelpGenerator.cpp|s/mNameColumnWidth - 1/mNameColumnWidth - 2/"
  "help name column counts one space more|zelk/configuration/impl/HelpGenerator.cpp|s/strlen(valueName) + 1/strlen(valueName) + 2/"
  "usage one-of separator|zelk/configuration/impl/UsageGenerator.cpp|s/\" | \"/\"|\"/"
  "usage value name shown for flags only|zelk/configuration/impl/UsageGenerator.cpp|s/!= Parameter::BOOL/== Parameter::BOOL/"
  "listener removal reported backwards|zelk/configuration/impl/ListenerManager.cpp|s/if (path.back()->listeners.erase(listener) == 0) {/if (path.back()->listeners.erase(listener) != 0) {/"
  "listener add without lock|zelk/configuration/impl/ListenerManager.cpp|/ListenerManager::addListener(/,/^}/s/boost::recursive_mutex::scoped_lock lock(mMutex);/;/"
  "value group add without lock|zelk/configuration/impl/ValueGroupState.cpp|/^void ValueGroupState::add(/,/^}/s/WriteGuard lock(mMutex);/;/"
  "merge of bounded containers flipped|zelk/configuration/impl/ValueGroupMerger.cpp|s/!container->isUnbounded() \&\& existing/container->isUnbounded() \&\& existing/"
  "merge appends bounded values|zelk/configuration/impl/ValueGroupMerger.cpp|s/(ref->isUnbounded())/(!ref->isUnbounded())/"
  "required flag message word|zelk/configuration/impl/RequiredGroupItemValidator.cpp|s/following flags: /following flag: /"
  "one-of message conjunction|zelk/configuration/impl/OneOfValidator.cpp|s/\" and \"/\" or \"/"
  "line wrap at exact width|zelk/util/StringUtil.cpp|s/!(lineWidth > sum)/!(lineWidth >= sum)/"
  "UTF-8 two-byte range off by one|zelk/util/UtfUtil.cpp|s/^  if (cp < 0x800)/  if (cp <= 0x800)/"
  "XML line count on CR LF flipped|zelk/host/XmlTokenReader.cpp|s/mData\[i + 1\] != '\\\\n'/mData[i + 1] == '\\\\n'/"
  "XML character reference limit off by one|zelk/host/XmlTokenReader.cpp|s/valid = cp <= 0x10FFFF;/valid = cp < 0x10FFFF;/"
  "registry nesting message word|zelk/configuration/impl/ConfigurationRegistryLoaderImpl.cpp|s/nested deeper than/nested more than/"
  "uint32 read checks the int32 type|zelk/configuration/impl/ValueState.cpp|s/Parameter::UINT32, asUInt32/Parameter::INT32, asUInt32/"
  "zelk-config one-of child count|tools/zelk-config/RegistryChecker.cpp|s/oneOf.getNumberOfItems() < 2/oneOf.getNumberOfItems() < 1/"
  "zelk-config values skip disabled providers flipped|tools/zelk-config/SourceTracker.cpp|s/if (!provider->getEnabled()) continue;/if (provider->getEnabled()) continue;/"
)

saved=$(mktemp -d)
current=""
restore() {
  if [ -n "$current" ]; then cp "$saved/original" "$root/$current"; current=""; fi
}
trap 'restore; rm -rf "$saved"' EXIT

# Applies one mutation to its file (saved first); prints nothing and succeeds when exactly one
# line changed, else says what went wrong, restores the file and fails.
apply() {
  local name=$1 file=$2 expression=$3 changed
  if [ ! -f "$root/$file" ]; then
    echo "NOT APPLIED  $name ($file does not exist)"
    return 1
  fi
  cp "$root/$file" "$saved/original"
  current=$file
  sed -i -e "$expression" "$root/$file"
  changed=$(diff "$saved/original" "$root/$file" | grep -c '^<' || true)
  if [ "$changed" != 1 ]; then
    echo "NOT APPLIED  $name ($file: $changed lines would change, 1 expected)"
    restore
    return 1
  fi
}

unapplied=0
if [ "${1:-}" = "-check" ]; then
  for entry in "${mutations[@]}"; do
    IFS='|' read -r name file expression <<<"$entry"
    if apply "$name" "$file" "$expression"; then restore; else unapplied=$((unapplied + 1)); fi
  done
  echo "$((${#mutations[@]} - unapplied)) of ${#mutations[@]} mutations apply"
  [ "$unapplied" = 0 ]
  exit
fi

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
  -DZELK_BUILD_BENCH=OFF -DZELK_INSTALL=OFF -DCMAKE_LINK_DEPENDS_NO_SHARED=ON >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null
ctest --test-dir "$build" -j "$(nproc)" >/dev/null ||
  { echo "the unmutated suite fails: fix that first" >&2; exit 1; }

caught=0
total=0
for entry in "${mutations[@]}"; do
  IFS='|' read -r name file expression <<<"$entry"
  [[ "$name" =~ $filter ]] || continue
  if ! apply "$name" "$file" "$expression"; then
    unapplied=$((unapplied + 1))
    continue
  fi
  total=$((total + 1))
  if ! cmake --build "$build" -j "$(nproc)" >"$saved/build.log" 2>&1; then
    verdict="caught (does not build)"
  elif ctest --test-dir "$build" -j "$(nproc)" --stop-on-failure --timeout 120 "${exclude[@]}" \
      >"$saved/test.log" 2>&1; then
    verdict="MISSED"
  else
    failed=$(grep -m1 -oE '[0-9]+ - [^ ]+ \((Failed|Timeout|SEGFAULT|Subprocess aborted|Exception)\)' \
      "$saved/test.log" || true)
    verdict="caught by ${failed:-a failing test}"
  fi
  [ "$verdict" = MISSED ] || caught=$((caught + 1))
  printf '%-52s %s\n' "$name" "$verdict"
  restore
done
# The last restored file is rebuilt, so the build tree matches the sources again.
cmake --build "$build" -j "$(nproc)" >/dev/null
echo "caught $caught of $total mutations"
if [ "$unapplied" != 0 ]; then
  echo "$unapplied mutations could not be applied: re-target them to the code as it is now" >&2
  exit 1
fi
