#!/usr/bin/env bash
# A fuzzing campaign: every target runs until it has used the given CPU time of its own (not wall
# time, so other work on the machine only makes the campaign longer, never shorter), a few targets
# at a time, then prints executions, coverage and findings per target.
#   fuzz/campaign.sh [CPU time per target: minutes, or seconds with an "s": 30] \
#                    [targets at a time: 2] [output folder: /tmp/zelk-campaign]
# New corpus inputs go to <output>/corpus/<target>, failing inputs to <output>/findings/, logs to
# <output>/<target>.log; the committed corpus is only read.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
budget=${1:-30}
if [[ $budget == *s ]]; then budget=${budget%s}; else budget=$((budget * 60)); fi
parallel=${2:-2}
out=${3:-/tmp/zelk-campaign}
build=${ZELK_FUZZ_BUILD:-$root/build-fuzz}
targets=()
while read -r name _ dict; do
  [[ -z $name || $name == \#* ]] || targets+=("$name:$dict")
done < "$root/fuzz/targets.txt"

command -v clang++ >/dev/null || { echo "clang++ is needed (apt-get install clang libclang-rt-14-dev)" >&2; exit 1; }
cmake -S "$root" -B "$build" -G Ninja -DZELK_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF \
  -DZELK_BUILD_BENCH=OFF -DZELK_INSTALL=OFF >/dev/null
cmake --build "$build" >/dev/null
mkdir -p "$out/findings"

# Fuzzes one target until its process has used the CPU budget, then interrupts it (libFuzzer
# prints its final statistics on interruption).
run() {
  local name=$1 dict=$2 tick pid cpu
  mkdir -p "$out/corpus/$name"
  local seeds=("$root/fuzz/corpus/$name")
  [ -d "$root/fuzz/regressions/$name" ] && seeds+=("$root/fuzz/regressions/$name")
  "$build/fuzz/fuzz_$name" -dict="$root/fuzz/$dict.dict" -print_final_stats=1 \
    -rss_limit_mb=4096 -artifact_prefix="$out/findings/$name-" "$out/corpus/$name" "${seeds[@]}" \
    >"$out/$name.log" 2>&1 &
  pid=$!
  tick=$(getconf CLK_TCK)
  while kill -0 "$pid" 2>/dev/null; do
    sleep $((budget < 100 ? 1 : 10))
    local stat
    stat=$(cut -d' ' -f14,15 "/proc/$pid/stat" 2>/dev/null) || break
    cpu=$(( (${stat% *} + ${stat#* }) / tick ))
    if [ "$cpu" -ge "$budget" ]; then
      kill -INT "$pid"
      break
    fi
  done
  wait "$pid" || true
}

running=0
for entry in "${targets[@]}"; do
  if [ "$running" -ge "$parallel" ]; then
    wait -n || true
    running=$((running - 1))
  fi
  run "${entry%%:*}" "${entry##*:}" &
  running=$((running + 1))
done
wait

printf '%-14s %12s %8s %10s %9s\n' target executions edges features findings
for entry in "${targets[@]}"; do
  name=${entry%%:*}
  log=$out/$name.log
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  last=$(grep -E '^#[0-9]+' "$log" | tail -1)
  edges=$(echo "$last" | sed -n 's/.*cov: \([0-9]*\).*/\1/p')
  features=$(echo "$last" | sed -n 's/.*ft: \([0-9]*\).*/\1/p')
  found=$(find "$out/findings" -name "$name-*" | wc -l)
  printf '%-14s %12s %8s %10s %9s\n' "$name" "${runs:-?}" "${edges:-?}" "${features:-?}" "$found"
done
