#!/usr/bin/env bash
# The processor time of the whole program under Wine while the virtual echosounder sends it pings: of one core, and
# beside it the wineserver's, which the program keeps busy. The window is 1,920 x 1,080, recording and GPS are on.
#   bench/program_load.sh [SECONDS] [options of echosim, --mode 4 --samples 1000 --rate 10 if there are none…]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../tools/wine/wine_session.sh"

seconds=${1:-30}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- --mode 4 --samples 1000 --rate 10
build=$session_root/build/windows
start_button=(50 154)

# until_true COMMAND…: for at most a minute
until_true() {
  local end=$((SECONDS + 60))
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    sleep 0.2
  done
}

sent_pings() { grep -c ' whole' "$session_scratch/pings" 2>/dev/null || true; }
has_sent() { [ "$(sent_pings)" -ge "$1" ]; }

# Of this prefix alone: the program by its display, the wineserver by its prefix.
find_process() {
  local each
  for each in $(pgrep "$1"); do
    if tr '\0' '\n' <"/proc/$each/environ" 2>/dev/null | grep -qxF "$2"; then echo "$each"; fi
  done | tail -n 1
}
ticks() { sed 's/.*) //' "/proc/$1/stat" | awk '{ print $12 + $13 }'; }
resident() { awk '/^VmRSS/ { print int($2 / 1024) }' "/proc/$1/status"; }

unset DISPLAY
session_begin
session_instruments "$build/native/tools/echosim/echosim" --speed 921600 --log "$session_scratch/pings" "$@"
mkdir "$session_scratch/records"
session_choices "Z:${session_scratch//\//\\}\\records"

wine "$build/src/app/Tidewriter.exe" >/dev/null 2>&1 </dev/null 8>&- &
until_true session_find_window || session_fail "the program shows no window"
xdotool windowmove "$session_window" 0 0 windowsize "$session_window" 1920 1080 windowfocus "$session_window"
sleep 1
xdotool mousemove --window "$session_window" "${start_button[@]}" click 1
until_true has_sent 20 || session_fail "no pings came"
program=$(find_process Tidewriter "DISPLAY=$DISPLAY")
server=$(find_process wineserver "WINEPREFIX=$WINEPREFIX")
before=$(ticks "$program")
server_before=$(ticks "$server")
pings=$(sent_pings)
sleep "$seconds"
awk -v all=$(($(ticks "$program") - before)) -v server=$(($(ticks "$server") - server_before)) \
  -v seconds="$seconds" -v pings=$(($(sent_pings) - pings)) -v hz="$(getconf CLK_TCK)" \
  -v resident="$(resident "$program")" \
  'BEGIN { printf "%.1f pings a second: the program %.1f %% of a core, the wineserver %.1f %%; %d MiB resident\n",
           pings / seconds, all * 100 / hz / seconds, server * 100 / hz / seconds, resident }'
