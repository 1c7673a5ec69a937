#!/usr/bin/env bash
# Instruction counts (callgrind) of W1full, W1parse (ours), W2 and W3 at each size, and of ours
# re-reading in a running process (W6: command line, W6prefixes: abbreviated, W6file: value file,
# W6app: application values, W6restart/W6restartFile: enableConfiguration + getValueGroup with
# the command line or the value file), with the ratio of each x10 step; they repeat exactly, so a
# busy machine does not change them.
#   bench/growth.sh [build-dir] [largest-size-index 1..3] [who: ours boost cli11]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-bench-release}
largest=${2:-3}
shift 2 || true
subjects=("${@:-ours}")
[ ${#subjects[@]} -eq 0 ] && subjects=(ours)

command -v valgrind >/dev/null || { echo "valgrind is needed" >&2; exit 1; }
if [ ! -x "$build/bench/zelk_bench" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZELK_BUILD_BENCH=ON \
    -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF -DZELK_INSTALL=OFF >/dev/null
  cmake --build "$build" --target zelk_bench >/dev/null
fi

sizes=("200:50" "2000:500" "20000:5000")
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
count() {
  valgrind --tool=callgrind --callgrind-out-file="$out/cg" --toggle-collect='measuredRun*' \
    "$build/bench/zelk_bench" --once="$1" >/dev/null 2>"$out/log" || { cat "$out/log" >&2; echo 0; return; }
  sed -n 's/^summary: //p' "$out/cg" | head -1
}
printf '%-8s %-13s' who workload
for ((s = 0; s < largest; ++s)); do printf ' %16s' "${sizes[$s]}"; done
for ((s = 1; s < largest; ++s)); do printf ' %8s' "x10 #$s"; done
printf '\n'
for who in "${subjects[@]}"; do
  for what in W1full W1parse W2 W3 W6 W6prefixes W6file W6app W6restart W6restartFile; do
    # CLI11 has no prefix matching; a peer's single run always includes its declaration, so its
    # W1parse would repeat W1full. The peers have nothing to re-read (their W1parse is the
    # nearest row).
    [ "$who" = cli11 ] && [ "$what" = W2 ] && continue
    [ "$who" != ours ] && [ "$what" = W1parse ] && continue
    [ "$who" != ours ] && [ "${what#W6}" != "$what" ] && continue
    counts=()
    for ((s = 0; s < largest; ++s)); do counts+=("$(count "$who:$what:${sizes[$s]}")"); done
    printf '%-8s %-13s' "$who" "$what"
    for c in "${counts[@]}"; do printf ' %16s' "$c"; done
    for ((s = 1; s < largest; ++s)); do
      awk -v a="${counts[$((s - 1))]}" -v b="${counts[$s]}" 'BEGIN { if (a > 0) printf " %8.2f", b / a; else printf " %8s", "-" }'
    done
    printf '\n'
  done
done
