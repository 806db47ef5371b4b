#!/usr/bin/python3
"""echotool on 200 recordings of the virtual device, side by side against one after the other.

    many_bench.py [BUILD_FOLDER [WORK_FOLDER [RECORDINGS [RUNS]]]]

The build folder is that of the preset `bench`; the work folder needs room for 10 MB a recording and is left empty.
Times are those of the clock, so the machine should have nothing else to do: each is the best of its runs, three
without a word, -j 1 and -j 2 taken in turn.
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BUILD = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, '..', 'build', 'bench')
WORK = sys.argv[2] if len(sys.argv) > 2 else '/dev/shm'
RECORDINGS = int(sys.argv[3]) if len(sys.argv) > 3 else 200
RUNS = int(sys.argv[4]) if len(sys.argv) > 4 else 3
ECHOTOOL = os.path.join(BUILD, 'tools', 'echotool', 'echotool')
MAKER = os.path.join(BUILD, 'bench', 'recording_maker')
JOBS = (1, 2)
PINGS = 2_000  # of 1,000 samples: 4 MB a recording


def make(folder):
    """So many recordings, in ten folders."""
    whole = os.path.join(folder, 'whole.log')
    subprocess.check_call([MAKER, 'frames', '8', whole])
    subprocess.check_call([ECHOTOOL, 'cut', '--pings', '1-%d' % PINGS, whole])
    recordings = os.path.join(folder, 'recordings')
    for i in range(RECORDINGS):
        day = os.path.join(recordings, 'day_%d' % (i % 10))
        os.makedirs(day, exist_ok=True)
        shutil.copy(os.path.join(folder, 'whole_cut.log'), os.path.join(day, 'line_%03d.log' % i))
    return recordings


def run(task, jobs, recordings, outputs):
    """Seconds by the clock, and the peak memory in MiB."""
    words = [ECHOTOOL, task, '-r', '-j', str(jobs), recordings] + (['-o', outputs] if task != 'info' else [])
    begun = time.perf_counter()
    process = subprocess.Popen(words, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.perf_counter() - begun
    if status != 0:
        sys.exit('%s failed' % ' '.join(words))
    shutil.rmtree(outputs, ignore_errors=True)
    return seconds, usage.ru_maxrss / 1024


def main(folder):
    recordings = make(folder)
    print('%d recordings of %.1f MB, load %.1f' %
          (RECORDINGS, os.path.getsize(os.path.join(folder, 'whole_cut.log')) / 1e6, os.getloadavg()[0]))
    for task in ('segy', 'netcdf', 'report', 'info'):
        best, peak = {}, {}
        for _ in range(RUNS):
            for jobs in JOBS:
                seconds, peak[jobs] = run(task, jobs, recordings, os.path.join(folder, 'outputs'))
                best[jobs] = min(seconds, best.get(jobs, seconds))
        print('%-7s -j 2 / -j 1   asked at most 0.65   measured %.2f   (%.2f s and %.2f s, peak memory %.1f and %.1f MiB)' %
              (task, best[2] / best[1], best[1], best[2], peak[1], peak[2]), flush=True)


signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # leaves nothing either
work = tempfile.mkdtemp(dir=WORK)
try:
    main(work)
finally:
    shutil.rmtree(work)
