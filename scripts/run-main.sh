#!/usr/bin/env bash
# Installs the dependencies, builds everything and runs the main job.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
exec "$root/scripts/main-job.sh" "$root/build"
