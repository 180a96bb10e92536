"""All fixtures give the numbers of the independent reading, or a doubt says why they don't."""

import resource
import sys

import netCDF4
import numpy as np
import pytest
from conftest import FIXTURES, SOURCE

import aiams

sys.path.insert(0, str(SOURCE / "tests" / "oracle"))
import numpy_import  # noqa: E402
from compare import TOO_LARGE  # noqa: E402

del TOO_LARGE["huge-scans"]  # for JSON alone

NAMES = sorted(text.name.split(".")[0] for text in (SOURCE / "tests" / "fixtures").glob("*/*.cdl"))

# Points that aren't where the file says, and the doubt that says so.
JUDGED = {
    "huge-scans": "counts-from-index",
    "no-scan-index": "scans-in-a-row",
    "odd-scan-index": "bad-counts",
    "scan-index-rank-2": "scans-in-a-row",
    "short-intensities": "counts-from-index",
    "zero-scale": "ignored-factor",
}

# Read as runs and refused by imports.
READ_HERE = {"scan-number-dashed-only"}  # the host wants the dimension under its own name


def plain_points(plain, scan):
    """Masses and intensities of a scan by the counters alone, without points that are no data."""
    stretch = slice(plain.start[scan], plain.start[scan] + plain.count[scan])
    mz = plain.mass_axis.numbers[stretch]
    intensity = numpy_import.Axis(plain.dataset, "intensity_values", np.int32).numbers[stretch]
    variables = map(plain.dataset.variables.get, ("mass_values", "intensity_values"))
    types = [getattr(variable, "dtype", np.dtype("f8")) for variable in variables]
    fills = [{"i2": -32767, "i4": -(2**31) + 1}.get(np.dtype(kind).str[1:], 9.969209968386869e36) for kind in types]
    held = np.ones(len(mz), bool)
    for numbers, fill in zip((mz, intensity), fills):
        held &= np.isfinite(numbers) & ~np.isclose(numbers, fill, rtol=1e-6, atol=0)
    return (
        mz[held] * plain.mass_scale,
        intensity[held] * plain.intensity_scale + plain.intensity_offset,
    )


def stored_numbers(plain, name):
    """A number for each scan, NaN for what the file lacks."""
    stored = numpy_import.numbers_of(numpy_import.find(plain.dataset.variables, name))[: plain.scan_count]
    stored = np.concatenate([stored, np.full(plain.scan_count - len(stored), np.nan)])
    unknown = ~np.isfinite(stored) | (stored == -9999) | (np.abs(stored) > 9e36)
    return np.where(unknown, np.nan, stored)


def totals_agree(run, plain):
    """The totals, and traces of a window, are those of the points that run.points() has."""
    mz, intensity, offsets = run.points()
    scan_of = np.repeat(np.arange(len(run)), np.diff(offsets))
    unread = [not scan.is_read for scan in run]
    lowest, highest = 50.0, 100.0
    window = (mz >= lowest) & (mz <= highest)
    for inside, found in ((np.full(len(mz), True), run.summed_tic()), (window, run.eic([(lowest, highest)])[0])):
        sums = np.bincount(scan_of[inside], intensity[inside], len(run))
        np.testing.assert_allclose(found, np.where(unread, np.nan, sums), rtol=1e-12)
    stored = stored_numbers(plain, "total_intensity")[: len(run)]
    made = np.nan if run.kind == "trace" else run.summed_tic()
    return np.array_equal(run.tic, np.where(np.isnan(stored), made, stored), equal_nan=True)


def points_agree(run, plain):
    mz, intensity, offsets = run.points()
    if len(run) != plain.scan_count:
        return False
    for scan in range(len(run)):
        expected = plain_points(plain, scan)
        stretch = slice(offsets[scan], offsets[scan + 1])
        one = run[scan]
        assert np.array_equal(one.mz, mz[stretch]) and np.array_equal(one.intensity, intensity[stretch])
        if one.is_read != plain.readable[scan]:
            return False
        if not (np.array_equal(one.mz, expected[0]) and np.array_equal(one.intensity, expected[1])):
            return False
    return True


@pytest.mark.parametrize("name", NAMES)
def test_numbers(name):
    path = FIXTURES / f"{name}.cdf"
    if name in TOO_LARGE:
        pytest.skip(TOO_LARGE[name])
    np.seterr(all="ignore")
    try:
        plain = numpy_import.Run(str(path))
    except numpy_import.Refused:
        if name in READ_HERE:
            assert len(aiams.open(path)) > 0
            return
        with pytest.raises(aiams.ReadError, match=name):
            aiams.open(path)
        return
    with aiams.open(path) as run:
        if run.kind != "trace" and len(plain.table) == 0:  # too few masses for a table of an import
            plain.table = np.zeros(1)
            plain.read_spectra()
        agree = run.kind == "trace" or points_agree(run, plain)
        times = stored_numbers(plain, "scan_acquisition_time")[: len(run)]
        np.testing.assert_array_equal(run.times, times)
        assert totals_agree(run, plain)
        distances = np.abs(run.times - 60.0)
        nearest = None if np.isnan(distances).all() else np.nanargmin(distances)
        assert getattr(run.scan_at(60.0), "index", None) == nearest
        codes = {doubt.code for doubt in run.doubts}
        assert all(str(doubt) == doubt.text for doubt in run.doubts)
        if name in JUDGED:
            assert not agree and JUDGED[name] in codes
        else:
            assert agree
        names = plain.dataset.ncattrs()
        assert list(run.attributes) == names
        for name in names:
            found, stored = run.attributes[name], numpy_import.attribute(plain.dataset._grpid, -1, name)
            if isinstance(stored, bytes):
                assert found.encode() == stored or found.encode("latin-1") == stored
            elif stored is not None:
                assert np.array_equal(np.ravel(found)[:1], [stored], equal_nan=True)


def test_attributes_of_all_types(tmp_path):
    stored = {f"of_{kind}": np.array([-3, 7]).astype(kind) for kind in "bhiqBHIQfd"}
    with netCDF4.Dataset(tmp_path / "types.cdf", "w") as data:
        data.createDimension("scan_number", 1)
        data.setncatts(stored)
    with aiams.open(tmp_path / "types.cdf") as run:
        assert run.attributes == {name: numbers.tolist() for name, numbers in stored.items()}


@pytest.mark.parametrize("name", NAMES)
def test_whatever_is_asked_has_an_answer_or_a_sentence(name):
    try:
        run = aiams.open(FIXTURES / f"{name}.cdf")
    except aiams.ReadError:
        return
    calls = {
        "points": lambda: run.points(),
        "eic": lambda: run.eic([(0.0, 100.0), (5.0, 5.0)]),
        "average": lambda: run.average(-1e9, 1e9, 0.1),
        "modulation": lambda: run.modulation(),
        "map": lambda: run.map(1e4),
        "tables": lambda: (run.to_dataframe(), run.to_xarray()),
        "scans": lambda: [(scan.mz, scan.intensity, scan.numbers, scan.flags, scan.failure) for scan in run[:1000]],
        "records": lambda: (run.instruments, run.groups, list(run.library[:1000]), run.variable_attributes),
        "facts": lambda: (run.times, run.tic, run.scan_at(100.0), run.doubts),
    }
    before = resource.getrlimit(resource.RLIMIT_AS)
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, before[1]))
    try:
        for call in calls.values():
            try:
                call()
            except (aiams.ReadError, MemoryError) as failure:
                assert str(failure)
            except ValueError as failure:
                assert "A modulation can't be" in str(failure)
    finally:
        resource.setrlimit(resource.RLIMIT_AS, before)
        run.close()
