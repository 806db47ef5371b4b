#!/usr/bin/env bash
# clang-tidy over the sources, each with the command that a build of ./test compiles it with; the rules are in
# .clang-tidy.
#
# usage: tests/check_tidy.sh [--all] [--list]
#
# Looked at is what differs from the merge base with origin/HEAD (or origin/main), committed or not; where that is no
# source, what differs from before the last commit that changed one. With --all, without a history, and when the
# rules themselves have changed, all sources are. --list tells what would be looked at and ends.
set -euo pipefail
cd "$(dirname "$0")/.."

folders=(src tools tests fuzz bench)
rules=(.clang-tidy tests/check_tidy.sh)
all=''
list=''
for argument in "$@"; do
  case $argument in
    --all) all=1 ;;
    --list) list=1 ;;
    *) echo "check_tidy: unknown option $argument" >&2; exit 2 ;;
  esac
done

# changed_since COMMIT PATH…: those of the paths that differ from the commit, also what git does not know yet.
changed_since() {
  local commit=$1
  shift
  git diff --name-only --diff-filter=d "$commit" -- "$@"
  git ls-files --others --exclude-standard -- "$@"
}

# choose: sets `files` and `reason`. Headers come with the sources that include them when all are looked at.
choose() {
  local base sources=("${folders[@]/%//*.cpp}") headers=("${folders[@]/%//*.h}")
  mapfile -t files < <(find "${folders[@]}" -name '*.cpp' | sort)
  reason="all sources"
  [ -z "$all" ] || return 0
  reason="all sources, for there is no history of changes"
  git ls-files --error-unmatch test >/dev/null 2>&1 || return 0
  base=$(git merge-base HEAD origin/HEAD 2>/dev/null || git merge-base HEAD origin/main 2>/dev/null || true)
  if [ -z "$base" ] || [ -z "$(changed_since "$base" "${sources[@]}" "${headers[@]}" "${rules[@]}")" ]; then
    base=$(git log -1 --format=%H -- "${sources[@]}" "${headers[@]}" "${rules[@]}")
    base=$(git rev-parse -q --verify "$base^" 2>/dev/null) || return 0
  fi
  reason="all sources, for the rules have changed since $(git rev-parse --short "$base")"
  [ -z "$(changed_since "$base" "${rules[@]}")" ] || return 0
  reason="what has changed since $(git rev-parse --short "$base")"
  mapfile -t files < <(changed_since "$base" "${sources[@]}" "${headers[@]}" | sort -u)
}

choose
if [ "${#files[@]}" -eq 0 ]; then
  reason="all sources, for those that have changed are gone"
  mapfile -t files < <(find "${folders[@]}" -name '*.cpp' | sort)
fi
told="clang-tidy: ${#files[@]} looked at ($reason)"
printf '%s\n' "$told"
[ -z "$list" ] || exit 0

command -v clang-tidy-14 >/dev/null || { echo "clang-tidy-14 is missing (package clang-tidy-14)"; exit 1; }

# Of the builds that compile a source the last one named here counts.
declare -A build_of
for build in windows bench fuzz tsan asan; do
  commands=build/$build/compile_commands.json
  if [ ! -f "$commands" ] || [ "$build" = bench ]; then cmake --preset "$build" >/dev/null; fi
  while read -r file; do
    build_of[${file#"$PWD"/}]=$build
  done < <(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$commands")
done

# Headers take the command of the source that is nearest by name; a source that no build compiles has none.
build_for() {
  case $1 in
    src/platform/win32/*.h | *_win32.h | tests/window/*.h) printf 'windows\n' ;;
    *.h) printf 'asan\n' ;;
    *) printf '%s\n' "${build_of[$1]-}" ;;
  esac
}

# What clang does not find out about the other compiler by itself.
for_windows=$(x86_64-w64-mingw32-g++-posix -v -E -x c++ /dev/null 2>&1 >/dev/null |
  sed -n '/^#include </,/^End of/s/^ \(.*c++.*\)/--extra-arg=-isystem\1/p' | tr '\n' ' ')
for_windows+='--extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-ignored-attributes'
export for_windows

tidy() {
  [ $# -eq 2 ] || return 0  # nothing but what is left out
  local extra=(--extra-arg=-Wno-everything)  # the compilers' own warnings are the builds' matter
  # shellcheck disable=SC2206
  [ "$1" != windows ] || extra+=($for_windows)
  local report
  report=$(clang-tidy-14 --quiet -p "build/$1" "${extra[@]}" "$2" 2>&1) && return 0
  printf '%s\n' "$report" | grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? (generated|treated as errors?)\.?$'
  return 1
}
export -f tidy

pairs=()
for file in "${files[@]}"; do
  build=$(build_for "$file")
  if [ -n "$build" ]; then
    pairs+=("$build $file")
  else
    echo "left out, in no build: $file"
  fi
done
# shellcheck disable=SC2016
if ! printf '%s\n' ${pairs[@]+"${pairs[@]}"} | xargs -P "$(nproc)" -L 1 bash -c 'tidy "$@"' tidy; then
  echo "$told: findings above"
  exit 1
fi
echo "$told: no findings in ${#pairs[@]}"
