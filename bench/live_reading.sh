#!/usr/bin/env bash
# Live reading at 300,000 bytes a second (a 3 Mbaud line) under Wine for 10 s: what was lost, how much processor
# time it took, and how long after its last byte each ping was published.
#   bench/live_reading.sh [BYTES_PER_SECOND] [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
rate=${1:-300000} seconds=${2:-10}
export TW_WINEPREFIX=${TW_WINEPREFIX:-$PWD/build/wine-bench}
out=build/bench-live
mkdir -p "$out"

tools/wine/wine_run build/windows/bench/live_reading.exe >/dev/null 2>&1 || true  # makes the prefix
build/bench/bench/line_sender "$TW_WINEPREFIX/ports/com8" "$rate" "$seconds" "$out/sent.txt" >"$out/sender.log" &
sender=$!
trap 'kill "$sender" 2>/dev/null || true' EXIT
sleep 0.5
ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }
server=$(pgrep -n wineserver || true)
before=$([ -n "$server" ] && ticks "$server" || echo 0)
tools/wine/wine_run build/windows/bench/live_reading.exe 8 "$seconds" "$out/read.txt"
after=$([ -n "$server" ] && [ -d "/proc/$server" ] && ticks "$server" || echo "$before")
wait "$sender" || true
cat "$out/sender.log"
echo "wineserver: $(((after - before) * 10)) ms of processor time, not counted above"
awk 'NR == FNR { sent[$1] = $2; next } ($1 in sent) { print ($2 - sent[$1]) / 1000 }' \
  "$out/sent.txt" "$out/read.txt" | sort -n >"$out/latency.txt"
awk '{ d[NR] = $1 }
     END { if (NR == 0) { print "no block arrived"; exit 1 }
           printf "latency of %d blocks: median %.2f ms, 99 %% %.2f ms, worst %.2f ms\n",
             NR, d[int((NR + 1) / 2)], d[int(NR * 0.99)], d[NR] }' "$out/latency.txt"
