#!/usr/bin/env bash
# A mutation check of the test suite: each mutation below changes one line of the library or the
# tool, the changed tree is rebuilt incrementally and the suite runs until its first failure. A
# mutation the suite fails on is caught; one it passes is missed. Every file is restored after its
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

# name | file | line | sed substitution applied to that line only
mutations=(
  "uint32 upper bound off by one|zelk/configuration/impl/Convert.cpp|133|s/4294967295ULL/4294967294ULL/"
  "int32 lower bound flipped to inclusive|zelk/configuration/impl/Convert.cpp|121|s/value < -2147483648LL/value <= -2147483648LL/"
  "database id limit off by one|zelk/configuration/impl/Convert.cpp|178|s/database > 65534/database > 65535/"
  "container id message word|zelk/configuration/impl/Convert.cpp|188|s/container id cannot/container id can not/"
  "command line parsed from argv[0]|zelk/configuration/impl/CommandLineValueProviderImpl.cpp|82|s/int i = 1;/int i = 0;/"
  "abbreviation option flipped|zelk/configuration/impl/CommandLineValueProviderImpl.cpp|80|s/EXACT_FLAG_NAMES) == 0/EXACT_FLAG_NAMES) != 0/"
  "help description width off by one|zelk/configuration/impl/HelpGenerator.cpp|81|s/mNameColumnWidth - 1/mNameColumnWidth - 2/"
  "help name column counts one space more|zelk/configuration/impl/HelpGenerator.cpp|35|s/strlen(valueName) + 1/strlen(valueName) + 2/"
  "usage one-of separator|zelk/configuration/impl/UsageGenerator.cpp|66|s/\" | \"/\"|\"/"
  "usage value name shown for flags only|zelk/configuration/impl/UsageGenerator.cpp|98|s/!= Parameter::BOOL/== Parameter::BOOL/"
  "listener list kept when emptied|zelk/configuration/impl/ListenerManager.cpp|49|s/if (entry->second.empty())/if (!entry->second.empty())/"
  "listener add without lock|zelk/configuration/impl/ListenerManager.cpp|35|s/boost::recursive_mutex::scoped_lock lock(mMutex);/;/"
  "value group add without lock|zelk/configuration/impl/ValueGroupState.cpp|211|s/WriteGuard lock(mMutex);/;/"
  "merge of bounded containers flipped|zelk/configuration/impl/ValueGroupMerger.cpp|71|s/!container->isUnbounded() \&\& existing/container->isUnbounded() \&\& existing/"
  "merge appends bounded values|zelk/configuration/impl/ValueGroupMerger.cpp|101|s/(ref->isUnbounded())/(!ref->isUnbounded())/"
  "required flag message word|zelk/configuration/impl/RequiredGroupItemValidator.cpp|20|s/following flags: /following flag: /"
  "one-of message conjunction|zelk/configuration/impl/OneOfValidator.cpp|58|s/\" and \"/\" or \"/"
  "line wrap at exact width|zelk/util/StringUtil.cpp|83|s/!(lineWidth > sum)/!(lineWidth >= sum)/"
  "UTF-8 two-byte range off by one|zelk/util/UtfUtil.cpp|61|s/cp < 0x800/cp <= 0x800/"
  "XML line count on CR LF flipped|zelk/host/XmlTokenReader.cpp|244|s/mData\[i + 1\] != '\\\\n'/mData[i + 1] == '\\\\n'/"
  "XML character reference limit off by one|zelk/host/XmlTokenReader.cpp|531|s/cp <= 0x10FFFF/cp < 0x10FFFF/"
  "registry nesting message word|zelk/configuration/impl/ConfigurationRegistryLoaderImpl.cpp|576|s/nested deeper than/nested more than/"
  "uint32 read checks the int32 type|zelk/configuration/impl/ValueState.cpp|182|s/Parameter::UINT32, asUInt32/Parameter::INT32, asUInt32/"
  "zelk-config one-of child count|tools/zelk-config/RegistryChecker.cpp|124|s/getNumberOfItems() < 2/getNumberOfItems() < 1/"
  "zelk-config values skip disabled providers flipped|tools/zelk-config/ValuesReport.cpp|62|s/if (!provider->getEnabled())/if (provider->getEnabled())/"
)

saved=$(mktemp -d)
current=""
restore() {
  if [ -n "$current" ]; then cp "$saved/original" "$root/$current"; current=""; fi
}
trap 'restore; rm -rf "$saved"' EXIT

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
  -DZELK_BUILD_BENCH=OFF -DZELK_INSTALL=OFF -DCMAKE_LINK_DEPENDS_NO_SHARED=ON >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null
ctest --test-dir "$build" -j "$(nproc)" >/dev/null ||
  { echo "the unmutated suite fails: fix that first" >&2; exit 1; }

caught=0
total=0
for entry in "${mutations[@]}"; do
  IFS='|' read -r name file line expression <<<"$entry"
  [[ "$name" =~ $filter ]] || continue
  cp "$root/$file" "$saved/original"
  current=$file
  sed -i "${line}${expression}" "$root/$file"
  if cmp -s "$root/$file" "$saved/original"; then
    echo "NOT APPLIED  $name ($file:$line)"
    restore
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
