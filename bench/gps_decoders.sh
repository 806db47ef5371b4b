#!/usr/bin/env bash
# The same half million GPS sentences through this program's parser, gpsdecode (Debian: gpsd-clients) and pynmea2
# (Debian: python3-nmea2). The decoders' time to start and stop is measured apart and not counted.
#   bench/gps_decoders.sh
set -euo pipefail
cd "$(dirname "$0")/.."
sentences=$(mktemp)
trap 'rm -f "$sentences"' EXIT
ours=$(build/bench/bench/gps_bench "$sentences")
echo "$ours"
ours_ms=$(sed -n 's/.* in \([0-9.]*\) ms,.*/\1/p' <<<"$ours")

# milliseconds FILE COMMAND...: of processor time on FILE, the median of three runs.
milliseconds() {
  local file=$1 TIMEFORMAT='%U %S'
  shift
  for _ in 1 2 3; do
    { time "$@" <"$file" >/dev/null; } 2>&1 | awk '{ print 1000 * ($1 + $2) }'
  done | sort -n | sed -n 2p
}

# compare NAME COMMAND...
compare() {
  local name=$1 idle busy
  shift
  idle=$(milliseconds /dev/null "$@")
  busy=$(milliseconds "$sentences" "$@")
  awk -v name="$name" -v idle="$idle" -v busy="$busy" -v ours="$ours_ms" \
    'BEGIN { printf "%s: %.0f ms, %.1f x\n", name, busy - idle, (busy - idle) / ours }'
}

if command -v gpsdecode >/dev/null; then
  compare gpsdecode gpsdecode
else
  echo "gpsdecode is missing: apt-get install gpsd-clients"
fi
python=/usr/bin/python3  # Debian's own, whose packages apt installs
if "$python" -c 'import pynmea2' 2>/dev/null; then
  # It only cuts a sentence into fields until a value is asked for.
  compare pynmea2 "$python" -c 'import sys, pynmea2
for line in sys.stdin:
    sentence = pynmea2.parse(line, check=True)
    for field in sentence.fields: getattr(sentence, field[1], None)'
else
  echo "pynmea2 is missing: apt-get install python3-nmea2"
fi
