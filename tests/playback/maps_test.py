#!/usr/bin/env python3
"""The tracks and soundings that echotool writes, read by GDAL, GPSBabel and by hand: maps_test.py ECHOTOOL DATA_FOLDER"""
import csv
import functools
import os
import statistics
import subprocess
import sys
import tempfile
import xml.dom.minidom

ECHOTOOL = sys.argv[1]
NAME = 'a<&".log'
INFO = 'INFO:1,450000,30000,0.1,20,0.0,0,15,0.14,0,150,20,0,1500.0,1\r\n'
# A boat that passes 180 degrees, half a second a ping, whose clock is set back once; the first ping finds no bottom.
PLACES = [(48.5, 179.999), (48.5, 179.9994), (48.5001, 179.9998), (48.5, -179.9998), (48.5, -179.9994)]
TIMES = ['12:35:00.50', '12:35:01', '12:35:01.50', '12:35:01', '12:35:03']
EVENTS = ('UTC,event,detail\r\n'
          '2024-03-23T12:35:02.000Z,mark,"7, ping 3, 12.000 m, 48.50000000 179.99900000, wreck <&"\r\n'
          '2024-03-23T12:35:04.000Z,mark,"8, ping 9, no bottom, 48.50000000 179.99900000, too late"\r\n')
problems = []


def expect(what, got, wanted):
    if got != wanted:
        problems.append('%s: %r instead of %r' % (what, got, wanted))


def sentence(body):
    return '$%s*%02X\r\n' % (body, functools.reduce(lambda a, c: a ^ ord(c), body, 0))


def ping(i):
    (north, east), time = PLACES[i], TIMES[i].replace(':', '')
    place = '%02d%07.4f,N,%03d%07.4f,%s' % (north, north % 1 * 60, abs(east), abs(east) % 1 * 60, 'E' if east > 0 else 'W')
    return ('Alt : %d\r\n' % (10 + i if i else 0) + sentence('GPGGA,%s,%s,1,08,0.9,1.0,M,0.0,M,,' % (time, place)) +
            sentence('GPRMC,%s,A,%s,022.4,084.4,230324,003.1,W' % (time, place)))


def rows(*command):
    told = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return list(csv.DictReader(told.splitlines()))


def places(table, x, y):
    return [(round(float(row[y]), 6), round(float(row[x]), 6)) for row in table]


def gpsbabel(kind, form, path):
    return rows('gpsbabel', kind, '-i', form, '-f', path, '-o', 'unicsv,utc=0', '-F', '-')


def ogr(path, *layer):
    return rows('ogr2ogr', '-f', 'CSV', '/vsistdout/', path, *layer, '-lco', 'GEOMETRY=AS_XY')


def check_soundings(folder):
    """Soundings have depths from 11 to 14 m; the tide falls from 1 m by 0.1 m a second."""
    tide = os.path.join(folder, 'tide.txt')
    with open(tide, 'w') as out:
        out.write('2024-03-23T12:35:00Z 1.0\n2024-03-23T12:35:10Z 0.0\n')
    seconds = [float(t[6:]) for t in TIMES]
    full = [(10 + i) * 1480 / 1500 + 0.25 - (1 - seconds[i] / 10) for i in range(1, 5)]
    smooth = [statistics.median(full[max(0, i - 1):i + 2]) for i in range(4)]
    correction = ['--tide', tide, '--draught', '0.25', '--sound-speed', '1480']
    for words, wanted in (
            ([], [(PLACES[i][1], PLACES[i][0], 10 + i) for i in range(1, 5)]),
            (correction + ['--columns', 'ping,depth'], [(i + 2, full[i]) for i in range(4)]),
            (correction + ['--columns', 'ping,depth', '--median', '3', '--every', '2'], [(2, smooth[0]), (4, smooth[2])])):
        subprocess.run([ECHOTOOL, 'xyz', os.path.join(folder, NAME), *words], check=True, capture_output=True)
        with open(os.path.join(folder, NAME[:-4] + '.xyz')) as lines:
            seen = [tuple(float(field) for field in line.split()) for line in lines]
        near = len(seen) == len(wanted) and all(abs(s - w) < 0.00051 for a, b in zip(seen, wanted) for s, w in zip(a, b))
        expect('soundings of %s' % words, near or seen, True)
    with open(tide, 'w') as out:
        out.write('2024-03-23T12:35:02Z 1.0\n')
    told = subprocess.run([ECHOTOOL, 'xyz', os.path.join(folder, NAME), '--tide', tide], capture_output=True, text=True)
    expect('outside of the tide', (told.returncode, 'is outside of' in told.stderr), (1, True))


def main(folder):
    recording = os.path.join(folder, NAME)
    for name, text in ((NAME, INFO + ''.join(map(ping, range(len(PLACES))))), ('events.csv', EVENTS)):
        with open(os.path.join(folder, name), 'w', newline='') as out:
            out.write(text)
    for task in ('gpx', 'geojson', 'kml', 'nmea'):
        subprocess.run([ECHOTOOL, task, recording], check=True)
        os.rename('%s.%s' % (recording[:-4], task), os.path.join(folder, 'a.' + task))
    gpx, geojson, kml = (os.path.join(folder, 'a.' + task) for task in ('gpx', 'geojson', 'kml'))

    track = ogr(gpx, 'track_points')
    expect('places of GPX', places(track, 'X', 'Y'), PLACES)
    wanted = ['2024/03/23 %s+00' % (t + '0' if '.' in t else t) for t in TIMES]
    expect('times of GPX', [row['time'] for row in track], wanted)
    expect('mark of GPX', [(row['name'], row['time'][11:19]) for row in ogr(gpx, 'waypoints')], [('7 wreck <&', '12:35:02')])
    depths = [node.firstChild.data for node in xml.dom.minidom.parse(gpx).getElementsByTagName('gpxtpx:depth')]
    expect('depths of GPX', depths, ['12.000', '11.000', '12.000', '13.000', '14.000'])
    expect('GPX elsewhere', places(gpsbabel('-t', 'gpx', gpx), 'Longitude', 'Latitude'), PLACES)

    points = ogr(geojson)
    expect('kinds of GeoJSON', [row['kind'] for row in points], ['mark'] + ['ping'] * 5 + ['track'])
    expect('places of GeoJSON', places(points[1:-1], 'X', 'Y'), PLACES)
    expect('depths of GeoJSON', [row['depth_m'] for row in points], ['12', '', '11', '12', '13', '14', ''])
    expect('times of GeoJSON', [row['time'] for row in points[1:-1]], wanted)
    expect('names of GeoJSON', (points[0]['name'], points[-1]['name']), ('7 wreck <&', NAME))
    line = subprocess.run(['ogrinfo', '-q', '-al', geojson], check=True, capture_output=True, text=True).stdout
    expect('line of GeoJSON', 'MULTILINESTRING ((179.999 48.5,179.9994 48.5,179.9998 48.5001),(-179.9998 48.5,-179.9994 48.5))'
           in line, True)
    expect('GeoJSON elsewhere', places(gpsbabel('-w', 'geojson', geojson)[1:], 'Longitude', 'Latitude'), PLACES)

    check_soundings(folder)
    nmea = os.path.join(folder, 'a.nmea')
    table = gpsbabel('-t', 'nmea', nmea)
    expect('places of NMEA', places(table, 'Longitude', 'Latitude'), PLACES)
    expect('times of NMEA', [row['Time'][:8] for row in table], [t[:8] for t in TIMES])
    with open(nmea) as sentences:
        depths = [line.split(',')[1] for line in sentences if line.startswith('$SDDPT')]
    expect('depths of NMEA', depths, ['11.00', '12.00', '13.00', '14.00'])

    # The line, then what has rising times.
    timed = [row for row in gpsbabel('-t', 'kml', kml) if row['Time']]
    expect('times of KML', [row['Time'][:8] for row in timed], [TIMES[i][:8] for i in (0, 1, 2, 4)])
    expect('places of KML', places(timed, 'Longitude', 'Latitude'), [PLACES[i] for i in (0, 1, 2, 4)])
    expect('mark of KML', [row['Name'] for row in ogr(kml)], [NAME, NAME, '7 wreck <&'])


with tempfile.TemporaryDirectory() as work:
    main(work)
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
