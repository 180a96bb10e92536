"""Writing runs."""

from __future__ import annotations

import os
from collections.abc import Iterable, Sequence
from dataclasses import asdict
from typing import Any

import numpy as np

from . import _core
from .errors import WriteError
from .records import COMPOUND_VARIABLES, Compound, Group, Instrument, ScanData
from .run import Run, Scan


def write(
    path: str | bytes | os.PathLike,
    scans: Iterable[ScanData | Scan | tuple],
    /,
    *,
    instruments: Sequence[Instrument] = (),
    groups: Sequence[Group] = (),
    library: Sequence[Compound] = (),
    overwrite: bool = False,
    **attributes: Any,
) -> None:
    """Writes a run, or a library where `library` has the compounds of all scans.

    `scans` are scans that were read, `ScanData`, or tuples (time in s, masses, intensities); a sequence, such as
    a run, is gone through twice, anything else is kept. Masses, and likewise intensities, are stored as float
    where all of them are float32, else as double. `attributes` are the global attributes by their names in a
    file, such as `run.attributes` has them; those that say how the file is made are written anew. A mass range
    that a scan lacks is worked out.

    The file is made beside its place and moved there when it is whole. Raises WriteError where it can't be
    written, the file exists and `overwrite` isn't set, or a number or text isn't one that a file holds: a mass
    that isn't finite or is masked, a name of a compound that is longer than its place or beyond Latin-1.

    aiams.write("copy.cdf", run, instruments=run.instruments, groups=run.groups, **run.attributes)
    """
    # A file's attributes may have these names, too.
    if not isinstance(overwrite, bool):
        raise TypeError("overwrite takes True or False; no attribute of this name can be written.")
    _check("instruments", instruments, Instrument)
    _check("groups", groups, Group)
    _check("library", library, Compound)
    if not isinstance(scans, Sequence):
        scans = list(scans)
    if library and len(library) != len(scans):
        raise ValueError("A library wants one compound for each scan.")
    float_masses, float_intensities = _formats(scans)
    writer = _core.create(
        path=path,
        overwrite=overwrite,
        scans=len(scans),
        float_masses=float_masses,
        float_intensities=float_intensities,
        is_library=bool(library),
        attributes=attributes,
        instruments=[asdict(component) for component in instruments],
        groups=[vars(group) for group in groups],
    )
    for place, scan in enumerate(scans):
        if isinstance(scan, Scan) and not scan.has_seconds:
            raise WriteError(f"Scan {place} can't be written: its time isn't in seconds. ScanData takes one that is.")
        writer.add(
            _numbers(scan),
            *_arrays(scan),
            scan.flags if isinstance(scan, Scan) else ((), ()),
            _entry(library[place]) if library else {},
        )
    writer.finish()


def _check(name: str, records: Any, kind: type) -> None:
    is_sequence = isinstance(records, Sequence) and not isinstance(records, str)
    if not is_sequence or (len(records) > 0 and not isinstance(records[0], kind)):
        raise TypeError(f"{name} takes a sequence of {kind.__name__}; no attribute of this name can be written.")


def _arrays(scan: ScanData | Scan | tuple) -> tuple[np.ndarray, np.ndarray]:
    _, mz, intensity = scan if isinstance(scan, tuple) else (None, scan.mz, scan.intensity)
    if np.ma.is_masked(mz) or np.ma.is_masked(intensity):
        raise WriteError("Masked points can't be written: leave them out of masses and intensities.")
    return np.asarray(mz), np.asarray(intensity)


def _formats(scans: Sequence[ScanData | Scan | tuple]) -> tuple[bool, bool]:
    if isinstance(scans, Run):
        mz, intensity, _ = scans.points(0, 0)
        return mz.dtype == np.float32, intensity.dtype == np.float32
    kinds = [tuple(array.dtype == np.float32 for array in _arrays(scan)) for scan in scans]
    return all(mz for mz, _ in kinds), all(intensity for _, intensity in kinds)


def _numbers(scan: ScanData | Scan | tuple) -> dict[str, float]:
    if isinstance(scan, tuple):
        scan = ScanData(*scan)
    numbers = {**scan.numbers, "scan_acquisition_time": float(scan.time)}
    if scan.tic is not None:
        numbers["total_intensity"] = float(scan.tic)
    return {name: number for name, number in numbers.items() if number == number}


def _entry(compound: Compound) -> dict[str, Any]:
    fields = {name: getattr(compound, field) for field, name in COMPOUND_VARIABLES.items()}
    fields.update({f"other_name_{i}": name for i, name in enumerate(compound.other_names)})
    return {name: value for name, value in fields.items() if value is not None and value == value}
