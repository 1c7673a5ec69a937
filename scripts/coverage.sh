#!/usr/bin/env bash
# Builds the project with gcov instrumentation, runs the whole test suite and prints line and
# branch coverage of the library (zelk/) and of the tools (tools/).
#   scripts/coverage.sh [build-dir]
# Branches that only throw, and branches gcc marks unreachable, are left out of the branch figure:
# they are the compiler's exception-edge bookkeeping, not decisions in the code.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-coverage}

if ! dpkg-query -W -f='${Status}' gcovr 2>/dev/null | grep -q "install ok installed"; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y gcovr >/dev/null
fi

# Atomic counters: the threaded tests otherwise leave negative counts that gcovr cannot parse.
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DZELK_BUILD_BENCH=OFF \
  -DZELK_INSTALL=OFF -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic -O0" -DCMAKE_EXE_LINKER_FLAGS=--coverage \
  -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" -j "$(nproc)" --output-on-failure >"$build/coverage-ctest.log" 2>&1 ||
  { tail -n 30 "$build/coverage-ctest.log"; echo "the suite failed; coverage not measured" >&2; exit 1; }
tail -n 3 "$build/coverage-ctest.log" | grep -E 'tests passed|tests failed' || true

trace="$build/coverage.json"
gcovr -r "$root" --object-directory "$build" --exclude-directories "$build/CMakeFiles/[0-9][^/]*" \
  --exclude-throw-branches --exclude-unreachable-branches -j "$(nproc)" --json -o "$trace" "$build"
for part in zelk tools; do
  # The per-file report goes to a file of the build: gcovr replaces its output file by renaming,
  # which would replace /dev/null itself when run as root.
  summary=$(gcovr -r "$root" --add-tracefile "$trace" --filter "$root/$part/" --print-summary \
    -o "$build/coverage-$part.txt")
  lines=$(sed -n 's/^lines: *\([0-9.]*%\) (\(.*\))/\1 (\2)/p' <<<"$summary")
  branches=$(sed -n 's/^branches: *\([0-9.]*%\) (\(.*\))/\1 (\2)/p' <<<"$summary")
  printf '%-6s lines %s  branches %s\n' "$part/" "$lines" "$branches"
done
