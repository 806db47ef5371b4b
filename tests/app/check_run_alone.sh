#!/usr/bin/env bash
# A run without a user interface against echosim on real terminals: what stands in the record file is what the
# device sent, and a device that is not there is a fault and no hang.
# usage: check_run_alone.sh RUN_ALONE ECHOSIM ECHOTOOL
set -euo pipefail
run_alone=$1 echosim=$2 echotool=$3
folder=$(mktemp -d)
trap 'kill "${simulator:-0}" 2>/dev/null || true; rm -rf "$folder"' EXIT

"$echosim" --link "$folder/sounder" --gps-link "$folder/gps" --speed 921600 --log "$folder/sent" >/dev/null &
simulator=$!
for _ in $(seq 200); do
  [ -e "$folder/sounder" ] && [ -e "$folder/gps" ] && break
  sleep 0.05
done
mkdir "$folder/records"
"$run_alone" "$folder/sounder" 921600 "$folder/gps" 4800 "$folder/records" 4 | tee "$folder/said"
kill "$simulator"
wait "$simulator" || true
grep -q '^running$' "$folder/said"
[ "$(tail -2 "$folder/said" | head -1)" = idle ]
record=$(echo "$folder"/records/*.log)
"$echotool" info "$record"
pings=$("$echotool" info "$record" | sed -n 's/^ *pings *\([0-9]*\).*/\1/p')
[ "${pings:-0}" -ge 10 ]
[ "$(grep -ac '^\$GPGGA' "$record")" -eq "$pings" ]  # the receiver's position stands behind each

fault=0
"$run_alone" "$folder/nothing" 921600 - 4800 "$folder/records" 1 >/dev/null || fault=$?
[ "$fault" -eq 2 ]  # the port does not open
