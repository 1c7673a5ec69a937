#!/usr/bin/env bash
# Builds the benchmarks in Release, runs every row with repetitions (random interleaving, several
# processes) and prints one table: median and min-max wall time per row, and ours against each peer.
#   bench/compare.sh [build-dir] [processes] [repetitions-per-process] [filter]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-bench-release}
processes=${2:-2}
repetitions=${3:-3}
filter=${4:-.}

packages=(libbenchmark-dev libboost-program-options-dev libcli11-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y "${missing[@]}"
fi

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZELK_BUILD_BENCH=ON \
  -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF -DZELK_INSTALL=OFF >/dev/null
cmake --build "$build" --target zelk_bench >/dev/null

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for ((p = 1; p <= processes; ++p)); do
  echo "process $p of $processes ..." >&2
  "$build/bench/zelk_bench" --benchmark_filter="$filter" --benchmark_repetitions="$repetitions" \
    --benchmark_enable_random_interleaving=true --benchmark_min_time=0.2 \
    --benchmark_out="$out/run$p.json" --benchmark_out_format=json >/dev/null
done

# Peak RSS of W1full at 20000/5000, less a process that does no library work.
memory=()
if [ -x /usr/bin/time ]; then
  for who in none ours boost cli11; do
    kb=$( { /usr/bin/time -v "$build/bench/zelk_bench" --memory=$who >/dev/null; } 2>&1 |
          sed -n 's/.*Maximum resident set size (kbytes): //p')
    memory+=("$who=${kb:-0}")
  done
fi

python3 - "$out" "${memory[@]}" <<'PY'
import glob, json, re, statistics, sys
runs = {}
context = None
for path in sorted(glob.glob(sys.argv[1] + "/run*.json")):
    data = json.load(open(path))
    context = data["context"]
    for b in data["benchmarks"]:
        if b.get("run_type") != "iteration":
            continue
        t = b["real_time"] * {"ns": 1e-3, "us": 1, "ms": 1e3, "s": 1e6}[b["time_unit"]]
        runs.setdefault(b["run_name"], []).append(t)
print("host: %s, %d cpus, %s MHz" % (context.get("host_name"), context.get("num_cpus"), context.get("mhz_per_cpu")))
print("%-36s %5s %12s %25s" % ("row", "n", "median us", "min - max us"))
med = {}
for name in sorted(runs):
    times = runs[name]
    med[name] = statistics.median(times)
    print("%-36s %5d %12.3f %12.3f - %-12.3f" % (name, len(times), med[name], min(times), max(times)))
peers = {"W1full": [("Boost", "W1full"), ("Cli11", "W1full")],
         "W1parse": [("Boost", "W1parse"), ("Cli11", "W1parse")],
         "W2prefixes": [("Boost", "W2prefixes")],
         "W3valueFile": [("Boost", "W3ini"), ("Cli11", "W3ini")],
         "W4byName": [("Boost", "W4byName")],
         "W4held": [("Boost", "W4held")],
         "W5startup": [("Floor", "W5startup")],
         # A re-read against starting over, and against the peers parsing the same words again.
         "W6reread": [("Ours", "W6restart"), ("Boost", "W1parse"), ("Cli11", "W1parse")],
         "W6rereadPrefixes": [("Ours", "W6restart"), ("Boost", "W2prefixes")],
         "W6rereadFile": [("Ours", "W6restartFile")],
         "W6rereadApp": [("Ours", "W6restart")]}
print()
print("%-36s %-36s %10s" % ("ours", "against", "ratio"))
for name in sorted(med):
    m = re.match(r"Ours_(\w+)(.*)", name)
    if not m:
        continue
    for peer, row in peers.get(m.group(1), []):
        other = "%s_%s%s" % (peer, row, m.group(2))
        if other in med:
            print("%-36s %-36s %10.3f" % (name, other, med[name] / med[other]))
mem = dict(kv.split("=") for kv in sys.argv[2:])
if mem:
    base = int(mem.get("none", 0))
    print()
    print("peak RSS of W1full at 20000/5000, above a process doing no library work:")
    for who in ("ours", "boost", "cli11"):
        if who in mem and int(mem[who]) > 0:
            extra = int(mem[who]) - base
            print("  %-6s %8d kB  (%.0f bytes per declared parameter)" % (who, extra, extra * 1024.0 / 20000))
PY
