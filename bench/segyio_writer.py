#!/usr/bin/env python3
"""The frames of a binary recording written as SEG-Y with segyio, as a Python program does it.

    segyio_writer.py RECORDING OUTPUT
"""
import math
import struct
import sys
import time

import numpy
import segyio
from segyio import TraceField as T

HEADER = 88


def frames(path):
    with open(path, 'rb') as recording:
        recording.readline()
        while len(header := recording.read(HEADER)) == HEADER:
            count = struct.unpack_from('<I', header, 32)[0]
            yield header, numpy.frombuffer(recording.read(2 * count), dtype='<i2')


def main():
    source, target = sys.argv[1:]
    count = sum(1 for _ in frames(source))
    header, samples = next(frames(source))
    layout = segyio.spec()
    layout.format = 3
    layout.samples = list(range(len(samples)))
    layout.tracecount = count
    with segyio.create(target, layout) as out:
        for i, (header, samples) in enumerate(frames(source)):
            seconds, ping, frequency, _, length = struct.unpack_from('<5I', header, 16)
            latitude, longitude = (int(math.degrees(v) * 3600000) for v in struct.unpack_from('<2f', header, 64))
            t = time.gmtime(seconds)
            out.header[i] = {
                T.TRACE_SEQUENCE_LINE: ping, T.TRACE_SEQUENCE_FILE: i + 1, T.FieldRecord: ping, T.TraceNumber: ping,
                T.EnergySourcePoint: ping, T.CDP: ping, T.CDP_TRACE: 1, T.TraceIdentificationCode: 1,
                T.NSummedTraces: 1, T.NStackedTraces: 1, T.DataUse: 1, T.ElevationScalar: -1000,
                T.SourceGroupScalar: -1000, T.SourceX: longitude, T.SourceY: latitude, T.GroupX: longitude,
                T.GroupY: latitude, T.CoordinateUnits: 2, T.WeatheringVelocity: 1500,
                T.TRACE_SAMPLE_COUNT: length, T.TRACE_SAMPLE_INTERVAL: 1000000 // frequency,
                T.YearDataRecorded: t.tm_year, T.DayOfYear: t.tm_yday, T.HourOfDay: t.tm_hour,
                T.MinuteOfHour: t.tm_min, T.SecondOfMinute: t.tm_sec, T.TimeBaseCode: 4, T.CDP_X: longitude,
                T.CDP_Y: latitude, T.ShotPointScalar: 1, T.ScalarTraceHeader: 1}
            out.trace[i] = samples


main()
