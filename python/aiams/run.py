"""A run: a file of scans, read with judgement."""

from __future__ import annotations

import operator
import os
from collections.abc import Callable, Iterator, Sequence
from typing import TYPE_CHECKING, Any, TypeVar, overload

import numpy as np

from . import _core, _places
from .records import Compound, Doubt, Group, Instrument, Modulation

if TYPE_CHECKING:
    import pandas
    import xarray

Scan = _core.Scan
Item = TypeVar("Item")

_LOOK_PROGRAM = os.path.join(os.path.dirname(_core.__file__), _places.LOOK_PROGRAM)


def _range(kind: str, lowest: float, highest: float) -> tuple[float, float]:
    lowest, highest = float(lowest), float(highest)
    if not lowest <= highest:
        raise ValueError(f"There is no {kind} from {lowest:g} to {highest:g}: it would end before it begins.")
    return lowest, highest


class Items(Sequence[Item]):
    """Items of a run, each read when it is asked for. A slice is such a sequence as well."""

    def __init__(self, get: Callable[[int], Item], places: range):
        self._get, self._places = get, places

    def __len__(self) -> int:
        return len(self._places)

    @overload
    def __getitem__(self, index: int) -> Item: ...
    @overload
    def __getitem__(self, index: slice) -> Items[Item]: ...
    def __getitem__(self, index):
        if isinstance(index, slice):
            return Items(self._get, self._places[index])
        return self._get(self._places[index])

    def __iter__(self) -> Iterator[Item]:
        return map(self._get, self._places)


class Run(Sequence[Scan]):
    """A run of a file, made by `aiams.open`. It is a context manager, and a sequence of its scans.

    Scans are counted from 0 and read when they are asked for; going from front to back is fastest. Arrays are
    NumPy's. Masses and intensities are float32 where the file stores them so and without a factor, else
    float64. Where the file contradicts itself or lacks something, what can be known is worked out, and
    `doubts` says so. Threads may share a run; their calls come one after the other.
    """

    def __init__(self, path: str | bytes | os.PathLike):
        """Opens the file. Raises ReadError where that can't be done."""
        self._core = _core.open(path, _LOOK_PROGRAM)

    def __enter__(self) -> Run:
        return self

    def __exit__(self, *failure: object) -> None:
        self.close()

    def close(self) -> None:
        """Closes the file. Scans that were read stay; anything else raises ClosedError from now on."""
        self._core.close()

    @property
    def closed(self) -> bool:
        return self._core.closed

    @property
    def name(self) -> str:
        """The file's name as it was given."""
        return self._core.name

    def __repr__(self) -> str:
        state = "closed" if self.closed else f"{len(self)} scans, {self.kind}"
        return f"<aiams.Run {self.name!r}, {state}>"

    @property
    def kind(self) -> str:
        """"spectra", "trace" (scans have a time and a total, and no points), or "library"."""
        return self._core.kind

    @property
    def has_seconds(self) -> bool:
        """Whether times are in s. If not, they are as the file has them."""
        return self._core.has_seconds

    def __len__(self) -> int:
        return len(self._core)

    @overload
    def __getitem__(self, index: int) -> Scan: ...
    @overload
    def __getitem__(self, index: slice) -> Items[Scan]: ...
    def __getitem__(self, index):
        """Returns a scan, or for a slice a sequence of scans. Raises IndexError for one that isn't there."""
        if isinstance(index, slice):
            return Items(self._core.scan, range(len(self))[index])
        return self._core.scan(operator.index(index))

    def __iter__(self) -> Iterator[Scan]:
        return map(self._core.scan, range(len(self)))

    def scan_at(self, time: float) -> Scan | None:
        """Returns the scan whose time is nearest, the first of several; None where no scan has a time."""
        place = self._core.scan_at(time)
        return None if place < 0 else self[place]

    @property
    def times(self) -> np.ndarray:
        """Times of all scans, shape (scans,), float64: in s where `has_seconds`; NaN unknown."""
        return self._core.times()

    @property
    def tic(self) -> np.ndarray:
        """Total intensities of all scans, shape (scans,), float64.

        As the file gives them; for scans without one, the sum of their intensities. NaN where there is neither.
        """
        return self._core.tic()

    def summed_tic(self) -> np.ndarray:
        """Returns the sum of each scan's intensities, shape (scans,), float64; NaN for unreadable scans."""
        return self._core.summed_tic()

    def points(self, first: int = 0, end: int | None = None) -> tuple[np.ndarray, np.ndarray, np.ndarray]:
        """Returns the points of scans `first` to `end` - 1, by default of all, as (mz, intensity, offsets).

        The first two have the points of all these scans, one scan behind the other; those of scan first + i
        are from offsets[i] to offsets[i + 1]. `offsets` is int64, shape (scans + 1,). A scan that can't be
        read has no points here; `doubts` says so. Raises ReadError where scans share their points so often
        that they can't all be held.
        """
        first, end, _ = slice(first, end).indices(len(self))
        return self._core.points(first, end)

    def eic(self, windows: Sequence[tuple[float, float]]) -> np.ndarray:
        """Returns extracted traces, shape (windows, scans), float64.

        Each number is the sum of the scan's intensities whose masses lie in the window (lowest, highest), both
        ends in it; NaN for unreadable scans. All scans are read once. Raises ValueError for a window that ends
        before it begins.
        """
        return self._core.eic([_range("window", lowest, highest) for lowest, highest in windows])

    def average(self, t0: float, t1: float, width: float = 0.0) -> tuple[np.ndarray, np.ndarray]:
        """Returns the mean spectrum of the scans from time t0 to t1, both in it, as (mz, intensity).

        Intensities of one mass are added up and divided by the number of scans that could be read. Peaks less
        than `width` above the lowest one of them count as one, at their mean mass weighted by intensity. Both
        arrays are float64, and masses ascend. Raises ValueError for a range of times that ends before it begins, or
        a width below 0.
        """
        if not float(width) >= 0.0:
            raise ValueError(f"Peaks can't be averaged over a width of {float(width):g}.")
        return self._core.average(*_range("time range", t0, t1), width)

    def modulation(self) -> Modulation:
        """Guesses the modulation length of a GCxGC run from its trace."""
        seconds, confidence, is_confident = self._core.modulation()
        return Modulation(seconds, confidence, is_confident)

    def map(self, length: float, trace: np.ndarray | None = None) -> np.ndarray:
        """Returns a GCxGC run as an image, shape (modulations, scans of one), float64.

        A row is one modulation of `length`, beginning at the first scan's time, and a column is one step of
        the second dimension, the median distance of scans; both as `times`, in s where `has_seconds`. Each
        scan counts where its time lies; several in one place are averaged, and a place without one is NaN.
        `trace` has a number for each scan, such as a row of `eic` has; by default the total intensities.
        Raises ValueError for a length that isn't longer than two scans, or that makes more than 100 million
        places.
        """
        times = self.times
        values = self.tic if trace is None else np.asarray(trace, np.float64)
        if values.shape != times.shape:
            raise ValueError("A trace has one number for each scan.")
        held = np.isfinite(times) & np.isfinite(values)
        times, values = times[held], values[held]
        steps = np.diff(np.unique(times))
        if len(steps) == 0:
            return np.empty((0, 0))
        length, step = float(length), float(np.median(steps))
        since = times - times.min()
        if not (length > 2 * step and (float(since.max()) + length) / step < 1e8):
            unit = " s" if self.has_seconds else ""
            raise ValueError(
                f"A modulation can't be {length:g}{unit} long where scans follow each other by {step:g}{unit}."
            )
        columns = round(length / step)
        # Half a step before its modulation begins, a scan belongs to it already.
        rows = np.floor((since + step / 2) / length).astype(np.int64)
        places = np.clip(np.rint((since - rows * length) / step).astype(np.int64), 0, columns - 1)
        cells = rows * columns + places
        size = (rows.max() + 1) * columns
        counts = np.bincount(cells, minlength=size)
        with np.errstate(invalid="ignore"):
            means = np.bincount(cells, values, minlength=size) / counts
        return means.reshape(-1, columns)

    def to_dataframe(self) -> pandas.DataFrame:
        """Returns all points as a pandas data frame with the columns scan, time, mz and intensity."""
        import pandas

        mz, intensity, offsets = self.points()
        counts = np.diff(offsets)
        return pandas.DataFrame(
            {
                "scan": np.repeat(np.arange(len(counts), dtype=np.int32), counts),
                "time": np.repeat(self.times, counts),
                "mz": mz,
                "intensity": intensity,
            }
        )

    def to_xarray(self) -> xarray.Dataset:
        """Returns the run as a data set of xarray: mz and intensity over "point", the rest over "scan".

        The points of all scans lie one behind the other, as `points` has them; row_size says how many each
        scan has. The data set's attributes are the run's.
        """
        import xarray

        mz, intensity, offsets = self.points()
        time = xarray.Variable("scan", self.times, {"units": "s"} if self.has_seconds else {})
        row_size = xarray.Variable("scan", np.diff(offsets), {"sample_dimension": "point"})
        return xarray.Dataset(
            {
                "mz": ("point", mz),
                "intensity": ("point", intensity),
                "tic": ("scan", self.tic),
                "row_size": row_size,
            },
            coords={"time": time},
            attrs={name: value for name, value in self.attributes.items() if value is not None},
        )

    @property
    def attributes(self) -> dict[str, Any]:
        """The global attributes by their names in the file: str, int, float, or a list of numbers."""
        return self._core.attributes()

    @property
    def variable_attributes(self) -> dict[str, dict[str, Any]]:
        """The attributes of variables, such as units and factors, by the variables' names."""
        return self._core.variable_attributes()

    @property
    def instruments(self) -> list[Instrument]:
        """The components of the instrument, up to 10,000."""
        return [Instrument(**fields) for fields in self._core.instruments()]

    @property
    def groups(self) -> list[Group]:
        """The groups of monitored masses, up to 10,000."""
        return [Group(**fields) for fields in self._core.groups()]

    @property
    def library(self) -> Items[Compound]:
        """The compounds of a library, one for each of its spectra; none for another run."""
        entries = len(self) if self.kind == "library" else 0
        return Items(lambda place: Compound(**self._core.compound(place)), range(entries))

    @property
    def doubts(self) -> list[Doubt]:
        """What is known to be doubtful by now. All is known once each scan was read, as by `points`."""
        return [Doubt(**fields) for fields in self._core.doubts()]


def open(path: str | bytes | os.PathLike) -> Run:  # noqa: A001
    """Opens a file and returns its run. Raises ReadError where that can't be done.

    with aiams.open("run.cdf") as run:
        mz, intensity, offsets = run.points()
    """
    return Run(path)
