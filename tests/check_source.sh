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

# Versions differ in a line here and there, so it is one on every system.
if command -v clang-format-14 >/dev/null; then
  # shellcheck disable=SC2086
  unformatted=$(clang-format-14 --dry-run $sources 2>&1 | grep -oE "^[^ :]+\.(cpp|h):" | sort -u)
  [ -n "$unformatted" ] && fail "Not formatted (clang-format-14 -i):" "$unformatted"
else
  fail "clang-format-14 is missing:" "formatting is not checked (package clang-format-14)"
fi

loose=$(grep -rliE --include="*.h" --include="*.cpp" '#include <(windows|windowsx|commctrl|shlobj|objidl|gdiplus|commdlg)' src |
  grep -vE '^src/platform/win32/|_win32\.(cpp|h)$')
[ -n "$loose" ] && fail "Windows headers outside the Windows layer:" "$loose"

gear=$(grep -rnE '#include "platform/virtual/' src tools | grep -v '^src/platform/virtual/')
[ -n "$gear" ] && fail "What ships includes test gear:" "$gear"

inside=$(grep -rnE '#include "platform/posix/' src tools | grep -v '^src/platform/')
[ -n "$inside" ] && fail "Only the platform layer includes its own insides:" "$inside"

# stands_on FOLDER OTHERS…: FOLDER of src/ includes its own headers and those of OTHERS, nothing else of src/.
stands_on() {
  local folder=$1 allowed hits
  allowed=$(IFS='|'; echo "$*")
  hits=$(grep -rnE '#include "' "src/$folder" | grep -vE "#include \"($allowed)/")
  [ -n "$hits" ] && fail "src/$folder includes what it does not stand on:" "$hits"
}
stands_on base
stands_on platform base
stands_on app/state base platform
stands_on device base platform app/state
record=$(grep -rn '#include "app/state/app_state.h"' src/device)
[ -n "$record" ] && fail "The device link is a value: src/device includes the state record and its globals:" "$record"
stands_on gps base platform app/state
stands_on acquisition base platform app/state device gps
stands_on outputs base platform app/state
stands_on display base platform app/state device gps acquisition
stands_on playback base platform app/state device gps acquisition
stands_on app/run base platform app/state device gps acquisition playback
stands_on simulator base  # written a second time on purpose, so that an error in one of the two shows

compiles_alone() {
  printf '#include "%s"\n' "${1#src/}" | g++ -std=c++20 -fsyntax-only -Wall -Wextra -I src -x c++ - >/dev/null 2>&1
}
export -f compiles_alone
dependent=$(find src -name '*.h' ! -name '*_win32.h' ! -path 'src/platform/win32/*' ! -name 'control_ids.h' |
  xargs -P "$(nproc)" -I{} bash -c 'compiles_alone {} || echo {}')
[ -n "$dependent" ] && fail "Do not compile alone:" "$dependent"
exit "$status"
