#!/usr/bin/env bash
# Shows the program at work, with the virtual instruments on its ports: what ./run does once all is built. See
# ./run --help for the options. Everything it makes is in build/run.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/wine_session.sh"

say() { printf '== %s\n' "$*"; }

seconds=
gps=yes
headless=
sounder=(--mode 4)
while [ $# -gt 0 ]; do
  case $1 in
    --mode | --family) sounder+=("$1" "$2"); shift 2 ;;
    --seconds) seconds=$2; shift 2 ;;
    --dual) sounder+=(--dual); shift ;;
    --no-gps) gps=; shift ;;
    --headless) headless=yes; shift ;;
    *) session_fail "unknown option $1" ;;
  esac
done
[ -n "$gps" ] || sounder+=(--gps-off)

program=$session_root/build/windows/src/app/Tidewriter.exe
echosim=$session_root/build/windows/native/tools/echosim/echosim
run=$session_root/build/run
records=$run/records
log=$run/pings.log
for file in "$program" "$echosim"; do
  [ -e "$file" ] || session_fail "$file is not there; ./run builds it"
done
mkdir -p "$records"
rm -f "$records"/* "$log" "$run/window.png"

# Where the controls that the demonstration clicks stand in the window, with the prefix's fonts.
start_button=(50 140)
stop_button=(140 140)
echogram=(500 400)

# Drive R: is build/run, so that the working folder's name is short.
store_choices() {
  ln -sfn "$run" "$WINEPREFIX/dosdevices/r:"
  if [ -n "$gps" ]; then session_choices 'R:\records'; else session_choices 'R:\records' ffffffff; fi
}

program_pid=
start_program() {
  wine "$program" >"$run/program.log" 2>&1 </dev/null 8>&- &
  program_pid=$!
}

runs() { kill -0 "$program_pid" 2>/dev/null; }

# until_true SECONDS COMMAND…
until_true() {
  local end=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] && runs || return 1
    sleep 0.2
  done
}

point_at() { xdotool mousemove --window "$session_window" "$@"; }
click_at() { point_at "$@" && sleep 0.2 && xdotool click 1; }

sent_pings() { grep -c ' whole' "$log" 2>/dev/null || true; }
has_sent() { [ "$(sent_pings)" -ge "$1" ]; }

# From 150 s across the picture to 20 s, four steps.
zoom_time_scale() {
  point_at "${echogram[@]}"
  xdotool mousemove_relative 1 1
  sleep 0.3
  xdotool keydown shift
  for _ in 1 2 3 4; do
    xdotool click 4
    sleep 0.1
  done
  xdotool keyup shift
  sleep 0.5
}

# "220 pings, 1 to 220, none missing": by the device's own numbers, where its output has some. Otherwise a ping is a
# binary frame, or what stands ahead of each RMC sentence.
count_pings() {
  if ! grep -aq '^#Ping ' "$1"; then
    echo "$(grep -aoE 'TR57|^\$G[PN]RMC,' "$1" | wc -l) pings"
    return
  fi
  tr -d '\r' <"$1" | awk '
    $1 == "#Ping" { if (n++ == 0) first = $2; else missing += $2 - last - 1; last = $2 }
    END { if (n == 0) print "0 pings"
          else printf "%d pings, %d to %d, %s missing\n", n, first, last, missing ? missing : "none" }'
}

list_records() {
  local file
  say "Record files in ${records#"$session_root"/}:"
  for file in "$records"/*.log; do
    [ -e "$file" ] || { echo "   none"; return 1; }
    printf '   %s: %s bytes, %s\n' "${file##*/}" "$(stat -c %s "$file")" "$(count_pings "$file")"
  done
}

close_program() {
  xdotool windowfocus "$session_window" key alt+F4
  until_true 10 eval '! runs' || ! runs || { kill "$program_pid"; return 1; }
}

watch_by_itself() {
  until_true 60 session_find_window || session_fail "the program shows no window"
  xdotool windowfocus "$session_window"
  say "Pressing Start"
  click_at "${start_button[@]}"
  until_true 60 has_sent 1 || session_fail "the echosounder was not started"
  if [ -n "$seconds" ]; then
    say "Streaming for $seconds s"
    sleep "$seconds"
  else
    say "Waiting for 200 pings"
    until_true 60 has_sent 200 || session_fail "only $(sent_pings) pings in 60 s"
  fi
  zoom_time_scale
  import -window "$session_window" "$run/window.png"
  say "The window: build/run/window.png"
  click_at "${stop_button[@]}"
  sleep 1
  close_program || session_fail "the program did not end"
}

if [ -n "$headless" ]; then unset DISPLAY; fi
own_display=
[ -n "${DISPLAY:-}" ] || own_display=yes
say "Preparing Wine (15 s at the first time)"
session_begin
say "Starting the virtual instruments"
session_instruments "$echosim" --speed 921600 --log "$log" "${sounder[@]}"
store_choices
say "Starting the program"
start_program
if [ -n "$own_display" ]; then
  watch_by_itself
else
  say "The window is yours: press Start. This script ends when you close it."
  wait "$program_pid" || true
fi
session_instruments_end
say "The instruments say (bytes are dropped while nobody reads, as before Start and after Stop):"
sed 's/^/   /' "$session_scratch/instruments"
list_records
