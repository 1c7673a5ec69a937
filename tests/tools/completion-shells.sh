#!/usr/bin/env bash
# The zsh and fish completion zelk-config generates, loaded into the real shells and asked as
# each shell asks it (zsh through its completion system in a pseudo-terminal, fish through
# complete -C): flags, enumeration labels, file names, nothing after a switch; and labels that
# look like shell code are offered as text and never run.
#   completion-shells.sh <zelk-config> <installation>
set -u
zc=$1
installation=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
check() {  # check <what> <got> <expected>
  if [[ "$2" != "$3" ]]; then
    echo "$1: got \"$2\", expected \"$3\""
    failures=$((failures + 1))
  fi
}

# A second installation whose one tool has hostile labels, each the only label of its flag.
hostile=$work/hostile
mkdir -p "$hostile/etc" "$hostile/plugins" "$hostile/config"
cat >"$hostile/etc/zelk.crg" <<'CRG'
<ConfigurationRegistry crgSchemaVersion="1.1">
  <Enumerations>
    <Enumeration id="a"><Value label="$(touch ran-a)"/></Enumeration>
    <Enumeration id="b"><Value label="`touch ran-b`;x"/></Enumeration>
  </Enumerations>
  <Parameters>
    <Parameter id="one" type="enum" enumType="a" description="A"/>
    <Parameter id="two" type="enum" enumType="b" description="B"/>
  </Parameters>
  <Specifications>
    <Specification id="t" description="T">
      <ParameterRef id="one" optional="true"/>
      <ParameterRef id="two" optional="true"/>
    </Specification>
  </Specifications>
</ConfigurationRegistry>
CRG

# fish: the candidates complete -C gives, one line each, sorted by fish.
"$zc" -completion fish -spec zbackup -installation "$installation" >"$work/zbackup.fish" || exit 1
"$zc" -completion fish -spec t -installation "$hostile" >"$work/t.fish" || exit 1
fish_complete() {
  (cd "$work" && fish --no-config -c "source '$work/zbackup.fish'; source '$work/t.fish';
    cd '$installation/config'; complete -C '$1'" | cut -f1 | tr '\n' ' ' | sed 's/ $//')
}
check "fish: zbackup -d" "$(fish_complete 'zbackup -d')" "-database -destination -dryRun"
check "fish: zbackup -traceL" "$(fish_complete 'zbackup -traceL')" ""
check "fish: zbackup -mode " "$(fish_complete 'zbackup -mode ')" "differential full incremental"
check "fish: zbackup -compression b" "$(fish_complete 'zbackup -compression b')" "best"
check "fish: zbackup -loadConfiguration backup-" \
  "$(fish_complete 'zbackup -loadConfiguration backup-')" "backup-nightly.xml"
check "fish: zbackup -verbose " "$(fish_complete 'zbackup -verbose ')" ""
check "fish: t -one " "$(fish_complete 't -one ')" '$(touch ran-a)'
check "fish: t -two " "$(fish_complete 't -two ')" '`touch ran-b`;x'

# zsh: the command line after Tab, read back by a key bound to a widget that writes it out.
"$zc" -completion zsh -spec zbackup -installation "$installation" >"$work/zbackup.zsh" || exit 1
"$zc" -completion zsh -spec t -installation "$hostile" >"$work/t.zsh" || exit 1
cat >"$work/drive.zsh" <<EOF
zmodload zsh/zpty
zpty -b z zsh -f -i
zpty -w z 'PS1="%% "; autoload -U compinit; compinit -u -D; cd "$installation/config"'
zpty -w z 'source "$work/zbackup.zsh"; source "$work/t.zsh"'
zpty -w z 'show() { print -r -- "\$BUFFER" >"$work/buffer"; BUFFER=; }; zle -N show; bindkey "^T" show'
zpty -w z 'print READY'
zpty -r -m z junk '*READY*READY*'
while IFS= read -r line; do
  rm -f "$work/buffer"
  zpty -w -n z "\$line"\$'\t\C-t'
  for i in {1..100}; do [[ -s "$work/buffer" ]] && break; sleep 0.1; done
  print -r -- "\$(<"$work/buffer")"
done
EOF
zsh_complete() { printf '%s\n' "$@" | (cd "$work" && timeout 60 zsh -f "$work/drive.zsh"); }
mapfile -t got < <(zsh_complete 'zbackup -mo' 'zbackup -dr' 'zbackup -mode f' 'zbackup -COMPRESSION b' \
  'zbackup -loadConfiguration backup-' 'zbackup -verbose ' 'zbackup -traceL' 't -one ' 't -two ')
check "zsh: zbackup -mo" "${got[0]-}" "zbackup -mode "
check "zsh: zbackup -dr" "${got[1]-}" "zbackup -dryRun "
check "zsh: zbackup -mode f" "${got[2]-}" "zbackup -mode full "
check "zsh: zbackup -COMPRESSION b" "${got[3]-}" "zbackup -COMPRESSION best "
check "zsh: zbackup -loadConfiguration backup-" "${got[4]-}" \
  "zbackup -loadConfiguration backup-nightly.xml "
check "zsh: zbackup -verbose " "${got[5]-}" "zbackup -verbose "
check "zsh: zbackup -traceL" "${got[6]-}" "zbackup -traceL"
check "zsh: t -one " "${got[7]-}" 't -one \$\(touch\ ran-a\) '
check "zsh: t -two " "${got[8]-}" 't -two \`touch\ ran-b\`\;x '

for ran in "$work"/ran-* "$installation"/config/ran-*; do
  [[ -e $ran ]] && { echo "a label ran: $ran"; failures=$((failures + 1)); }
done
echo "$failures failed"
[[ $failures -eq 0 ]]
