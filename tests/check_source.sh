#!/usr/bin/env bash
# Checks of the source text: formatting, the boundary of the Windows layer, the simulator's independence, the
# direction of includes, and that each header compiles alone.
set -uo pipefail
cd "$(dirname "$0")/.."
status=0
fail() {
  printf '%s\n' "$1" "$2"
  status=1
}

sources=$(find src tools tests fuzz bench -name '*.cpp' -o -name '*.h' | sort)

if command -v clang-format >/dev/null && clang-format --version | grep -q ' version 14\.'; then
  # shellcheck disable=SC2086
  unformatted=$(clang-format --dry-run $sources 2>&1 | grep -o '^[^:]*' | sort -u)
  [ -n "$unformatted" ] && fail "Not formatted (clang-format -i):" "$unformatted"
else
  echo "clang-format 14 is not here; formatting is not checked"
fi

loose=$(grep -rliE --include="*.h" --include="*.cpp" '#include <(windows|windowsx|commctrl|shlobj|objidl|gdiplus|commdlg)' src |
  grep -vE '^src/platform/win32/|_win32\.(cpp|h)$')
[ -n "$loose" ] && fail "Windows headers outside the Windows layer:" "$loose"

coupled=$(grep -nE '#include "(device|acquisition|gps|app|display|playback|platform)/' src/simulator/* /dev/null)
[ -n "$coupled" ] && fail "The simulator is written a second time on purpose, but includes:" "$coupled"

upward=$(grep -rnE '#include "app/' src/device src/acquisition src/gps src/display src/playback 2>/dev/null |
  grep -v '"app/state/')
[ -n "$upward" ] && fail "Only app/state/ is for others:" "$upward"

# arrows LIBRARY FORBIDDEN…: LIBRARY includes nothing from the folders above it.
arrows() {
  local from=$1 pattern
  shift
  pattern=$(IFS='|'; echo "$*")
  local hits
  hits=$(grep -rnE "#include \"($pattern)/" "src/$from")
  [ -n "$hits" ] && fail "src/$from includes what stands above it:" "$hits"
}
arrows base platform app device acquisition display gps playback simulator
arrows platform app device acquisition display gps playback simulator
arrows device acquisition display gps playback simulator
arrows gps acquisition display device playback simulator
arrows acquisition display playback simulator

compiles_alone() {
  printf '#include "%s"\n' "${1#src/}" | g++ -std=c++20 -fsyntax-only -Wall -Wextra -I src -x c++ - >/dev/null 2>&1
}
export -f compiles_alone
dependent=$(find src -name '*.h' ! -name '*_win32.h' ! -path 'src/platform/win32/*' ! -name 'control_ids.h' |
  xargs -P "$(nproc)" -I{} bash -c 'compiles_alone {} || echo {}')
[ -n "$dependent" ] && fail "Do not compile alone:" "$dependent"
exit "$status"
