"""All fixtures give the numbers of the independent reading, or a doubt says why they don't."""

import sys

import numpy as np
import pytest
from conftest import FIXTURES, SOURCE

import aiams

sys.path.insert(0, str(SOURCE / "tests" / "oracle"))
import numpy_import  # noqa: E402
from compare import TOO_LARGE  # noqa: E402

NAMES = sorted(text.name.split(".")[0] for text in (SOURCE / "tests" / "fixtures").glob("*/*.cdl"))
JUDGED = {
    "points": {"scans-in-a-row", "counts-from-index", "ignored-factor", "claimed-scans"},
    "times": {"made-times", "claimed-scans"},
}

# Where the reading of runs and that of imports differ.
REFUSED_HERE = {"odd-scan-index": "more points than the file can hold"}
READ_HERE = {"scan-number-dashed-only"}  # the host wants the dimension under its own name


def plain_points(plain, scan):
    """Masses and intensities of a scan by the counters alone, without points that are no data."""
    stretch = slice(plain.start[scan], plain.start[scan] + plain.count[scan])
    mz = plain.mass_axis.numbers[stretch]
    intensity = numpy_import.Axis(plain.dataset, "intensity_values", np.int32).numbers[stretch]
    variables = map(plain.dataset.variables.get, ("mass_values", "intensity_values"))
    types = [getattr(variable, "dtype", np.dtype("f8")) for variable in variables]
    fills = [{"i2": -32767, "i4": -(2**31) + 1}.get(kind.str[1:], 9.969209968386869e36) for kind in types]
    held = np.ones(len(mz), bool)
    for numbers, fill in zip((mz, intensity), fills):
        held &= np.isfinite(numbers) & ~np.isclose(numbers, fill, rtol=1e-6, atol=0)
    return (
        mz[held] * plain.mass_scale,
        intensity[held] * plain.intensity_scale + plain.intensity_offset,
    )


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
    if name in REFUSED_HERE:
        with pytest.raises(aiams.ReadError, match=REFUSED_HERE[name]):
            aiams.open(path)
        return
    with aiams.open(path) as run:
        agreed = {"points": run.kind == "trace" or len(plain.table) == 0 or points_agree(run, plain)}
        stored = numpy_import.numbers_of(
            numpy_import.find(plain.dataset.variables, "scan_acquisition_time")
        )[: len(run)]
        stored = np.concatenate([stored, np.full(len(run) - len(stored), np.nan)])
        unknown = ~np.isfinite(stored) | (stored == -9999) | (np.abs(stored) > 9e36)
        agreed["times"] = np.array_equal(run.times, np.where(unknown, np.nan, stored), equal_nan=True)
        codes = {doubt.code for doubt in run.doubts}
        for kind, judged in JUDGED.items():
            assert agreed[kind] or codes & judged, f"{kind} differ, and no doubt says so: {codes}"
