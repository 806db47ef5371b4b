#!/usr/bin/python3
"""echotool on long recordings, whole processes on warm files, against cp, a raw write and segyio.

    conversion_bench.py [BUILD_FOLDER [WORK_FOLDER [MEBIBYTES [RUNS]]]]

The build folder is that of the preset `bench`; the work folder needs room for six times the recording and is left
empty. Each figure is the median of its runs, five without a word, those that are compared taken in turn.
"""
import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
BUILD = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, '..', 'build', 'bench')
WORK = sys.argv[2] if len(sys.argv) > 2 else '/dev/shm'
MEBIBYTES = int(sys.argv[3]) if len(sys.argv) > 3 else 1024
PYTHON_MEBIBYTES = 256  # segyio's Python interface is compared on less
RUNS = int(sys.argv[4]) if len(sys.argv) > 4 else 5
ECHOTOOL = os.path.join(BUILD, 'tools', 'echotool', 'echotool')
MAKER = os.path.join(BUILD, 'bench', 'recording_maker')
SEGYIO = os.path.join(BUILD, 'bench', 'segyio_writer')


def run(words):
    """Seconds of processor time, user and system, and the peak memory in MiB. On warm files in memory a process
    waits for nothing else, and other work on the machine does not count."""
    process = subprocess.Popen(words, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit('%s failed' % ' '.join(words))
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def compare(commands):
    """The medians of commands that take turns, and the peak memory of each. Outputs are removed between runs."""
    times = {name: [] for name in commands}
    peaks = {name: 0.0 for name in commands}
    for _ in range(RUNS):
        for name, (words, output) in commands.items():
            seconds, peak = run(words)
            times[name].append(seconds)
            peaks[name] = max(peaks[name], peak)
            if output and os.path.exists(output):
                os.remove(output)
    return {name: statistics.median(values) for name, values in times.items()}, peaks


def copy_of(path, folder):
    target = os.path.join(folder, 'copy')
    return ['cp', '--reflink=never', path, target], target


def convert(task, path, folder, ending):
    target = os.path.join(folder, os.path.splitext(os.path.basename(path))[0] + ending)
    return [ECHOTOOL, task, path, '-o', folder], target


def report(what, asked, ratio, details):
    print('%-55s asked %-14s measured %5.2f x   (%s)' % (what, asked, ratio, details), flush=True)


def main(folder):
    frames = os.path.join(folder, 'frames.log')
    text = os.path.join(folder, 'text.log')
    short = os.path.join(folder, 'short.log')
    for kind, size, path in (('frames', MEBIBYTES, frames), ('frames', PYTHON_MEBIBYTES, short)):
        subprocess.check_call([MAKER, kind, str(size), path])

    commands = {'cp': copy_of(frames, folder), 'segy': convert('segy', frames, folder, '.sgy')}
    if os.path.exists(SEGYIO):
        target = os.path.join(folder, 'segyio.sgy')
        commands['segyio'] = ([SEGYIO, frames, target], target)
    t, peaks = compare(commands)
    memory = peaks['segy']
    report('binary recording to SEG-Y / cp', 'at most 2', t['segy'] / t['cp'], 'cp %.2f s' % t['cp'])
    if 'segyio' in t:
        report('segyio in C / binary recording to SEG-Y', 'at least 3', t['segyio'] / t['segy'],
               'segyio %.2f s' % t['segyio'])
    words, target = convert('netcdf', short, folder, '.nc')
    run(words)
    written = os.path.join(folder, 'written')
    os.rename(target, written)
    t, peaks = compare({'cp': copy_of(written, folder), 'sum': (['sha256sum', short], None), 'netcdf': (words, target)})
    os.remove(written)
    memory = max(memory, peaks['netcdf'])
    report('binary recording to NetCDF / cp of its output', 'at most 2', t['netcdf'] / t['cp'],
           'cp %.2f s, sha256sum of the recording %.2f s' % (t['cp'], t['sum']))
    t, _ = compare({'segy': convert('segy', short, folder, '.sgy'),
                    'python': (['/usr/bin/python3', os.path.join(HERE, 'segyio_writer.py'), short,
                                os.path.join(folder, 'python.sgy')], os.path.join(folder, 'python.sgy'))})
    report('segyio in Python / binary recording to SEG-Y', 'at least 12', t['python'] / t['segy'],
           'python %.2f s' % t['python'])

    # What looks at a recording, on the same one.
    t, peaks = compare({'segy': convert('segy', frames, folder, '.sgy'), 'info': ([ECHOTOOL, 'info', frames], None),
                        'png': convert('png', frames, folder, '.png'), 'report': convert('report', frames, folder, '.html')})
    for task, most in (('info', 0.7), ('png', 2), ('report', 2)):
        report('echotool %s / binary recording to SEG-Y' % task, 'at most %g' % most, t[task] / t['segy'],
               '%.1f MiB, asked below 48' % peaks[task])

    # The raw write of what the text conversion writes is a cp of nothing but writing: dd from /dev/zero.
    words, target = convert('text', frames, folder, '_txt.log')
    run(words)
    size = os.path.getsize(target)
    os.remove(target)
    raw = os.path.join(folder, 'raw')
    blocks = str(size // (512 * 1024))
    t, peaks = compare({'raw': (['dd', 'if=/dev/zero', 'of=' + raw, 'bs=512K', 'count=' + blocks, 'status=none'], raw),
                        'text': (words, target)})
    memory = max(memory, peaks['text'])
    report('binary recording to text / raw write of its output', 'at most 3', t['text'] / t['raw'],
           '%d MiB, raw %.2f s' % (size >> 20, t['raw']))
    os.remove(frames)

    subprocess.check_call([MAKER, 'text', str(MEBIBYTES), text])
    t, peaks = compare({'cp': copy_of(text, folder), 'segy': convert('segy', text, folder, '.sgy')})
    memory = max(memory, peaks['segy'])
    report('text recording to SEG-Y / cp', 'at most 3.5', t['segy'] / t['cp'], 'cp %.2f s' % t['cp'])
    os.remove(text)
    print('peak memory of echotool %.1f MiB, asked below 32' % memory)

    # One ping and then nothing: what is measured is how fast it is known what the file is.
    sparse = os.path.join(folder, 'sparse.log')
    shutil.copyfile(short, sparse)
    os.truncate(sparse, 4 << 30)
    subprocess.check_call([os.path.join(BUILD, 'bench', 'opening'), sparse])


signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # leaves nothing either
work = tempfile.mkdtemp(dir=WORK)
try:
    main(work)
finally:
    shutil.rmtree(work)
