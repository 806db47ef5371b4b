#!/usr/bin/env python3
"""A season of recordings on a dask cluster: depth and echo of every minute, and a grid of depths.

    season.py RECORDINGS OUTPUT                                  two workers on this computer
    season.py RECORDINGS OUTPUT --scheduler tcp://HOST:8786      the workers of a cluster

Makes NetCDF of all recordings below the folder RECORDINGS with `echotool` (OUTPUT/netcdf; what is there and newer
than its recording stays) and from them

    OUTPUT/minutes.csv   of each minute (UTC), channel and frequency: pings, mean depth, median echo
    OUTPUT/grid.csv      of each cell with a depth: pings, mean, least and greatest depth
    OUTPUT/grid_*.nc     the same as a raster, one of each channel and frequency

A depth is an altitude above 0, in metres below the transducer. A ping without a time is in no minute, one without a
position or a depth in no cell. The median is that of all samples of the minute, up to the end of each trace.

Needs Debian's python3-dask, python3-distributed, python3-xarray and python3-netcdf4. Every worker reads the NetCDF
files under the same path as this program. How it grows to thousands of recordings: docs/at-scale.md.
"""
from __future__ import annotations

import argparse
import contextlib
import functools
import itertools
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Iterator

import dask
import dask.array
import distributed
import numpy
import pandas
import xarray
from dask.delayed import Delayed

METRES_A_DEGREE = 60 * 1852.0  # of latitude
BATCH = 100  # files opened as one dataset: what its description takes in memory and time grows with them
FILES_A_COMMAND = 1000  # as many as a command line holds
RETRIES = 3  # of a task that fails, on whichever worker; what a lost worker had is done again in any case
LARGEST_RASTER = 25_000_000  # cells; one wrong position can make the box of all others that large

# Values stay as they are stored: two bytes a sample instead of four or eight. What a ping does not have is far
# outside of the bounds by which it is taken, and a sample behind the end of its trace below 0.
STORED: dict[str, Any] = {'engine': 'netcdf4', 'mask_and_scale': False, 'decode_times': False}
VALUES = ('transmit_frequency', 'time', 'altitude', 'latitude', 'longitude')


@dataclass(frozen=True)
class Recording:
    """A NetCDF file, as its header tells it."""
    path: str
    channel: int
    pings: int
    samples: int  # 0: no echoes
    sample_bytes: int


@dataclass(frozen=True)
class Grid:
    """Cells that are `cell_m` high everywhere and as wide at `latitude`, counted from the equator and the meridian of
    Greenwich; longitudes are those within 180 degrees of `longitude`. Runs with the same values have the same cells."""
    cell_m: float
    latitude: float
    longitude: float

    @property
    def height(self) -> float:
        return self.cell_m / METRES_A_DEGREE

    @property
    def width(self) -> float:
        return self.height / math.cos(math.radians(self.latitude))


# Recordings to NetCDF


def is_older(made: Path, recording: Path) -> bool:
    return not made.exists() or made.stat().st_mtime < recording.stat().st_mtime


def convert(recordings: Path, netcdf: Path, echotool: str, jobs: int) -> bool:
    """False when echotool could not do all of them; it has said which and why."""
    # All in that folder is NetCDF of ours; without --force every older one is searched for a recording first.
    command = [echotool, 'netcdf', '--force', '-j', str(jobs)]
    whole = [*command, '-r', str(recordings), '-o', str(netcdf)]
    plan = subprocess.run([*whole, '--dry-run'], capture_output=True, text=True, check=False)
    pairs = re.findall('^(.+): would (?:write|replace) (.+)$', plan.stdout, re.MULTILINE)
    waiting = sorted({Path(recording) for recording, made in pairs if is_older(Path(made), Path(recording))})
    if len(waiting) == len({recording for recording, _ in pairs}):
        commands = [whole]
    else:
        sys.stderr.write(plan.stderr)
        commands = [[*command, *map(str, files), '-o', str(netcdf / folder.relative_to(recordings))]
                    for folder, group in itertools.groupby(waiting, key=lambda path: path.parent)
                    for files in pieces(list(group), FILES_A_COMMAND)]
    codes = {plan.returncode, *(subprocess.run(each, check=False).returncode for each in commands)}
    if not codes <= {0, 1}:
        raise SystemExit(f'season.py: echotool ended with {max(codes - {0, 1})}')
    return 1 not in codes


def pieces(files: list, most: int) -> Iterator[list]:
    return (files[begin:begin + most] for begin in range(0, len(files), most))


# What is read of one file


def described(path: str) -> Recording:
    with xarray.open_dataset(path, **STORED) as data:
        return Recording(path, int(data.attrs['channel']), data.sizes['ping'], data.sizes.get('sample', 0),
                         data.echo.dtype.itemsize if 'echo' in data else 0)


def first_position(path: str, step: int = 4096) -> tuple[float, float] | None:
    with xarray.open_dataset(path, **STORED) as data:
        for begin in range(0, data.sizes['ping'], step):
            part = data[['latitude', 'longitude']].isel(ping=slice(begin, begin + step)).load()
            found = numpy.flatnonzero((abs(part.latitude) <= 90) & (abs(part.longitude) <= 180))
            if found.size:
                return float(part.latitude[found[0]]), float(part.longitude[found[0]])
    return None


# What becomes of the pings of one chunk


def cells_of(grid: Grid, pings: pandas.DataFrame) -> pandas.DataFrame:
    placed = pings[(pings.depth > 0) & (abs(pings.latitude) <= 90) & (abs(pings.longitude) <= 180)]
    around = (placed.longitude - grid.longitude + 180) % 360 - 180 + grid.longitude
    row = numpy.floor(placed.latitude / grid.height).astype('int64')
    column = numpy.floor(around / grid.width).astype('int64')
    groups = placed.groupby(['frequency_hz', row.rename('row'), column.rename('column')])
    return groups.depth.agg(pings='count', sum='sum', min='min', max='max').reset_index()


def median_echo(echo: numpy.ndarray) -> float:
    """Samples are whole numbers below 65,536: to count them is several times as fast as to put them in order."""
    up_to = numpy.bincount(echo[echo >= 0]).cumsum()
    if not up_to.size:
        return math.nan
    return float(numpy.searchsorted(up_to, [(up_to[-1] - 1) // 2, up_to[-1] // 2], side='right').mean())


def known(values: numpy.ndarray, largest: float, otherwise: float) -> numpy.ndarray:
    return numpy.where((values > 0) & (values < largest), values.astype('float64'), otherwise)


def summarised(grid: Grid, frequency: numpy.ndarray, time: numpy.ndarray, altitude: numpy.ndarray,
               latitude: numpy.ndarray, longitude: numpy.ndarray,
               echo: numpy.ndarray | None = None) -> tuple[pandas.DataFrame, pandas.DataFrame]:
    """The minutes of a chunk, each between the pings `first` and `last` of it, and its cells."""
    pings = pandas.DataFrame({'frequency_hz': known(frequency, 1e9, 0), 'minute': known(time, 9e9, numpy.nan) // 60,
                              'depth': known(altitude, 1e5, numpy.nan), 'latitude': latitude, 'longitude': longitude})
    pings['at'] = numpy.arange(len(pings))
    groups = pings.groupby(['frequency_hz', 'minute'])  # leaves out those without a time
    minutes = groups.agg(pings=('at', 'size'), depths=('depth', 'count'), sum=('depth', 'sum'), first=('at', 'min'),
                         last=('at', 'max')).reset_index()
    minutes['median_echo'] = math.nan if echo is None else [median_echo(echo[each['at']]) for _, each in groups]
    return minutes, cells_of(grid, pings)


def median_of_parts(channel: int, frequency_hz: float, minute: float, parts: list[tuple[str, int, int]]) -> float:
    """Of a minute that is spread over several chunks: a median of medians is none, so its pings are read again."""
    echo = []
    for path, first, last in parts:
        with xarray.open_dataset(path, **STORED) as data:
            pings = data.isel(ping=slice(first, last + 1)).load()
            wanted = (pings.time // 60 == minute) & (known(pings.transmit_frequency, 1e9, 0) == frequency_hz)
            echo.append(pings.echo.values[wanted].ravel() if 'echo' in data else numpy.empty(0, 'int16'))
    return median_echo(numpy.concatenate(echo))


# The graph


def values_only(data: xarray.Dataset) -> xarray.Dataset:
    return data.reset_coords()[[name for name in (*VALUES, 'echo') if name in data.variables]]


def chunk_pings(recording: Recording, chunk_mib: float) -> int:
    return max(1, int(chunk_mib * 2**20 / max(32, recording.samples * recording.sample_bytes)))


def graph_of(recordings: list[Recording], grid: Grid, chunk_mib: float) -> list[Delayed]:
    """A task for each chunk: a range of the pings of one file, in their order. The recordings have the same number of
    samples: xarray puts no others behind one another, and filled up to the longest of the season they would not fit in
    memory any more."""
    with dask.annotate(retries=RETRIES):
        data = xarray.open_mfdataset([each.path for each in recordings], parallel=True, combine='nested',
                                     concat_dim='ping', preprocess=values_only, inline_array=True,
                                     chunks={'ping': chunk_pings(recordings[0], chunk_mib)}, **STORED)
    arrays = [data[name].variable.data for name in (*VALUES, 'echo') if name in data]
    chunks = dask.array.blockwise(functools.partial(summarised, grid), 'p',
                                  *itertools.chain.from_iterable(zip(arrays, (*('p' for _ in VALUES), 'ps'))),
                                  concatenate=True, dtype=object, meta=numpy.empty(0, object))
    with dask.config.set({'optimization.fuse.ave-width': len(arrays)}):  # reading and summary are one task
        return chunks.to_delayed(optimize_graph=True).ravel().tolist()


def batches(recordings: list[Recording]) -> Iterator[list[Recording]]:
    def alike(each: Recording) -> tuple[int, int, int]:
        return each.channel, each.samples, each.sample_bytes
    for _, group in itertools.groupby(sorted(recordings, key=alike), key=alike):
        yield from pieces(list(group), BATCH)


def merged(cells: list[pandas.DataFrame]) -> pandas.DataFrame:
    groups = pandas.concat(cells).groupby(['channel', 'frequency_hz', 'row', 'column'], as_index=False)
    return groups.agg({'pings': 'sum', 'sum': 'sum', 'min': 'min', 'max': 'max'})


def reduced(client: distributed.Client, recordings: list[Recording], grid: Grid,
            chunk_mib: float) -> tuple[pandas.DataFrame, pandas.DataFrame]:
    minutes: list[pandas.DataFrame] = []
    cells: list[pandas.DataFrame] = []
    done = 0
    for batch in batches(recordings):
        step = chunk_pings(batch[0], chunk_mib)
        places = [(each.path, begin) for each in batch for begin in range(0, each.pings, step)]
        tasks = client.compute(graph_of(batch, grid, chunk_mib), retries=RETRIES)
        for (path, begin), (of_minutes, of_cells) in zip(places, client.gather(tasks), strict=True):
            of_minutes[['first', 'last']] += begin
            minutes.append(of_minutes.assign(channel=batch[0].channel, path=path))
            cells.append(of_cells.assign(channel=batch[0].channel))
        cells = [merged(cells)]
        done += len(batch)
        print(f'season.py: {done} of {len(recordings)} files', file=sys.stderr, flush=True)
    return whole_minutes(client, pandas.concat(minutes)), cells[0]


def whole_minutes(client: distributed.Client, parts: pandas.DataFrame) -> pandas.DataFrame:
    key = ['channel', 'frequency_hz', 'minute']
    minutes = parts.groupby(key).agg(pings=('pings', 'sum'), depths=('depths', 'sum'), sum=('sum', 'sum'),
                                     median_echo=('median_echo', 'first'))
    cut = parts[parts.duplicated(key, keep=False)].groupby(key)
    tasks = {name: client.submit(median_of_parts, *name, list(zip(each['path'], each['first'], each['last'])),
                                 retries=RETRIES, pure=False) for name, each in cut}
    for name, median in client.gather(tasks).items():
        minutes.loc[name, 'median_echo'] = median
    return minutes.reset_index()


# Tables and rasters


def write_minutes(minutes: pandas.DataFrame, path: Path) -> None:
    table = minutes[['channel', 'frequency_hz', 'pings', 'depths', 'median_echo']].astype({'frequency_hz': 'int64'})
    table.insert(0, 'minute_utc', pandas.to_datetime(minutes.minute * 60, unit='s').dt.strftime('%Y-%m-%dT%H:%MZ'))
    table.insert(5, 'mean_depth_m', (minutes['sum'] / minutes.depths).round(4))
    table.to_csv(path, index=False)


def write_cells(cells: pandas.DataFrame, grid: Grid, path: Path) -> None:
    table = cells[['channel', 'frequency_hz']].astype('int64')
    table['latitude'] = ((cells.row + 0.5) * grid.height).round(8)
    table['longitude'] = (((cells.column + 0.5) * grid.width + 180) % 360 - 180).round(8)
    table['pings'] = cells.pings
    table['mean_depth_m'] = (cells['sum'] / cells.pings).round(4)
    table['min_depth_m'], table['max_depth_m'] = cells['min'].round(4), cells['max'].round(4)
    table.to_csv(path, index=False)


def write_raster(cells: pandas.DataFrame, grid: Grid, path: Path) -> None:
    rows = numpy.arange(cells.row.min(), cells.row.max() + 1)
    columns = numpy.arange(cells.column.min(), cells.column.max() + 1)
    if rows.size * columns.size > LARGEST_RASTER:
        print(f'season.py: {path.name}: {rows.size} x {columns.size} cells are too many, they are in grid.csv alone',
              file=sys.stderr)
        return
    place = cells.row - rows[0], cells.column - columns[0]
    layers = {'pings': (cells.pings, 'pings with a depth'), 'mean_depth': (cells['sum'] / cells.pings, 'mean depth'),
              'min_depth': (cells['min'], 'least depth'), 'max_depth': (cells['max'], 'greatest depth')}
    raster = xarray.Dataset(
        coords={'latitude': ('latitude', (rows + 0.5) * grid.height, {'units': 'degrees_north'}),
                'longitude': ('longitude', (columns + 0.5) * grid.width, {'units': 'degrees_east'})},
        attrs={'Conventions': 'CF-1.10', 'cell_m': grid.cell_m, 'cell_width_exact_at_latitude': grid.latitude})
    for name, (values, text) in layers.items():
        layer = numpy.full((rows.size, columns.size), 0 if name == 'pings' else numpy.nan,
                           'int32' if name == 'pings' else 'float32')
        layer[place] = values
        raster[name] = (('latitude', 'longitude'), layer,
                        {'long_name': text, 'units': '1' if name == 'pings' else 'm'})
    raster.to_netcdf(path, engine='netcdf4', encoding={name: {'zlib': True} for name in layers})


def write(minutes: pandas.DataFrame, cells: pandas.DataFrame, grid: Grid, output: Path) -> None:
    write_minutes(minutes, output / 'minutes.csv')
    write_cells(cells, grid, output / 'grid.csv')
    for old in output.glob('grid_*.nc'):
        old.unlink()
    for (channel, frequency_hz), each in cells.groupby(['channel', 'frequency_hz']):
        write_raster(each, grid, output / f'grid_ch{channel}_{frequency_hz / 1000:g}kHz.nc')


@contextlib.contextmanager
def cluster_of(options: argparse.Namespace) -> Iterator[distributed.Client]:
    if options.scheduler:
        with distributed.Client(options.scheduler) as client:
            yield client
        return
    # One thread each: the NetCDF library reads one file at a time in a process.
    with tempfile.TemporaryDirectory(dir=options.output, prefix='dask_') as spilled, distributed.LocalCluster(
            n_workers=options.workers, threads_per_worker=1, host='127.0.0.1', dashboard_address=None,
            local_directory=spilled) as cluster, distributed.Client(cluster) as client:
        yield client


def position_of(text: str) -> tuple[float, float]:
    latitude, longitude = map(float, text.split(','))
    if not (abs(latitude) < 90 and abs(longitude) <= 180):
        raise ValueError
    return latitude, longitude


def command_line() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    parser.add_argument('recordings', type=Path, help='folder with recordings, and folders of them')
    parser.add_argument('output', type=Path, help='folder for all that is made')
    where = parser.add_mutually_exclusive_group()
    where.add_argument('--scheduler', metavar='ADDRESS', help='of a running cluster, as tcp://HOST:8786')
    where.add_argument('--workers', metavar='N', type=int, default=2, help='processes on this computer (2)')
    parser.add_argument('--cell', metavar='M', type=float, default=5.0, help='size of a cell of the grid in metres (5)')
    parser.add_argument('--middle', metavar='LAT,LON', type=position_of,
                        help='where cells are as wide as high; else the first position (--middle=-17.3,179.5)')
    parser.add_argument('--chunk', metavar='MIB', type=float, default=64.0, help='of echoes read in one task (64)')
    parser.add_argument('--jobs', metavar='N', type=int, default=min(64, os.cpu_count() or 1),
                        help='recordings converted at a time')
    parser.add_argument('--echotool', metavar='PATH', default='echotool', help='where it is not on the search path')
    options = parser.parse_args()
    if not options.recordings.is_dir():
        parser.error(f'{options.recordings} is no folder')
    if shutil.which(options.echotool) is None:
        parser.error(f'{options.echotool} is not found: --echotool tells where it is')
    if not (options.cell > 0 and options.chunk > 0):
        parser.error('a size is more than 0')
    return options


def main() -> int:
    options = command_line()
    netcdf = options.output.resolve() / 'netcdf'
    netcdf.mkdir(parents=True, exist_ok=True)
    all_converted = convert(options.recordings.resolve(), netcdf, options.echotool, options.jobs)
    paths = sorted(map(str, netcdf.rglob('*.nc')))
    if not paths:
        raise SystemExit(f'season.py: {options.recordings} holds no recordings')
    with cluster_of(options) as client:
        recordings = client.gather(client.map(described, paths, retries=RETRIES))
        middle = options.middle or next(filter(None, map(first_position, paths)), (0.0, 0.0))
        grid = Grid(options.cell, round(middle[0], 1), round(middle[1]))
        write(*reduced(client, recordings, grid, options.chunk), grid, options.output)
    return 0 if all_converted else 1


if __name__ == '__main__':
    sys.exit(main())
