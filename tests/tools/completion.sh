#!/usr/bin/env bash
# The bash completion zelk-config generates for zbackup, loaded into bash and asked as bash asks
# it: a flag prefix, an enumeration's labels, file names, and nothing after a boolean switch.
#   completion.sh <zelk-config> <installation>
set -u
source <("$1" -completion bash -specification zbackup -installation "$2") || exit 1
complete -p zbackup >/dev/null || { echo "no completion registered for zbackup"; exit 1; }
failures=0
expect() {  # expect "<words>" "<result>"
  read -ra COMP_WORDS <<<"$1"
  [[ $1 == *" " ]] && COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  _zelk_complete_zbackup
  if [[ "${COMPREPLY[*]}" != "$2" ]]; then
    echo "completing \"$1\": got \"${COMPREPLY[*]}\", expected \"$2\""
    failures=$((failures + 1))
  fi
}
cd "$2/config" || exit 1
expect "zbackup -d" "-database -destination -dryRun"
expect "zbackup -ma" "-maxSize"
expect "zbackup -traceL" ""
expect "zbackup -MODE " "full incremental differential"
expect "zbackup -compression b" "best"
expect "zbackup -loadConfiguration backup-" "backup-nightly.xml"
expect "zbackup -verbose " ""
expect "zbackup -verbose -v" "-verbose"
expect "zbackup -database " ""
echo "$((9 - failures)) passed, $failures failed"
[[ $failures -eq 0 ]]
