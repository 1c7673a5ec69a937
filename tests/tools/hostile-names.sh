#!/usr/bin/env bash
# Registry texts that a shell would expand: sourcing the generated completion and completing
# runs nothing and offers each text quoted; -check names the flags that cannot be typed and
# prints a file name with a newline on one line.
#   hostile-names.sh <zelk-config> <hostile registry> <work directory>
set -u
zc=$1 registry=$2 work=$3
rm -rf "$work" && mkdir -p "$work/etc" "$work/plugins" "$work/config" || exit 1
cp "$registry" "$work/etc/zelk.crg" || exit 1
cd "$work" || exit 1
failures=0
fail() { echo "$1"; failures=$((failures + 1)); }

# Completion, in the work directory, where whatever ran would leave its file.
script=$("$zc" -completion bash -specification hostile -installation "$work") ||
  fail "no completion script"
source <(printf '%s\n' "$script")
function=$(declare -F | sed -n 's/^declare -f \(_zelk_complete_.*\)$/\1/p')
[[ -n $function ]] || { echo "no completion function defined"; exit 1; }
expect() {  # expect "<words>" "<result>"
  read -ra COMP_WORDS <<<"$1"
  [[ $1 == *" " ]] && COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMPREPLY=()
  "$function"
  [[ "${COMPREPLY[*]}" == "$2" ]] ||
    fail "completing \"$1\": got \"${COMPREPLY[*]}\", expected \"$2\""
}
expect "hostile -mode " '\$\(touch\ pwned-substitution\) \`touch\ pwned-backtick\` \$HOME it\'\''s plain'
expect "hostile -mode p" 'plain'
expect "hostile -a" '-a\$\(touch\ pwned-flag\)'
expect "hostile -t" '-two\ words $'\''-tab\tname'\'''
expect "hostile -f" '-fine-name_2.x'
leftovers=$(find "$work" -name 'pwned*')
[[ -z $leftovers ]] || fail "completion ran commands: $leftovers"

# -check: the untypable flag names, and a file name with a newline kept on its line.
forged=$'evil\nx.crg:1:1: forged line'
mkdir -p "$work/plugins/$forged" && echo '<ConfigurationRegistry>' >"$work/plugins/$forged/bad.crg"
output=$("$zc" -check -installation "$work" 2>&1)
[[ $? -eq 1 ]] || fail "-check should find problems"
for expected in \
  'the flag name "a$(touch pwned-flag)" of parameter "run" cannot be typed on a command line: it holds "$"' \
  'the flag name "two words" of parameter "spaced" cannot be typed on a command line: it holds a space' \
  'the flag name "tab\tname" of parameter "tabbed" cannot be typed on a command line: it holds a control character' \
  'plugins/evil\nx.crg:1:1: forged line/bad.crg'; do
  [[ $output == *"$expected"* ]] || fail "-check does not say: $expected"
done
[[ $output != *'"fine'* ]] || fail "-check reports a flag name that can be typed"
[[ $output != *$'\nx.crg:1:1'* ]] || fail "-check printed a raw newline of a file name"
[[ $failures -eq 0 ]] || { printf '%s\n' "$output"; exit 1; }
echo "all passed"
