#!/usr/bin/env python3
"""echotool as a process: exit codes, what it says and where, its bar, Ctrl-C: echotool_process_test.py ECHOTOOL
DATA_FOLDER"""
import csv
import json
import os
import pty
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ECHOTOOL, DATA = sys.argv[1:3]
problems = []


def expect(what, holds, seen=''):
    if not holds:
        problems.append('%s: %r' % (what, seen))


def run(*words, **options):
    done = subprocess.run([ECHOTOOL, *words], capture_output='stdout' not in options, text=True, **options)
    return done.returncode, done.stdout, done.stderr


def check_exit_codes(folder):
    good, bad = os.path.join(folder, 'good.log'), os.path.join(folder, 'bad.log')
    shutil.copy(os.path.join(DATA, 'three_pings.log'), good)
    with open(bad, 'w') as out:
        out.write('no recording')
    for words, code, told in ((['info', good], 0, ''), (['csv', good], 0, ''), (['--help'], 0, ''), (['check', bad], 1, 'echotool: %s: ' % bad),
                              (['repair', good], 0, ''), (['--version'], 0, ''),
                              (['kml', bad, good], 1, 'echotool: %s: ' % bad), (['draw', good], 2, 'echotool: '),
                              ([], 2, 'echotool: ')):
        seen = run(*words)
        expect('exit code of %s' % words, seen[0] == code, seen)
        expect('quiet but for errors, %s' % words, seen[2].startswith(told) and bool(told) == bool(seen[2]), seen)
        expect('answers to %s' % words, bool(seen[1]) == (words[:1] in (['info'], ['--help'], ['--version'])), seen)
    expect('the good one is done', os.path.exists(os.path.join(folder, 'good.kml')))
    with open(good, 'rb') as whole, open(os.path.join(folder, 'damaged.log'), 'wb') as out:
        out.write(whole.read()[:-1])
    seen = run('check', good, out.name)
    lines = ['%s: %s' % (good, 'time: '), '%s: %s' % (out.name, 'damaged: ')]
    expect('faults', seen[0] == 1 and list(map(str.startswith, seen[1].splitlines(), lines)) == [True, True], seen)
    with open('/dev/full', 'w') as full:
        code = run('info', good, stdout=full, stderr=subprocess.DEVNULL)[0]
    expect('a report that nobody gets', code == 1, code)


def long_recording(folder):
    """Three pings, and then nothing for 64 GB."""
    path = os.path.join(folder, 'long.log')
    shutil.copy(os.path.join(DATA, 'three_pings.log'), path)
    os.truncate(path, 64 << 30)
    return path


TASKS = (('segy', '.sgy'), ('segy --pad', '.sgy'), ('text', '_txt.log'), ('csv', '.csv'), ('kml', '.kml'), ('gpx', '.gpx'),
         ('geojson', '.geojson'), ('xyz --median 3', '.xyz'), ('nmea', '.nmea'), ('netcdf', '.nc'), ('png', '.png'), ('report', '.html'),
         ('repair', '_repaired.log'), ('cut --from 0', '_cut.log'), ('join long.log', '_joined.log'))


def check_interruption(folder, number, tasks):
    """Tasks in the middle of their work: an older output stays as it is, and nothing is left but by a kill."""
    path = long_recording(folder)
    for task, ending in tasks:
        older = os.path.join(folder, 'long' + ending)
        with open(older, 'w') as out:
            out.write('older')
        terminal, theirs = pty.openpty()
        process = subprocess.Popen([ECHOTOOL, *task.split(), path], stdout=subprocess.DEVNULL, stderr=theirs, cwd=folder)
        os.close(theirs)
        told = ''
        try:
            while piece := os.read(terminal, 65536).decode():
                told += piece
                if '%' in piece:  # of its bar
                    process.send_signal(number)
        except OSError:  # all has been read, and nobody is at the other end
            os.close(terminal)
        killed = number == signal.SIGKILL
        expect('exit code of ' + task, process.wait(timeout=20) == (-number if killed else 130), process.returncode)
        expect('it says so', killed or told.endswith(': interrupted\r\n'), told)
        expect('no half file', killed or set(os.listdir(folder)) == {'long.log', 'long' + ending}, os.listdir(folder))
        with open(older) as kept:
            expect('the older output of ' + task, kept.read() == 'older')
        os.unlink(older)


def check_strange_names(folder):
    """Names are bytes; and what stands under a temporary name is nobody's to write into."""
    precious = os.path.join(folder, 'precious')
    shutil.copy(os.path.join(DATA, 'three_pings.log'), precious)
    for name in (b'umlaut \xfc.log', b'back\\slash.log', '\u6e2c.log'.encode()):
        path = os.path.join(folder.encode(), name)
        shutil.copy(precious, path)
        os.symlink(precious, path[:-4] + b'.csv.part')
        seen = subprocess.run([ECHOTOOL, 'csv', path], capture_output=True)
        expect('opened by its bytes', seen.returncode == 0 and os.path.isfile(path[:-4] + b'.csv'), seen)
    with open(precious, 'rb') as kept, open(os.path.join(DATA, 'three_pings.log'), 'rb') as original:
        expect('nothing is written through a link', kept.read() == original.read())


def check_pictures(folder):
    """The picture through Python's own zlib, the document and the table through its own readers."""
    path = os.path.join(folder, 'three_pings.log')
    shutil.copy(os.path.join(DATA, 'three_pings.log'), folder)
    expect('png', run('png', path, '--width', '6', '--height', '8')[0] == 0)
    with open(os.path.join(folder, 'three_pings.png'), 'rb') as picture:
        bytes_ = picture.read()
    chunks, at = {}, 8
    while at < len(bytes_):
        size, name = struct.unpack_from('>I4s', bytes_, at)
        body = bytes_[at + 8:at + 8 + size]
        expect('checksum', zlib.crc32(name + body) == struct.unpack_from('>I', bytes_, at + 8 + size)[0], name)
        chunks[name] = chunks.get(name, b'') + body
        at += 12 + size
    expect('header', chunks[b'IHDR'] == struct.pack('>IIBBBBB', 6, 8, 8, 3, 0, 0, 0), chunks[b'IHDR'])
    expect('black first', chunks[b'PLTE'][:3] == b'\0\0\0' and len(chunks[b'PLTE']) == 768)
    rows = zlib.decompress(chunks[b'IDAT'])
    expect('rows', len(rows) == 8 * 7 and all(rows[7 * y] == 0 for y in range(8)), rows)
    document = json.loads(run('info', '--json', path, path)[1])
    expect('document', [r['pings'] for r in document['recordings']] == [3, 3] and document['totals']['pings'] == 6, document)
    table = list(csv.DictReader(run('info', '--csv', path)[1].splitlines()))
    same = {k: '' if v is None else str(v) for k, v in document['recordings'][0].items()}
    expect('table', len(table) == 1 and table[0].keys() == same.keys() and table[0]['pings'] == '3', table)


def shown_on_terminal(*words):
    terminal, theirs = pty.openpty()
    subprocess.run([ECHOTOOL, *words], stdout=subprocess.DEVNULL, stderr=theirs, check=True)
    os.close(theirs)
    shown = ''
    try:
        while piece := os.read(terminal, 65536):
            shown += piece.decode()
    except OSError:  # all has been read, and nobody is at the other end
        pass
    return shown


def check_bar(folder):
    """On a terminal, and taken away at the end."""
    shutil.copy(os.path.join(DATA, 'three_pings.log'), folder)
    path = os.path.join(folder, 'three_pings.log')
    for words, starts in (((path,), ('\rthree_pings.log [', '100 %')),
                          ((path, path, '-j', '2'), ('\r1 of 2, 1 at work, ', ' % three_pings.log')), (('--quiet', '-r', folder), ())):
        shown = shown_on_terminal('info', *words)
        expect('bar', all(start in shown for start in starts) and shown.endswith('\r' + 79 * ' ' + '\r') == bool(starts), shown)
        expect('quiet', bool(shown) == bool(starts), shown)


def check_many(folder):
    """A day's folder, and Ctrl-C with two at work."""
    for name in ('b.log', 'a.log', 'deep/c.log'):
        os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
        shutil.copy(os.path.join(DATA, 'three_pings.log'), os.path.join(folder, name))
    seen = run('check', '-r', '-j', '3', folder)
    expect('in order', seen[0] == 1 and [line.split(': ')[0] for line in seen[1].splitlines()] ==
           [os.path.join(folder, name) for name in ('a.log', 'b.log', 'deep/c.log')], seen)
    seen = run('kml', '-r', '--dry-run', folder, os.path.join(folder, 'absent.log'))
    expect('foreseen', seen[0] == 1 and seen[1].count(': would write ') == 3 and len(os.listdir(folder)) == 3, seen)
    for quiet in ((), ('--quiet',)):
        run('kml', '-r', folder)
        seen = run('kml', '-r', folder, *quiet)
        expect('notes', seen[:2] == (0, '') and seen[2].count('has been replaced') == (0 if quiet else 3) and bool(seen[2]) != bool(quiet), seen)
    for name in ('a.log', 'b.log'):
        os.truncate(os.path.join(folder, name), 64 << 30)
    process = subprocess.Popen([ECHOTOOL, 'csv', '-r', '-j', '2', folder], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    deadline = time.monotonic() + 20
    parts = [os.path.join(folder, name) for name in ('a.csv.part', 'b.csv.part')]
    while not all(map(os.path.exists, parts)) and time.monotonic() < deadline:
        time.sleep(0.01)
    process.send_signal(signal.SIGINT)
    _, told = process.communicate(timeout=20)
    lines = ['echotool: %s: interrupted' % os.path.join(folder, name) for name in ('a.log', 'b.log')]
    expect('both interrupted', process.returncode == 130 and told.splitlines() == lines, (process.returncode, told))
    expect('no half files', not [name for name in os.listdir(folder) if 'csv' in name], os.listdir(folder))


for check, *arguments in ((check_exit_codes,), (check_interruption, signal.SIGINT, TASKS), (check_interruption, signal.SIGKILL, TASKS),
                          (check_interruption, signal.SIGTERM, TASKS[:1]), (check_interruption, signal.SIGHUP, TASKS[:1]),
                          (check_interruption, signal.SIGQUIT, TASKS[:1]), (check_strange_names,), (check_pictures,), (check_bar,), (check_many,)):
    with tempfile.TemporaryDirectory() as work:
        check(work, *arguments)
for problem in problems:
    print(problem)
sys.exit(1 if problems else 0)
