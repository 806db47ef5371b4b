# A place for the Windows program to run in: a display, a Wine prefix, and the virtual instruments on its serial
# ports. Sourced by wine_run, window_session and demo.sh; all that is started here is ended by session_end, by its
# process id.
#
# Sessions run side by side: each takes the first of build/wine-1, build/wine-2 … that no other one holds, so ports,
# registry and wineserver are its own. These are copies of build/wine, which is made on first use (15 s) and in which
# nothing runs afterwards. $TW_WINEPREFIX names another prefix; a session waits until it is free.
#
# In a prefix COM5 to COM8 are the terminals that the links PREFIX/ports/com5 … com8 point to, whoever puts them
# there. Only those are listed as ports that exist when the prefix's first program starts. The home folder of a
# session stands in its prefix too, and so do the folders of its Windows user: nothing is written elsewhere.

session_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
session_scratch=$(mktemp -d)
session_display_pid=
session_instruments_pid=
session_server=
session_window=

session_fail() {
  echo "${0##*/}: $*" >&2
  exit 1
}

# Ends a process that this script started, and waits for it.
session_kill() {
  [ -n "$1" ] || return 0
  kill "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null || true
}

session_end() {
  [ -z "$session_server" ] || wineserver -k 8>&- || true
  session_kill "$session_instruments_pid"
  session_kill "$session_display_pid"
  rm -rf "$session_scratch"
}

# $TW_SCREEN: its size, or 2240x1260. $TW_TASK_BAR: pixels at its lower edge that a task bar takes; none without.
session_start_display() {
  local size=${TW_SCREEN:-2240x1260}
  # The display ends with this script, even if the script is killed; what it holds stays between two programs.
  setpriv --pdeathsig TERM Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp -noreset \
    3>"$session_scratch/display" >/dev/null 2>&1 8>&- &
  session_display_pid=$!
  for _ in $(seq 100); do
    [ -s "$session_scratch/display" ] && break
    kill -0 "$session_display_pid" 2>/dev/null || break
    sleep 0.1
  done
  [ -s "$session_scratch/display" ] || session_fail "no virtual display"
  DISPLAY=:$(<"$session_scratch/display")
  export DISPLAY
  [ -z "${TW_TASK_BAR:-}" ] || xprop -root -f _NET_WORKAREA 32c \
    -set _NET_WORKAREA "0, 0, ${size%x*}, $((${size#*x} - TW_TASK_BAR))"
}

session_registry_entries() {
  local number font
  printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Software\\Wine\\Ports]\n'
  for number in 5 6 7 8; do
    printf '"COM%d"="%s/ports/com%d"\n' "$number" "$WINEPREFIX" "$number"
  done
  printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n'
  for font in 'Segoe UI' Tahoma 'MS Shell Dlg' 'MS Shell Dlg 2' 'Microsoft Sans Serif'; do
    printf '"%s"="Open Sans"\n' "$font"
  done
  printf '\n[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:00000060\n'
}

# Wine links the user's Documents, Desktop and so on to folders of the home folder.
session_own_user_folders() {
  local link
  find "$WINEPREFIX/drive_c/users" -type l | while read -r link; do
    rm "$link"
    mkdir "$link"
  done
}

session_make_prefix() {
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX/ports" "$WINEPREFIX/home"
  WINEDLLOVERRIDES='mscoree,mshtml=' wineboot -i
  wineserver -w
  session_registry_entries >"$WINEPREFIX/setup.reg"
  wine regedit /S "$(winepath -w "$WINEPREFIX/setup.reg")"
  wineserver -k
  wineserver -w
  session_own_user_folders
}

# session_ensure_prefix COMMAND…: the command makes $WINEPREFIX. What was left half made is made anew.
session_ensure_prefix() {
  [ -e "$WINEPREFIX/ready" ] && return 0
  (
    flock 9
    [ -e "$WINEPREFIX/ready" ] && exit 0
    "$@" >"$WINEPREFIX.log" 2>&1 </dev/null 8>&- 9>&- || session_fail "no prefix: see $WINEPREFIX.log"
    touch "$WINEPREFIX/ready"
  ) 9>"$WINEPREFIX.made"
}

# By links, since 700 MB are libraries: Wine puts new files in the place of its registry's, and the others are not
# written. Ports and resolution stand in those, which are plain text while no wineserver runs.
session_copy_prefix() {
  rm -rf "$WINEPREFIX"
  cp -a --link "$1" "$WINEPREFIX"
  rm "$WINEPREFIX/ready"
  sed -i "s|/${1##*/}/ports/com|/${WINEPREFIX##*/}/ports/com|" "$WINEPREFIX/system.reg"
}

session_resolution() {
  sed -i '/^\[Control Panel\\\\Desktop\]/,/^$/ s/^"LogPixels"=.*/"LogPixels"='"$(printf 'dword:%08x' "$1")/" \
    "$WINEPREFIX/user.reg"
}

# Nothing waits for another session here: there is always one more prefix. The lock is descriptor 8, which no program
# inherits.
session_take_prefix() {
  local first=$session_root/build/wine number=0
  mkdir -p "$session_root/build"
  WINEPREFIX=$first session_ensure_prefix session_make_prefix
  until [ "$number" -gt 0 ] && flock -n 8; do
    number=$((number + 1))
    WINEPREFIX=$first-$number
    exec 8>"$WINEPREFIX.lock"
  done
  session_ensure_prefix session_copy_prefix "$first"
}

session_take_named_prefix() {
  mkdir -p "$1"
  WINEPREFIX=$(cd "$1" && pwd)
  exec 8>"$WINEPREFIX.lock"
  flock 8
  session_ensure_prefix session_make_prefix
}

# session_begin: a display, if there is none, and a prefix. Programs find $TW_DPI dots per inch, or 96.
session_begin() {
  trap session_end EXIT
  trap 'exit 143' TERM INT HUP
  export WINEPREFIX WINEDEBUG=-all
  export LC_ALL=C.UTF-8  # else there are no file names beyond ASCII
  export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
  if [ -n "${TW_WINEPREFIX:-}" ]; then session_take_named_prefix "$TW_WINEPREFIX"; else session_take_prefix; fi
  export HOME=$WINEPREFIX/home
  session_server=yes
  wineserver -k 8>&- || true  # what a session left that was killed; it fails when there is none
  wineserver -w 8>&-
  session_resolution "${TW_DPI:-96}"
  [ -n "${DISPLAY:-}" ] || session_start_display
}

# session_instruments ECHOSIM [OPTIONS…]: the echosounder on COM5 and the GPS receiver on COM6, from before the
# first program on. What they say goes to $session_scratch/instruments.
session_instruments() {
  local ports=$WINEPREFIX/ports
  rm -f "$ports"/com[5-8]
  setpriv --pdeathsig TERM "$1" --link "$ports/com5" --gps-link "$ports/com6" "${@:2}" \
    >"$session_scratch/instruments" 2>&1 </dev/null 8>&- &
  session_instruments_pid=$!
  for _ in $(seq 100); do
    [ -e "$ports/com5" ] && return 0
    kill -0 "$session_instruments_pid" 2>/dev/null || break
    sleep 0.1
  done
  cat "$session_scratch/instruments" >&2
  session_fail "no instruments"
}

# session_choices FOLDER [GPS_PORT]: what the program finds stored: the instruments' ports, GPS on COM6 unless it is
# said otherwise (ffffffff is none), the working folder as a Windows path, and recording on.
session_choices() {
  cat >"$session_scratch/choices.reg" <<EOF
REGEDIT4

[HKEY_CURRENT_USER\\Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Settings]
"DeviceCOMPort"=dword:00000005
"DeviceCOMSpeed"=dword:000e1000
"GPSCOMPort"=dword:${2:-00000006}
"GPSCOMSpeed"=dword:000012c0
"WorkingFolder"="${1//\\/\\\\}"
"Recording"=dword:00000001
EOF
  wine regedit /S "$(winepath -w "$session_scratch/choices.reg" 2>/dev/null)" >/dev/null 2>&1 8>&-
}

# session_find_window: the program's main window, once it is shown, for xdotool.
session_find_window() {
  session_window=$(xdotool search --onlyvisible --name '^Tidewriter Echosounder' 2>/dev/null | head -n 1)
  [ -n "$session_window" ]
}

# session_instruments_end: lets them write their report, which is then in $session_scratch/instruments.
session_instruments_end() {
  session_kill "$session_instruments_pid"
  session_instruments_pid=
}
