#!/usr/bin/env bash
# Installs the dependencies, builds everything and runs the whole test suite.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
ctest --test-dir "$root/build" --output-on-failure -j "$(nproc)"
