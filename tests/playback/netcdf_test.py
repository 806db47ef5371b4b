#!/usr/bin/env python3
"""What echotool netcdf writes, read by others and compared with its table and with the golden recording; and what
the CF conventions ask for, as far as a file tells it by itself: netcdf_test.py ECHOTOOL DATA_FOLDER"""
import csv
import datetime
import hashlib
import math
import os
import subprocess
import sys
import tempfile

import netCDF4
import numpy
import xarray

ECHOTOOL, DATA = sys.argv[1:3]
sys.path.insert(0, DATA)
import make_three_pings as golden  # noqa: E402

UNITS = {'m', 's', 'Hz', 'm s-1', 'degree', 'degree_Celsius', 'degrees_north', 'degrees_east', '1',
         'seconds since 1970-01-01 00:00:00'}
# As the CF standard name table has them: canonical units, of which the file's are a form.
NAMES = {'time': 'seconds since 1970-01-01 00:00:00', 'latitude': 'degrees_north', 'longitude': 'degrees_east',
         'sea_water_temperature': 'degree_Celsius', 'platform_pitch': 'degree', 'platform_roll': 'degree',
         'speed_of_sound_in_sea_water': 'm s-1'}
INFO = 'INFO:1,450000,30000,0.1,20,0.0,0,15,0.14,0,150,20,0,1480.0,%d\r\n'
LINES = 'Dual : 1, 1.500, 2.500, 11.25\r\n$GPRMC,123519.25,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*43\r\n'
problems = []


def expect(what, holds, seen=''):
    if not holds:
        problems.append('%s: %r' % (what, seen))


def same(told, row):
    return (row == '') if not math.isfinite(told) else row != '' and abs(told - float(row)) <= 0.0051


def seconds(row):
    text = (row['time_ms_utc'] or row['time_utc']).replace('Z', '+00:00')
    return '%.3f' % datetime.datetime.fromisoformat(text).timestamp() if text else ''


def check_table(data, rows, channel):
    low = channel == 2 and rows[0]['altitude_low_m']
    rows = rows if low else [row for row in rows if int(row['channel']) == channel]
    expect('pings', data.sizes['ping'] == len(rows), data.sizes)
    for i, row in enumerate(rows):
        for name, column in (('latitude', 'latitude_deg'), ('longitude', 'longitude_deg'),
                             ('altitude', 'altitude_low_m' if low else 'altitude_m'),
                             ('temperature', 'temperature_c'), ('pitch', 'pitch_deg'), ('roll', 'roll_deg'),
                             ('ping_number', 'ping')):
            expect('%s of %d' % (name, i), same(float(data[name][i]), row[column]), (data[name][i], row))
        expect('time of %d' % i, same(float(data.time[i]), seconds(row)), (float(data.time[i]), row))


def check_size(path, file):
    """Nothing stands behind the last record."""
    parts = [(v, v.dtype.itemsize * math.prod(v.shape[1:])) for v in file.variables.values()]
    records = sum(-(-part // 4) * 4 for v, part in parts if v.dimensions[0] == 'ping') * len(file.dimensions['ping'])
    fixed = sum(v.shape[0] * part for v, part in parts if v.dimensions[0] != 'ping')
    expect('size', 0 < os.path.getsize(path) - records - fixed < 8192, os.path.getsize(path) - records - fixed)


def check_conventions(file):
    expect('format', file.data_model == 'NETCDF3_64BIT_OFFSET' and file.Conventions == 'CF-1.10', file.data_model)
    for name, variable in file.variables.items():
        expect('units of ' + name, 'flag_values' in variable.ncattrs() or variable.units in UNITS)
        expect('long name of ' + name, variable.long_name)
        if 'standard_name' in variable.ncattrs():
            expect('standard name of ' + name, NAMES.get(variable.standard_name) == variable.units)
        if variable.dimensions[0] == 'ping':
            expect('fill value of ' + name, variable._FillValue.dtype == variable.dtype, variable._FillValue)
        for each in getattr(variable, 'coordinates', '').split():
            expect('coordinates of ' + name, set(file[each].dimensions) <= set(variable.dimensions), each)
        if 'flag_values' in variable.ncattrs():
            expect('flags', variable.flag_values.dtype == variable.dtype and
                   len(variable.flag_values) == len(variable.flag_meanings.split()))
    if 'range' in file.variables:
        distance = file['range'][:]
        expect('range rises', distance[0] == 0 and (numpy.diff(distance) > 0).all() and not numpy.ma.is_masked(distance))


def check_echo(data, traces):
    for i, trace in enumerate(traces):
        seen = data.echo.values[i]
        expect('trace %d' % i, list(seen[:len(trace)]) == trace and numpy.isnan(seen[len(trace):]).all(), seen)


def check_others(path, records):
    subprocess.run(['ncdump', path], check=True, stdout=subprocess.DEVNULL)
    # CDO takes positions that go with the time for a grid that it does not know, unless told to leave them alone.
    told = subprocess.run(['cdo', '-s', 'ntime', path], env={**os.environ, 'IGNORE_ATT_COORDINATES': '1'},
                          capture_output=True, text=True, check=True)
    expect('CDO', told.stdout.strip() == str(records), told)


def check(folder, content, outputs):
    """The outputs: endings, each with its traces (none: no echoes), the type of a sample and the far end of its range."""
    recording = os.path.join(folder, 'a.log')
    with open(recording, 'wb') as out:
        out.write(content)
    for task in ('netcdf', 'csv'):
        subprocess.run([ECHOTOOL, task, recording], check=True)
    expect('files', sorted(os.listdir(folder)) == sorted(['a.log', 'a.csv'] + ['a%s.nc' % o[0] for o in outputs]))
    with open(os.path.join(folder, 'a.csv'), newline='') as table:
        rows = list(csv.DictReader(table))
    for ending, traces, kind, far in outputs:
        path = os.path.join(folder, 'a%s.nc' % ending)
        with xarray.open_dataset(path, decode_times=False) as data, netCDF4.Dataset(path) as file:
            check_table(data, rows, data.attrs['channel'])
            check_conventions(file)
            check_size(path, file)
            expect('sum', file.source_sha256 == hashlib.sha256(content).hexdigest(), file.source_sha256)
            expect('echo', ('echo' in file.variables) == bool(traces), list(file.variables))
            if traces:
                check_echo(data, traces)
                expect('type', file['echo'].dtype == kind, file['echo'].dtype)
            expect('range', ('range' in data.variables) == (far is not None), list(data.variables))
            if far is not None:
                expect('range', abs(float(data.range[-1]) - far) < 1e-9, data.range)
            check_others(path, data.sizes['ping'])


short = [golden.PINGS[0][:15] + (s,) for s in ([1, 2, 3], [32766, 5], [7] * 51)]  # an odd length, so padded
many = [golden.PINGS[0][:15] + ([8] * 900,)] * 300  # by whose first ones the file is laid out


def late(samples, sampling=100000):
    """A ping behind many others that does not fit in with them."""
    return many + [many[0][:2] + (sampling,) + many[0][3:15] + (samples,)]


def row(pings, kind, far):
    return ((INFO % 100).encode() + b''.join(golden.frame(p) for p in pings), [('', [p[15] for p in pings], kind, far)])


for recording, outputs in (
        (b''.join(golden.frame(p) for p in golden.PINGS), [('', [p[15] for p in golden.PINGS], 'int32', None)]),
        row(short, 'int16', 50 * 1480 / 2 / 100000),
        row(many, 'int16', 899 * 1480 / 2 / 100000),
        row(late([1] * 901), 'int16', 900 * 1480 / 2 / 100000),
        row(late([32767]), 'int32', 899 * 1480 / 2 / 100000),
        row(late([1], sampling=50000), 'int16', None),  # and so shorter than what was begun
        ((INFO % 7 * 2 + LINES * 3).encode(), [('_ch1', [], None, None), ('_ch2', [], None, None)])):
    with tempfile.TemporaryDirectory() as work:
        check(work, recording, outputs)
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
