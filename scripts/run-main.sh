#!/usr/bin/env bash
# Installs the dependencies, builds what the main job runs (zelk-config, the example tool and its
# validator plug-in, not the tests) and runs the main job. scripts/build.sh builds everything.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
cmake -S "$root" -B "$root/build" -G Ninja >/dev/null
cmake --build "$root/build" -j "$(nproc)" --target zelk-config backup-tool zelk_example_validator_plugin
exec "$root/scripts/main-job.sh" "$root/build"
