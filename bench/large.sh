#!/usr/bin/env bash
# The hostile-size rows of zelk_bench_large, each size in a fresh process with one iteration (so
# that both sizes start from the same cold heap), run R times; prints the median CPU time of each
# size and the ratio of the larger to the smaller (10 means linear growth).
#   bench/large.sh [build-dir] [runs]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-bench-release}
runs=${2:-3}
if [ ! -x "$build/bench/zelk_bench_large" ]; then
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZELK_BUILD_BENCH=ON \
    -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF -DZELK_INSTALL=OFF >/dev/null
  cmake --build "$build" --target zelk_bench_large >/dev/null
fi

# CPU milliseconds of one row in a fresh process, and its peak RSS in kB.
one() {
  local out
  out=$( { /usr/bin/time -f "rss %M" "$build/bench/zelk_bench_large" --benchmark_filter="$1\$" \
            --benchmark_min_time=0.000001 --benchmark_format=csv; } 2>&1)
  echo "$(echo "$out" | awk -F, '/^"/ && /Large/ {print $4}' | head -1) $(echo "$out" | sed -n 's/^rss //p')"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

printf '%-26s %14s %14s %8s %12s\n' row small_cpu_ms large_cpu_ms ratio large_rss_kB
for row in "Large_commandLine words:100000 words:1000000" \
           "Large_commandLineUnknown words:100000 words:1000000" \
           "Large_valueFile MB:5 MB:50" \
           "Large_valueFileOneValue MB:5 MB:50" \
           "Large_valueFileExport MB:1 MB:10" \
           "Large_machineSiblings elements:100000 elements:1000000" \
           "Large_machineTools tools:10000 tools:100000" \
           "Large_containers bytes:300000 bytes:3000000"; do
  set -- $row
  small=(); large=(); rss=()
  for ((r = 0; r < runs; ++r)); do
    read -r cpu _ < <(one "$1/$2"); small+=("$cpu")
    read -r cpu kb < <(one "$1/$3"); large+=("$cpu"); rss+=("$kb")
  done
  s=$(printf '%s\n' "${small[@]}" | median)
  l=$(printf '%s\n' "${large[@]}" | median)
  k=$(printf '%s\n' "${rss[@]}" | median)
  printf '%-26s %14.1f %14.1f %8.2f %12s\n' "$1" "$s" "$l" "$(echo "$l / $s" | bc -l)" "$k"
done
