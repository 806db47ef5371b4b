#!/usr/bin/env bash
# Checks that programs which ship hold nothing that only the test gear defines.
# check_shipped.sh GEAR-LIBRARY SHIPPED-LIBRARY PROGRAM...
set -euo pipefail

defined() { nm --defined-only "$1" 2>/dev/null | awk '$2 ~ /^[TDBR]$/ { print $3 }' | sort -u; }

gear=$(comm -23 <(defined "$1") <(defined "$2"))
[ -n "$gear" ] || { echo "$1 defines nothing of its own"; exit 1; }
shift 2
for program; do
  symbols=$(nm "$program" | awk '{ print $NF }' | sort -u)
  grep -qx main <<<"$symbols" || { echo "$program names no symbols"; exit 1; }
  held=$(comm -12 <(printf '%s\n' "$gear") <(printf '%s\n' "$symbols") | c++filt)
  [ -z "$held" ] || { printf '%s holds test gear:\n%s\n' "$program" "$held"; exit 1; }
done
