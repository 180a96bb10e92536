"""Runs of AIA MS files as NumPy arrays, read with judgement.

    import aiams

    with aiams.open("run.cdf") as run:
        mz, intensity, offsets = run.points()
        for doubt in run.doubts:
            print(doubt)

What the reader has to say besides goes to the logger "aiams" of `logging`. `aiams.archive` reads archives of
many runs on Dask.
"""

from ._places import VERSION as __version__
from .errors import ClosedError, Error, ReadError, WriteError
from .records import Compound, Doubt, Group, Instrument, Modulation, ScanData
from .run import Run, Scan, open  # noqa: A004
from .writing import write

__all__ = [
    "ClosedError",
    "Compound",
    "Doubt",
    "Error",
    "Group",
    "Instrument",
    "Modulation",
    "ReadError",
    "Run",
    "Scan",
    "ScanData",
    "WriteError",
    "open",
    "write",
]
