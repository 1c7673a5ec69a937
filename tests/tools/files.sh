#!/usr/bin/env bash
# What zelk-config does with files that are not what they seem: FIFOs in every place (each would
# block forever without the refusal, so every run has a time limit), a full disk under -export
# (the old file must survive byte for byte), value files that give nothing, no source at all, and
# plug-ins that were skipped. Each refusal carries the system's reason.
#   files.sh <zelk-config> <example installation> <plug-in library> <work directory>
set -u
zc=$1 example=$2 plugin=$3 work=$4
rm -rf "$work" && mkdir -p "$work" && cp -r "$example" "$work/inst" || exit 1
inst=$work/inst
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }
# run <expected status> <words>...: runs zelk-config with a time limit; its output is in $out.
run() {
  local expected=$1 status
  shift
  out=$(timeout 60 "$zc" -installation "$inst" "$@" 2>&1)
  status=$?
  [[ $status -ne 124 ]] || { fail "hung: $*"; return; }
  [[ $status -eq $expected ]] || fail "exit status $status, expected $expected: $*"$'\n'"$out"
}
says() { [[ $out == *"$1"* ]] || fail "does not say: $1"$'\n'"$out"; }

# A FIFO as a value file, as the application's file, as an export target, and named x.crg in the
# plug-ins directory.
mkfifo "$work/values.xml" "$work/export.xml" "$inst/plugins/x.crg" || exit 1
run 1 -values -spec zbackup -valueFile "$work/values.xml"
says "File \"$work/values.xml\" was not found (it is a FIFO, not a regular file)"
run 1 -values -spec zbackup -applicationFile "$work/values.xml"
says "File \"$work/values.xml\" was not found (it is a FIFO, not a regular file)"
run 1 -values -spec zbackup -noMachineConfig -export "$work/export.xml" -- -database d -destination b::/c
says "File \"$work/export.xml\" cannot be written (it is a FIFO, not a regular file)"
run 1 -check
says "Skipped registry file \"$inst/plugins/x.crg\": it is a FIFO, not a regular file"
run 0 -list
rm -f "$inst/plugins/x.crg"

# Value files that give nothing for the specification: a typo in the root element, another
# tool's file. Without any source, the required values are still missing.
printf '<zbakup database="d" destination="b::/c"/>\n' >"$work/typo.xml"
run 1 -values -spec zbackup -noMachineConfig -valueFile "$work/typo.xml"
says "warning: value file \"$work/typo.xml\" gives no values for \"zbackup\": its root element is <zbakup>"
says "A required flag was not specified"
run 1 -values -spec zbackup -noMachineConfig
says "A required flag was not specified. You must provide one of the following flags: database, destination"

# A plug-in library that others may write is skipped: -check and -values say so, and why.
cp "$plugin" "$inst/plugins/writable.so" && chmod 0666 "$inst/plugins/writable.so" || exit 1
run 1 -check
says "Skipped plug-in library \"$inst/plugins/writable.so\": "
run 0 -values -spec zbackup -noMachineConfig -- -database d -destination b::/c
says "note: Skipped plug-in library \"$inst/plugins/writable.so\": "
rm -f "$inst/plugins/writable.so"

# A full disk under -export: a small file system of its own, filled up, keeps the old file.
disk=$work/disk
mkdir -p "$disk"
if mount -t tmpfs -o size=64k tmpfs "$disk" 2>/dev/null; then
  trap 'umount "$disk"' EXIT
  cp "$inst/config/backup-nightly.xml" "$disk/good.xml"
  dd if=/dev/zero of="$disk/filler" bs=1k count=1000 2>/dev/null
  run 1 -values -spec zbackup -noMachineConfig -export "$disk/good.xml" -- -database d -destination b::/c
  says "File \"$disk/good.xml\" cannot be written (No space left on device)"
  cmp -s "$inst/config/backup-nightly.xml" "$disk/good.xml" || fail "the old file was changed"
  [[ $(ls "$disk") == $'filler\ngood.xml' ]] || fail "files left behind: $(ls "$disk")"
  rm -f "$disk/filler"
  run 0 -values -spec zbackup -noMachineConfig -export "$disk/good.xml" -- -database d -destination b::/c
  grep -q 'database="d"' "$disk/good.xml" || fail "the export did not replace the file"
else
  echo "note: no tmpfs can be mounted here (not root?); the full disk is tested by FileOpenerTest"
fi

[[ $failures -eq 0 ]] || exit 1
echo "all passed"
