#!/usr/bin/env bash
# zelk-config -values -watch on a copy of the example installation: a good save is printed with
# the old and new text and its file, a bad one with its error, and SIGTERM ends it cleanly.
#   watch.sh <zelk-config> <example installation> <work directory>
set -u
zc=$1 installation=$2 work=$3
rm -rf "$work" && mkdir -p "$work" || exit 1
cp -r "$installation/etc" "$installation/plugins" "$installation/config" "$work/" || exit 1
values() { echo "<zbackup database=\"sales\" destination=\"b::/s\" retries=\"$1\"/>"; }
save() { values "$1" >"$work/app.tmp" && mv "$work/app.tmp" "$work/app.config"; }
save 8
"$zc" -values -specification zbackup -installation "$work" -applicationFile "$work/app.config" \
  -noMachineConfig -watch >"$work/out" 2>&1 &
pid=$!
# Waits up to 20 seconds for the output to hold pattern.
await() {
  for _ in $(seq 200); do
    grep -q -- "$1" "$work/out" && return 0
    sleep 0.1
  done
  echo "no \"$1\" in the output:"; cat "$work/out"; kill "$pid"; exit 1
}
await "watching"
save 12
await "retries: 8 -> 12"
save many
await "refused: "
kill -TERM "$pid"
wait "$pid"
status=$?
[[ $status == 0 ]] || { echo "exit status $status"; cat "$work/out"; exit 1; }
grep -q "^applied: $work/app.config$" "$work/out" || { echo "no file named"; cat "$work/out"; exit 1; }
grep -q '"many" is not a valid' "$work/out" || { echo "no error"; cat "$work/out"; exit 1; }
exit 0
