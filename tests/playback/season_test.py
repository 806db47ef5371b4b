#!/usr/bin/env python3
"""examples/season.py on two workers gives what a plain program computes of the tables of `echotool csv` and of the
samples that stand in the recordings: season_test.py ECHOTOOL RECORDING_MAKER SEASON"""
import contextlib
import csv
import datetime
import functools
import glob
import itertools
import json
import math
import os
import re
import signal
import statistics
import subprocess
import sys
import tempfile
import time

import distributed
import netCDF4
import numpy

ECHOTOOL, MAKER, SEASON = map(os.path.abspath, sys.argv[1:4])
RECORDINGS, PINGS = (120, 4000) if 'TW_FULL' in os.environ else (40, 1780)
CELL = 8.0
NORTH, EAST = -17.31, 180.0  # of the area's middle: on both sides of the date line, and on it
INFO = 'INFO:1,450000,30000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,%d\r\n'
FRAME = numpy.dtype([('magic', 'S4'), ('length', '<u4'), ('device', '<u4', 2), ('time', '<u4'), ('ping', '<u4'),
                     ('sampling', '<u4'), ('', '<u4'), ('count', '<u4'), ('range', '<f4'), ('frequency', '<i4'),
                     ('', '<u4'), ('altitude', '<f4'), ('', '<f4', 3), ('latitude', '<f4'), ('longitude', '<f4'),
                     ('', '<f4'), ('', '<u4'), ('', '<f4'), ('valid', '<i4'), ('echo', '<u2', 1000)])
problems = []


def expect(what, holds, seen=''):
    if not holds:
        problems.append('%s: %r' % (what, seen))


def device_frames(folder):
    path = os.path.join(folder, 'device.log')
    subprocess.run([MAKER, 'frames', '8', path], check=True)
    with open(path, 'rb') as file:
        content = file.read()
    os.remove(path)
    return numpy.frombuffer(content[content.index(b'TR57'):], FRAME)


def recording(device, number):
    """Its frames: at sea, five pings and one new position a second, and one recording after the other."""
    frames = device[(numpy.arange(PINGS) + 53 * number) % len(device)].copy()
    second = numpy.arange(PINGS) // 5
    overlap = 100 if number % 10 == 9 else 0  # a clock that was set back
    frames['time'] = 1_748_736_017 + number * (PINGS // 5) + second - overlap
    frames['altitude'] = 6 + number % 3 + numpy.arange(PINGS) % 160 / 8
    along = (second - PINGS // 10) * 2.0 * (-1) ** number
    frames['latitude'] = numpy.radians(NORTH + number % 5 * 25 / 111120)
    east = EAST + along / 111120 / math.cos(math.radians(NORTH))
    frames['longitude'] = numpy.radians((east + 180) % 360 - 180)
    frames['valid'] = 1
    frames['altitude'][5:300:7] = 0
    frames['altitude'][6:300:11] = math.nan
    for name in ('latitude', 'longitude', 'valid'):
        frames[name][20 * number:20 * number + 60] = 0
    frames['time'][400:420] = 0
    if number % 8 == 7:
        frames['echo'][100:200, 7] = 65535
    if number % 8 == 3:
        frames['frequency'] = 30000
    if number == 6:
        frames['magic'] = b'DUAL'
        frames['frequency'][1::2] = 30000
    return frames


def frame_bytes(frames, number):
    """Of every fourth recording all traces are shorter, and of every fifth some."""
    frames['count'] = 600 if number % 4 == 2 else 1000
    if number % 5 == 1:
        frames['count'][::3] = 317
    return b''.join(each.tobytes()[:88 + 2 * int(each['count'])] for each in frames)


def lines_bytes():
    """Both depths in a line, and no echoes."""
    lines = [INFO % 7, INFO.replace('450000', '30000') % 7]
    for i in range(120):
        rmc = 'GPRMC,1235%02d.00,A,1718.600,S,17959.9%02d,E,3.0,84.4,010625,003.1,W' % (i // 2, i % 100)
        lines.append('Dual : 1, %.3f, %.3f, 11.25\r\n$%s*%02X\r\n' % (
            1.5 + i / 8, 2.5 + i / 8, rmc, functools.reduce(int.__xor__, rmc.encode())))
    return ''.join(lines).encode()


def write_season(folder, work):
    device, samples = device_frames(work), {}
    for number in range(RECORDINGS - 1):
        path = os.path.join(folder, 'day%d' % (number // 8), 'line.%02d.log' % (number % 8))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        frames = recording(device, number)
        with open(path, 'wb') as out:
            out.write((INFO % 100).encode() if number != 6 else b'')
            out.write(frame_bytes(frames, number))
        samples[path] = [trace[:count] for trace, count in zip(frames['echo'], frames['count'])]
    path = os.path.join(folder, 'lines.log')
    with open(path, 'wb') as out:
        out.write(lines_bytes())
    return {**samples, path: None}


def seconds(text):
    return int(datetime.datetime.fromisoformat(text.replace('Z', '+00:00')).timestamp()) if text else None


def pings_of(table, traces):
    """Channel, frequency, time, depth, position and samples of each ping."""
    with open(table, newline='') as file:
        for row, trace in itertools.zip_longest(csv.DictReader(file), traces or [], fillvalue=()):
            place = tuple(float(row[name]) for name in ('latitude_deg', 'longitude_deg') if row[name])
            told = seconds(row['time_utc']), float(row['altitude_m']), place, trace
            yield int(row['channel']), int(row['frequency_hz']), *told
            if row['altitude_low_m']:
                yield 2, 30000, told[0], float(row['altitude_low_m']), *told[2:]


def plain(samples, tables):
    """What season.py tells, ping by ping."""
    minutes, cells = {}, {}
    height = CELL / 111120
    width = height / math.cos(math.radians(round(NORTH, 1)))
    for path, traces in samples.items():
        table = os.path.join(tables, table_name(path)[:-4] + '.csv')
        for channel, frequency, at, depth, place, trace in pings_of(table, traces):
            if at is not None:
                minute = minutes.setdefault((channel, frequency, at // 60), [0, [], []])
                minute[0] += 1
                minute[1] += [depth] if depth > 0 else []
                minute[2].append(trace)
            if place and depth > 0:
                cell = math.floor(place[0] / height), math.floor((place[1] % 360) / width)
                cells.setdefault((channel, frequency, *cell), []).append(depth)
    return minutes, cells, height, width


def close(told, value, tolerance):
    return told == '' if value is None else told != '' and abs(float(told) - value) <= tolerance


def check_minutes(path, minutes):
    with open(path, newline='') as file:
        rows = list(csv.DictReader(file))
    expect('minutes', len(rows) == len(minutes), (len(rows), len(minutes)))
    for row in rows:
        key = int(row['channel']), int(row['frequency_hz']), seconds(row['minute_utc']) // 60
        pings, depths, traces = minutes.get(key, (0, [], []))
        echo = numpy.concatenate(traces) if traces else ()
        expect('pings of %s' % (key,), (int(row['pings']), int(row['depths'])) == (pings, len(depths)), row)
        depth = statistics.fmean(depths) if depths else None
        expect('depth of %s' % (key,), close(row['mean_depth_m'], depth, 1e-4), row)
        expect('echo of %s' % (key,), close(row['median_echo'], numpy.median(echo) if len(echo) else None, 0), row)


@functools.cache
def raster_of(output, channel, frequency):
    return netCDF4.Dataset(os.path.join(output, 'grid_ch%d_%dkHz.nc' % (channel, frequency // 1000)))


def check_grid(output, cells, height, width):
    with open(os.path.join(output, 'grid.csv'), newline='') as file:
        rows = list(csv.DictReader(file))
    expect('cells', len(rows) == len(cells), (len(rows), len(cells)))
    total = 0
    for each in {key[:2] for key in cells}:
        total += int(raster_of(output, *each)['pings'][:].sum())
    expect('pings of the rasters', total == sum(map(len, cells.values())), total)
    for row in rows:
        channel, frequency = int(row['channel']), int(row['frequency_hz'])
        latitude, longitude = float(row['latitude']), float(row['longitude'])
        key = channel, frequency, math.floor(latitude / height), math.floor(longitude % 360 / width)
        depths = cells.get(key, [math.nan])
        told = [float(row[name]) for name in ('pings', 'mean_depth_m', 'min_depth_m', 'max_depth_m')]
        right = [len(depths), statistics.fmean(depths), min(depths), max(depths)]
        expect('cell %s' % (key,), numpy.allclose(told, right, rtol=0, atol=1e-4), (told, right))
        raster = raster_of(output, channel, frequency)
        at = tuple(round((place - raster[name][0]) / size) for name, place, size in (
            ('latitude', latitude, height), ('longitude', longitude % 360, width)))
        drawn = [float(raster[name][at]) for name in ('pings', 'mean_depth', 'min_depth', 'max_depth')]
        expect('raster at %s' % (key,), numpy.allclose(drawn, right, rtol=0, atol=1e-4), (drawn, right))


@contextlib.contextmanager
def started(*words, **options):
    """A process that does not outlive the test, nor do those that it has started."""
    process = subprocess.Popen(words, start_new_session=True, **options)
    try:
        yield process
    finally:
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()


def run_season(recordings, output, *options, behind_first=lambda: None):
    """With little in a task, so that there are many, and minutes that are cut."""
    with started(sys.executable, '-B', SEASON, recordings, output, '--echotool', ECHOTOOL, '--cell', str(CELL),
                 '--chunk', '1.3', *options, stderr=subprocess.PIPE, text=True) as season:
        for line in season.stderr:
            print(line, end='', flush=True)
            if re.match('season.py: [0-9]+ of', line):
                behind_first()
                behind_first = lambda: None  # noqa: E731
        expect('exit code', season.wait() == 0, season.returncode)


def lose(worker, address):
    """Kills it while it has something to do."""
    with distributed.Client(address) as client:
        client.wait_for_workers(2)
        own = next(each for each, number in client.run(os.getpid).items() if number == worker.pid)
        while worker.poll() is None:
            if client.processing()[own]:
                worker.kill()
                worker.wait()


def run_on_cluster(recordings, output, work):
    """The workers are started by hand, and one of them is lost when the first files are done."""
    contact = os.path.join(work, 'scheduler.json')
    options = ['--scheduler-file', contact, '--host', '127.0.0.1', '--no-dashboard']
    with started('dask', 'scheduler', *options, '--port', '0') as scheduler:
        address = None
        while address is None and scheduler.poll() is None:
            with contextlib.suppress(OSError, json.JSONDecodeError), open(contact) as file:
                address = json.load(file)['address']
            time.sleep(0.05)
        worker = ['dask', 'worker', *options, '--nthreads', '1', '--no-nanny', '--local-directory', work]
        with started(*worker) as lost, started(*worker):
            run_season(recordings, output, '--scheduler', address, '--middle=-17.32,180',
                       behind_first=lambda: lose(lost, address))


def made_when(output):
    return {path: os.stat(path).st_mtime_ns for path in glob.glob(output + '/netcdf/**/*.nc', recursive=True)}


def write_tables(recordings, folder):
    os.mkdir(folder)
    for path in recordings:
        os.link(path, os.path.join(folder, table_name(path)))
    subprocess.run([ECHOTOOL, 'csv', *sorted(glob.glob(folder + '/*.log'))], check=True)


def table_name(path):
    return '_'.join(path.split(os.sep)[-2:])


def check_season(work):
    recordings, tables, output = (os.path.join(work, name) for name in ('recordings', 'tables', 'output'))
    os.mkdir(recordings)
    samples = write_season(recordings, work)
    write_tables(samples, tables)
    minutes, cells, height, width = plain(samples, tables)
    run_season(recordings, output)
    check_minutes(os.path.join(output, 'minutes.csv'), minutes)
    check_grid(output, cells, height, width)
    first = made_when(output)
    for path in glob.glob(output + '/*.*'):
        os.remove(path)
    raster_of.cache_clear()
    os.utime(min(samples))
    run_on_cluster(recordings, output, work)
    again = [path for path, made in made_when(output).items() if made != first[path]]
    expect('made again', list(map(table_name, again)) == [table_name(min(samples))[:-4] + '.nc'], again)
    check_minutes(os.path.join(output, 'minutes.csv'), minutes)
    check_grid(output, cells, height, width)


signal.signal(signal.SIGALRM, signal.default_int_handler)  # so that a hung cluster is ended and its files go
signal.alarm(1200 if 'TW_FULL' in os.environ else 300)
with tempfile.TemporaryDirectory(dir='.') as work:
    check_season(os.path.abspath(work))
for problem in problems[:20]:
    print(problem)
sys.exit(1 if problems else 0)
