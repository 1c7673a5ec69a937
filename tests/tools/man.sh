#!/usr/bin/env bash
# The man pages zelk-config writes for the tools of an installation: groff and mandoc read them
# without a warning, and they carry what the registry declares.
#   man.sh <zelk-config> <installation>
set -u
zc=$1
installation=$2
status=0
fail() { echo "FAIL: $*"; status=1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for tool in zbackup zexport zverify; do
  page=$work/$tool.1
  "$zc" -man -spec "$tool" -installation "$installation" >"$page" || fail "$tool: status $?"
  warnings=$(groff -ww -man -Tutf8 -z "$page" 2>&1)
  [ -z "$warnings" ] || fail "$tool: groff: $warnings"
  lint=$(mandoc -T lint -W warning "$page" 2>&1)
  [ -z "$lint" ] || fail "$tool: mandoc: $lint"
done

# What zbackup's page says, as rendered.
# The rendered text with runs of blanks and line ends as one blank.
rendered() { groff -man -Tascii -rLL=1000n -rHY=0 "$1" 2>/dev/null | col -b | tr -s ' \t\n' ' '; }
text=$(rendered "$work/zbackup.1")
for expected in "zbackup - backs up a zelk object database" \
                "-destination host::path" \
                "Values: full, incremental, differential." \
                "Default: 5." \
                "Read only from value files, inside the notify element." \
                "machine.config"; do
  grep -qF -- "$expected" <<<"$text" || fail "zbackup page lacks \"$expected\""
done

# A label or description that looks like a request or an escape stays text.
hostile=$work/hostile
mkdir -p "$hostile/etc" "$hostile/plugins" "$hostile/config"
cat >"$hostile/etc/zelk.crg" <<'CRG'
<ConfigurationRegistry crgSchemaVersion="1.1">
  <Enumerations><Enumeration id="e"><Value label=".so /etc/passwd"/><Value label="a\fBb"/></Enumeration></Enumerations>
  <Parameters>
    <Parameter id="mode" type="enum" enumType="e" description=".TH broken&#10;.SH injected"/>
  </Parameters>
  <Specifications>
    <Specification id="t" title="t - a test" description="'br starts with a quote">
      <ParameterRef id="mode" optional="true"/>
    </Specification>
  </Specifications>
</ConfigurationRegistry>
CRG
"$zc" -man -spec t -installation "$hostile" >"$work/t.1" || fail "hostile: status $?"
warnings=$(groff -ww -man -Tutf8 -z "$work/t.1" 2>&1)
[ -z "$warnings" ] || fail "hostile: groff: $warnings"
text=$(rendered "$work/t.1")
for expected in ".so /etc/passwd" 'a\fBb' ".TH broken .SH injected" "'br starts with a quote"; do
  grep -qF -- "$expected" <<<"$text" || fail "hostile page lacks \"$expected\": $text"
done
[ $status -eq 0 ] && echo "man pages: every check passed"
exit $status
