#!/usr/bin/env bash
# The main job: zelk-config on the example installation, then the example tool.
#   scripts/main-job.sh <build-dir>
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:?usage: scripts/main-job.sh <build-dir>}
zelk_config=("$build/tools/zelk-config" -installation "$root/examples/installation")

step() { printf '\n$ %s\n' "$*"; }

step zelk-config -check
"${zelk_config[@]}" -check
step zelk-config -list
"${zelk_config[@]}" -list
step zelk-config -help -specification zbackup
"${zelk_config[@]}" -help -specification zbackup
step zelk-config -values -specification zbackup -valueFile backup-nightly.xml -- -destination backup2::/spare -verbose
"${zelk_config[@]}" -values -specification zbackup -valueFile backup-nightly.xml \
  -- -destination backup2::/spare -verbose
step zelk-config -values -specification zbackup -- -database sales -all -object 3-2-5-1
# This command line is wrong on purpose: the problem is reported and the status is 1.
"${zelk_config[@]}" -values -specification zbackup -- -database sales -all -object 3-2-5-1 || true
step zbackup -loadConfiguration backup-nightly.xml -dryRun
"$build/examples/zbackup" -loadConfiguration backup-nightly.xml -dryRun
