"""Archives of many runs, on Dask.

    from aiams import archive

    scans = archive.scans("archive/**/*.cdf")     # a Dask data frame: nothing is read yet
    print(scans.groupby("file").tic.max().compute())
    print(archive.report("archive/**/*.cdf").query("error != ''").compute())

Each function takes a pattern, one path, or a list of both; `**` goes through folders. All tables know their
columns without reading. What is computed runs wherever Dask is told to: in threads or processes of this
machine, or on a cluster that a `distributed.Client` is connected to, whose workers have to see the files by
the same paths. A worker that is killed is restarted there, and its tasks are done anew.

A file that can't be read has no rows in `scans` and `points` and ends nothing: `report` says why.
"""

from __future__ import annotations

import argparse
import datetime
import functools
import glob
import os
import pathlib
import shutil
import subprocess
import sys
from collections.abc import Callable, Iterable

import dask
import dask.dataframe as dd
import numpy as np
import pandas as pd

from .errors import Error, ReadError
from .run import Run

Paths = str | bytes | os.PathLike | Iterable[str | bytes | os.PathLike]

# What can be wrong with a file; a ValueError is about its name.
_FAILURES = (Error, ValueError)

_SCANS = {"file": "object", "scan": "int32", "time": "float64", "tic": "float64", "points": "int64"}
_POINTS = {"file": "object", "scan": "int32", "time": "float64", "mz": "float64", "intensity": "float64"}
_REPORT = {
    "file": "object",
    "error": "object",  # a sentence, or nothing
    "kind": "object",
    "scans": "int64",
    "points": "int64",
    "unread": "int64",  # scans that can't be read
    "losses": "int64",  # doubts that lose something
    "doubts": "object",  # codes, with blanks between them
}
_DONE = {"file": "object", "output": "object", "error": "object"}

# What most ask for; each is a text.
ATTRIBUTES = (
    "experiment_title",
    "experiment_date_time_stamp",
    "experiment_type",
    "operator_name",
    "sample_internal_id",
    "test_separation_type",
    "test_ionization_mode",
    "test_ionization_polarity",
    "test_scan_function",
    "source_file_reference",
    "source_file_format",
)


def files(paths: Paths) -> list[str]:
    """Returns the files that are meant, sorted and each once. A path without a match stays: `report` tells."""
    if isinstance(paths, (str, bytes, os.PathLike)):
        paths = [paths]
    real = functools.cache(os.path.realpath)
    found: dict[tuple[str, str], str] = {}
    for path in map(os.fsdecode, paths):
        try:
            matches = [path] if os.path.lexists(path) else glob.glob(path, recursive=True)
            for match in matches or [path]:
                folder, name = os.path.split(match)
                found.setdefault((real(folder), name), match)
        except ValueError:  # no file has such a name
            found[path, ""] = path
    return sorted(found.values())


def scans(paths: Paths) -> dd.DataFrame:
    """Returns a row for each scan: file, scan, time (s), tic, points. One partition a file."""
    return _table(_scans_of, paths, _SCANS)


def points(paths: Paths, scans_per_partition: int | None = None) -> dd.DataFrame:
    """Returns a row for each point: file, scan, time (s), mz, intensity.

    One partition a file, or one for so many scans of each: files are then opened to count their scans. A
    point takes 36 bytes and the file's name.
    """
    named = files(paths)
    if scans_per_partition is None:
        return _table(_points_of, [(name, 0, None) for name in named], _POINTS)
    if scans_per_partition < 1:
        raise ValueError("A partition has one scan at least.")
    counts = dask.compute(*[dask.delayed(_count_scans)(name) for name in named])
    parts = [
        (name, first, min(first + scans_per_partition, count))
        for name, count in zip(named, counts)
        for first in range(0, count, scans_per_partition)
    ]
    return _table(_points_of, parts, _POINTS)


def attributes(paths: Paths, names: str | Iterable[str] = ATTRIBUTES) -> dd.DataFrame:
    """Returns a row for each run: file, and the global attributes of those names as texts, None for none."""
    names = [names] if isinstance(names, str) else list(names)
    return _table(_attributes_of, paths, {"file": "object", **dict.fromkeys(names, "object")}, names)


def report(paths: Paths) -> dd.DataFrame:
    """Returns a row for each file, readable or not.

    file; error, a sentence where the file, or all its points at once, can't be read, else ""; kind; scans;
    points; unread (scans that can't be read); losses (doubts that lose something); doubts (their codes). Reads
    all points.
    """
    return _table(_report_of, paths, _REPORT)


def store(paths: Paths, folder: str | os.PathLike, format: str = "zarr", overwrite: bool = False) -> dd.DataFrame:
    """Stores each run as columns for other engines, and returns a row for each file: file, output, error.

    `format` is "zarr" or "netcdf" (the data set of `Run.to_xarray`), or "csv" (the rows of `points`). Outputs
    are named after their files, of which no two may have the same name, and are made beside their places and
    moved there when they are whole. One that exists when this is called is kept, with an error, unless
    `overwrite` is set; one that a task made before it was done again is right.
    """
    if format not in _WRITERS:
        raise ValueError(f"There is no format {format!r}; it is one of {', '.join(_WRITERS)}.")
    return _table(_store, _outputs(paths, folder, _suffix(format)), _DONE, format, overwrite)


def convert(
    paths: Paths,
    folder: str | os.PathLike,
    suffix: str = "mzML",
    options: Iterable[str] = (),
    program: str = "aia-convert",
) -> dd.DataFrame:
    """Converts each file with aia-convert, and returns a row for each: file, output, error.

    The output's kind follows from `suffix`: mzML, csv, msp or cdf. `program` has to be there on each worker;
    `options` are its own, such as "--force". A file that fails has the program's sentences as its error; one that
    loses something has both these and an output. One that exists when this is called is kept, with an error.
    """
    return _table(_convert, _outputs(paths, folder, suffix.removeprefix(".")), _DONE, list(options), program)


def _sentence(failure: Exception) -> str:
    if isinstance(failure, MemoryError):
        return "The memory doesn't suffice."
    return str(failure) or type(failure).__name__


def _table(make: Callable, items, columns: dict[str, str], *arguments) -> dd.DataFrame:
    """A data frame with one partition for each item, or file; an empty one for none."""
    meta = _frame(columns)
    items = list(items) if isinstance(items, list) else files(items)
    if not items:
        return dd.from_pandas(meta, npartitions=1)
    return dd.from_map(make, items, *[[argument] * len(items) for argument in arguments], meta=meta)


def _frame(columns: dict[str, str], **values) -> pd.DataFrame:
    return pd.DataFrame({name: pd.Series(values.get(name, []), dtype=kind) for name, kind in columns.items()})


def _names(name: str, count: int) -> np.ndarray:
    return np.full(count, name, object)


def _scans_of(name: str) -> pd.DataFrame:
    try:
        with Run(name) as run:
            try:
                counts = np.diff(run.points()[2])
            except (ReadError, MemoryError):
                counts = list(map(len, run))  # one by one, as any file can be read
            return _frame(
                _SCANS,
                file=_names(name, len(run)),
                scan=np.arange(len(run)),
                time=run.times,
                tic=run.tic,
                points=counts,
            )
    except _FAILURES:
        return _frame(_SCANS)


def _points_of(part: tuple[str, int, int | None]) -> pd.DataFrame:
    name, first, end = part
    try:
        with Run(name) as run:
            mz, intensity, offsets = run.points(first, end)
            counts = np.diff(offsets)
            numbers = np.arange(first, first + len(counts))
            return _frame(
                _POINTS,
                file=_names(name, len(mz)),
                scan=np.repeat(numbers, counts),
                time=np.repeat(run.times[first : first + len(counts)], counts),
                mz=mz,
                intensity=intensity,
            )
    except MemoryError as failure:  # of this machine, so the rows mustn't be missing
        sentence = f'The points of "{name}" take too much memory; scans_per_partition makes smaller parts.'
        raise MemoryError(sentence) from failure
    except _FAILURES:
        return _frame(_POINTS)


def _count_scans(name: str) -> int:
    try:
        with Run(name) as run:
            return len(run)
    except _FAILURES:
        return 0


def _attributes_of(name: str, names: list[str]) -> pd.DataFrame:
    columns = {"file": "object", **dict.fromkeys(names, "object")}
    try:
        with Run(name) as run:
            found = run.attributes
    except _FAILURES:
        return _frame(columns)
    texts = {one: [None if found.get(one) is None else str(found[one])] for one in names}
    return _frame(columns, **{**texts, "file": [name]})


def _report_of(name: str) -> pd.DataFrame:
    row = dict(file=name, error="", kind="", scans=0, points=0, unread=0, losses=0, doubts="")
    try:
        with Run(name) as run:
            row.update(kind=run.kind, scans=len(run))
            row["points"] = sum(map(len, run))  # one by one, as any file can be read
            doubts = run.doubts
            unread = [doubt.count for doubt in doubts if doubt.code == "unreadable-scans"]
            row.update(
                unread=sum(unread),
                losses=sum(doubt.is_loss for doubt in doubts),
                doubts=" ".join(doubt.code for doubt in doubts),
            )
            run.points(0, 0)  # where all of them can't be had, this says so
    except (*_FAILURES, MemoryError) as failure:
        row["error"] = _sentence(failure)
    return _frame(_REPORT, **{column: [value] for column, value in row.items()})


def _outputs(paths: Paths, folder: str | os.PathLike, suffix: str) -> list[tuple[str, str, bool]]:
    """Files, their outputs, and whether these exist by now."""
    folder = os.fspath(folder)
    os.makedirs(folder, exist_ok=True)
    taken: dict[str, str] = {}
    for name in files(paths):
        output = os.path.join(folder, f"{pathlib.PurePath(name).stem}.{suffix}")
        other = taken.setdefault(output, name)
        if other != name:
            raise ValueError(f"{other!r} and {name!r} would both become {output!r}.")
    return [(name, output, os.path.lexists(output)) for output, name in taken.items()]


def _is_made(output: str, existed: bool) -> bool:
    """Whether an earlier attempt of the task made the output, whose worker ended before it could say so."""
    return not existed and os.path.lexists(output)


def _done(name: str, output: str, error: str) -> pd.DataFrame:
    return _frame(_DONE, file=[name], output=["" if error else output], error=[error])


def _suffix(format: str) -> str:
    return {"netcdf": "nc"}.get(format, format)


def _store_zarr(run: Run, path: str) -> None:
    run.to_xarray().to_zarr(path, mode="w")


def _store_netcdf(run: Run, path: str) -> None:
    run.to_xarray().to_netcdf(path)


def _store_csv(run: Run, path: str) -> None:
    run.to_dataframe().to_csv(path, index=False)


_WRITERS = {"zarr": _store_zarr, "netcdf": _store_netcdf, "csv": _store_csv}


def _store(task: tuple[str, str, bool], format: str, overwrite: bool) -> pd.DataFrame:
    name, output, existed = task
    if _is_made(output, existed):
        return _done(name, output, "")
    part = f"{output}.{os.getpid()}.{datetime.datetime.now():%H%M%S%f}.part"
    error = ""
    try:
        if existed and not overwrite:
            raise FileExistsError(f'"{output}" exists. With the option "overwrite" it is written over.')
        with Run(name) as run:
            _WRITERS[format](run, part)
        if os.path.isdir(output):
            shutil.rmtree(output)
        os.replace(part, output)
    except Exception as failure:  # whatever the writers make of it, other files follow
        error = _sentence(failure)
    finally:
        if os.path.isdir(part):
            shutil.rmtree(part)
        elif os.path.exists(part):
            os.remove(part)
    return _done(name, output, error)


def _convert(task: tuple[str, str, bool], options: list[str], program: str) -> pd.DataFrame:
    name, output, existed = task
    # What wasn't there before the job is of an earlier attempt, whose program may even outlive its worker. It
    # is made again, as what that lost isn't known.
    force = [] if existed else ["--force"]
    before = _identity(output)
    try:
        done = subprocess.run(
            [program, *force, *options, "-o", os.path.abspath(output), "--", os.path.abspath(name)],
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            errors="replace",
        )
        error = "" if done.returncode == 0 else done.stderr.strip() or f"{program} ended with {done.returncode}."
    except (OSError, ValueError) as failure:
        error = f"{program} can't be started: {failure}."
    is_made = _identity(output) not in (None, before)
    return _frame(_DONE, file=[name], output=[output if is_made else ""], error=[error])


def _identity(path: str) -> tuple[int, int] | None:
    try:
        found = os.stat(path)
    except (OSError, ValueError):
        return None
    return found.st_ino, found.st_mtime_ns


def _store_part(tasks: list[tuple[str, str, bool]], table: str, format: str, overwrite: bool) -> int:
    """Does what isn't done by the table, which gets a row for each, and returns how many have no output."""
    text = {"index": False, "errors": "surrogateescape"}  # names of files are any bytes
    done = _frame(_DONE)
    since = None
    if os.path.exists(table) and not overwrite:  # the part was begun before
        since = os.path.getmtime(table)
        if os.path.getsize(table) > 0:  # else a full disk or the machine ended it
            try:
                done = pd.read_csv(table, keep_default_na=False, encoding_errors="surrogateescape")
            except ValueError:
                done = pd.DataFrame()
        if list(done.columns) != list(_DONE):
            raise ValueError(f'"{table}" is no table of this program; name another folder.')
        done = done[(done.error == "") & done.output.map(os.path.lexists)]
    begun = table + ".part"
    try:
        done.to_csv(begun, **text)
        os.replace(begun, table)
    finally:
        if os.path.exists(begun):
            os.remove(begun)
    failed = 0
    kept = set(done.file)
    for name, output, existed in tasks:
        if name in kept:
            continue
        # What is younger than the table was made by the attempt that ended before it could say so.
        existed = existed and (since is None or os.path.getmtime(output) < since)
        row = _store((name, output, existed), format, overwrite)
        row.to_csv(table, mode="a", header=False, **text)
        failed += row.error[0] != ""
    return failed


def _parse(parser: argparse.ArgumentParser, arguments: list[str] | None) -> argparse.Namespace:
    """Parses the arguments. A help that nobody gets is a failure."""
    try:
        try:
            return parser.parse_args(arguments)
        finally:
            if sys.stdout is not None:
                sys.stdout.flush()
    except OSError as failure:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # which gets the rest when Python ends
        parser.exit(1, f"{parser.prog}: Standard output can't be written: {failure.strerror}.\n")


def main(arguments: list[str] | None = None) -> int:
    """Stores one part of an archive: for schedulers that start a program many times, such as Slurm's arrays."""
    parser = argparse.ArgumentParser(prog="python3 -m aiams.archive", description=main.__doc__)
    parser.add_argument("folder", help="where the outputs go, and part-I-of-N.csv: file, output, error")
    parser.add_argument("paths", nargs="+", help="files, or patterns in quotes; they have to be the same for each part")
    parser.add_argument("--format", choices=list(_WRITERS), default="zarr")
    parser.add_argument("--part", default="0/1", metavar="I/N", help="take files I, I + N, I + 2 N... (default 0/1)")
    parser.add_argument("--overwrite", action="store_true", help="write over outputs that exist")
    given = _parse(parser, arguments)
    try:
        part, parts = map(int, given.part.split("/"))
    except ValueError:
        part, parts = 0, 0
    if not 0 <= part < parts:
        parser.error("--part wants I/N, with I from 0 to N - 1.")
    # All files take part in the choice of names, so that no two parts write the same output.
    try:
        tasks = _outputs(given.paths, given.folder, _suffix(given.format))[part::parts]
    except OSError as failure:
        parser.exit(1, f'{parser.prog}: The folder "{given.folder}" can\'t be made: {failure.strerror}.\n')
    except ValueError as failure:
        parser.exit(1, f"{parser.prog}: {failure}\n")
    table = os.path.join(given.folder, f"part-{part}-of-{parts}.csv")
    try:
        failed = _store_part(tasks, table, given.format, given.overwrite)
    except OSError as failure:
        parser.exit(1, f'{parser.prog}: The table "{table}" can\'t be written: {failure.strerror}.\n')
    except ValueError as failure:
        parser.exit(1, f"{parser.prog}: {failure}\n")
    if failed:
        print(f'{parser.prog}: {failed} of {len(tasks)} files have no output: "{table}" says why.', file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    raise SystemExit(main())
