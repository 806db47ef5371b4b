#!/usr/bin/env python3
"""Reads what echotool writes with an independent SEG-Y library: segyio_test.py ECHOTOOL DATA_FOLDER"""
import math
import os
import subprocess
import sys
import tempfile

import segyio

ECHOTOOL, DATA = sys.argv[1:3]
sys.path.insert(0, DATA)
import make_three_pings as golden  # noqa: E402

FIELD = segyio.TraceField
problems = []


def expect(what, got, wanted):
    if got != wanted:
        problems.append('%s: %r instead of %r' % (what, got, wanted))


def check_headers(f):
    text = f.text[0].decode('ascii', 'replace')
    for card in range(1, 41):
        line = text[80 * (card - 1):80 * card].rstrip('\0').rstrip()
        expect('card %d' % card, line, golden.CARDS.get(card, 'C%d' % card))
    first = golden.PINGS[0]
    expect('interval', f.bin[segyio.BinField.Interval], 1000000 // first[2])
    expect('format', f.bin[segyio.BinField.Format], 3)
    expect('fixed-length flag', f.bin[segyio.BinField.TraceFlag], 1)


def check_trace(f, index, ping, length):
    header = f.header[index]
    expect('sequence number', header[FIELD.TRACE_SEQUENCE_FILE], index + 1)
    expect('line sequence number', header[FIELD.TRACE_SEQUENCE_LINE], ping[1])
    expect('field record', header[FIELD.FieldRecord], ping[1])
    expect('samples', header[FIELD.TRACE_SAMPLE_COUNT], length)
    expect('interval', header[FIELD.TRACE_SAMPLE_INTERVAL], 1000000 // ping[2])
    scalar = header[FIELD.SourceGroupScalar]
    expect('scalar', scalar, -1000)
    expect('units', header[FIELD.CoordinateUnits], 2)
    for name, field, radians in (('x', FIELD.SourceX, ping[10]), ('y', FIELD.SourceY, ping[9]),
                                 ('group x', FIELD.GroupX, ping[10]), ('cdp y', FIELD.CDP_Y, ping[9])):
        degrees = header[field] / -scalar / 3600
        if abs(degrees - math.degrees(radians)) > 1e-3 / 3600 + 1e-9:
            problems.append('%s of trace %d: %f' % (name, index, degrees))
    import time
    t = time.gmtime(ping[0])
    expect('time', tuple(header[k] for k in (FIELD.YearDataRecorded, FIELD.DayOfYear, FIELD.HourOfDay,
                                             FIELD.MinuteOfHour, FIELD.SecondOfMinute)),
           (t.tm_year, t.tm_yday, t.tm_hour, t.tm_min, t.tm_sec))
    signed = [s - 65536 if s > 32767 else s for s in ping[15]]
    expect('samples of trace %d' % index, [int(v) for v in f.trace[index]], signed + [0] * (length - len(signed)))


def main():
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([ECHOTOOL, 'segy', '--pad', '--inline', '-o', folder, os.path.join(DATA, 'three_pings.log')],
                       check=True)
        length = max(len(p[15]) for p in golden.PINGS)
        # With its geometry, as strict readers open it.
        with segyio.open(os.path.join(folder, 'three_pings.sgy'), strict=True) as f:
            expect('traces', f.tracecount, len(golden.PINGS))
            expect('inlines', [int(v) for v in f.ilines], [1])
            expect('crosslines', [int(v) for v in f.xlines], [1, 2, 3])
            check_headers(f)
            for index, ping in enumerate(golden.PINGS):
                check_trace(f, index, ping, length)
    for problem in problems:
        print(problem)
    return 1 if problems else 0


sys.exit(main())
