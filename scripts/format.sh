#!/usr/bin/env bash
# Checks that the C++ lines changed since a base commit are formatted as .clang-format says; fails
# and shows the difference when they are not. With -fix, formats those lines instead.
#   scripts/format.sh [-fix] [base]     base: default the fork point from main (on main: HEAD~1)
# Only changed lines are checked: much of the tree predates .clang-format, and formatting it all
# at once would touch most files while others are changing them.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
fix=0
if [ "${1:-}" = "-fix" ]; then fix=1; shift; fi
command -v git-clang-format >/dev/null || { echo "git-clang-format is needed (apt-get install clang-format)" >&2; exit 2; }
base=${1:-}
if [ -z "$base" ]; then
  base=$(git merge-base HEAD main 2>/dev/null || true)
  if [ -z "$base" ] || [ "$base" = "$(git rev-parse HEAD)" ]; then base=HEAD~1; fi
fi
if [ "$fix" = 1 ]; then
  exec git clang-format --extensions cpp,h "$base"
fi
diff=$(git clang-format --diff --extensions cpp,h "$base" || true)
if [ -z "$diff" ] || [[ $diff == *"no modified files to format"* ]] ||
   [[ $diff == *"clang-format did not modify any files"* ]]; then
  echo "Formatted as .clang-format says: the C++ lines changed since $(git rev-parse --short "$base")."
  exit 0
fi
printf '%s\n' "$diff"
echo "These lines changed since $(git rev-parse --short "$base") are not formatted; scripts/format.sh -fix formats them." >&2
exit 1
