"""What programs write, and what can't be written."""

import os

import netCDF4
import numpy as np
import pytest
from conftest import FIXTURES, make_sample

import aiams


def test_times_that_are_no_seconds_are_not_written_as_such(tmp_path):
    with aiams.open(FIXTURES / "time-units.cdf") as run:
        assert run.to_xarray().time.attrs == {}
        with pytest.raises(aiams.WriteError, match="isn't in seconds"):
            aiams.write(tmp_path / "copy.cdf", run)


def test_numbers_that_were_never_written_are_none(tmp_path):
    path = tmp_path / "run.cdf"
    aiams.write(path, [aiams.ScanData(1.0, [50.0], [1.0], numbers={"a_d_coaddition_factor": 3})] * 2)
    with netCDF4.Dataset(path, "a") as file:
        file["a_d_coaddition_factor"][0] = netCDF4.default_fillvals["i2"]
    with aiams.open(path) as run:
        assert ["a_d_coaddition_factor" in scan.numbers for scan in run] == [False, True]


def test_given_numbers_stay(tmp_path):
    path = tmp_path / "run.cdf"
    numbers = {"mass_range_min": 40.0, "mass_range_max": 60.0, "actual_scan_number": 70000}
    scans = [aiams.ScanData(time, [50.0], [1.0], tic=5.0, numbers=numbers) for time in (1.0, 2.0)]
    aiams.write(path, scans, experiment_type="Continuum Mass Spectrum")
    with netCDF4.Dataset(path, "a") as file:
        file["total_intensity"][0] = -9999.0
    with aiams.open(path) as run:
        assert run[0].mass_range == (40.0, 60.0) and run[0].numbers["actual_scan_number"] == 70000
        assert run.attributes["experiment_type"] == "Continuum Mass Spectrum"
        assert list(run.tic) == [1.0, 5.0]


@pytest.mark.parametrize("source", ["sample", "groups", "attributes", "library"])
def test_written_again(sample, tmp_path, source):
    options = {"sample": (), "groups": ("sim",), "attributes": (), "library": ("library",)}[source]
    path = FIXTURES / "text-attributes.cdf" if source == "attributes" else sample
    if options:
        path = make_sample(tmp_path / "source.cdf", "--scans", 30, *options)
    copy = tmp_path / "copy.cdf"
    more = {"a_number": 7, "numbers": [1.5, 2.5], "a text": "ä日本"}
    with aiams.open(path) as run:
        attributes = {**run.attributes, **more}
        aiams.write(
            copy, run, instruments=run.instruments, groups=run.groups, library=run.library, **attributes
        )
        with aiams.open(copy) as again:
            for old, new in zip(run.points(), again.points()):
                assert old.dtype == new.dtype and np.array_equal(old, new)
            assert np.array_equal(run.times, again.times, equal_nan=True)
            for old, new in zip(run, again):
                assert old.numbers.items() <= new.numbers.items()  # some are worked out
                assert all(map(np.array_equal, old.flags, new.flags))
            assert run.instruments == again.instruments
            assert list(map(repr, run.library)) == list(map(repr, again.library))
            assert [list(group.masses) for group in run.groups] == [list(group.masses) for group in again.groups]
            made_anew = {name for name in attributes if "revision" in name or "_format" in name}
            lost = {
                name: value
                for name, value in attributes.items()
                if name not in made_anew and again.attributes.get(name) != value
            }
            assert lost == {}
            assert all(type(again.attributes[name]) is type(value) for name, value in more.items())


def test_what_an_instrument_is_not_given_is_none():
    assert set(vars(aiams.Instrument()).values()) == {None}


MASSES = np.arange(50.0, 60.0)


@pytest.mark.parametrize(
    "masses",
    [
        MASSES[::-2],
        MASSES + 2.0**-20,  # whose sum is no float
        MASSES.astype(">f8"),
        MASSES.astype(">f4"),
        MASSES.astype(np.float16),
        MASSES.astype(np.int8),
        MASSES.reshape(2, 5)[:, 0],
        MASSES.tolist(),
        np.ma.array(MASSES),
        [],
    ],
)
def test_arrays_of_any_make_are_written(tmp_path, masses):
    path = tmp_path / "copy.cdf"
    aiams.write(path, ((time, masses, masses) for time in (1.0, np.nan)))
    with aiams.open(path) as run:
        for scan in run:
            assert scan.mz.tolist() == scan.intensity.tolist() == [float(mass) for mass in masses]
            assert scan.tic == sum(masses)
            if len(masses) > 0:
                assert scan.mass_range == (min(masses), max(masses))
        assert run[0].time == 1.0
    aiams.write(path, [(1.0, MASSES, MASSES), (2.0, MASSES.astype(np.float32), MASSES)], overwrite=True)
    with aiams.open(path) as run:
        assert run[1].mz.dtype == np.float64


def test_texts_of_compounds(tmp_path):
    path, compound = tmp_path / "library.cdf", aiams.Compound(name="é" * 254, formula="C2H6")
    aiams.write(path, [(np.nan, [31.0], [1.0])], library=[compound])
    with aiams.open(path) as run:
        assert repr(run.library[0]) == repr(compound)  # with None and NaN for all else


def test_what_groups_lack_is_no_number(tmp_path):
    path = tmp_path / "sim.cdf"
    aiams.write(path, ONE, groups=[*group_with(masses=(50.0, np.nan)), *group_with(masses=(50.0,))])
    with aiams.open(path) as run:
        for group in run.groups:
            np.testing.assert_array_equal(group.masses, [50.0, np.nan])


def scan_with(**numbers):
    return [aiams.ScanData(1.0, [50.0], [1.0], numbers=numbers)]


def group_with(mass_count=2, masses=(50.0, 60.0), times=(1.0, 1.0)):
    return [aiams.Group(mass_count, 0, np.array(masses), np.array(times), np.array(times))]


ONE = [(1.0, [50.0], [1.0])]


class Short(list):
    def __len__(self):
        return 3


@pytest.mark.parametrize(
    "scans, more, sentence",
    [
        ([(1.0, [50.0], [1.0, 2.0])], {}, "aren't two arrays of one length"),
        ([(1.0, 50.0, 1.0)], {}, "aren't two arrays of one length"),
        ([(1.0, [50.0], [np.nan])], {}, "infinite or no number"),
        ([(1.0, [50.0], [9.969209968386869e36])], {}, "infinite or no number"),
        ([(1.0, [50.0], [2**53 + 1])], {}, "too large to be stored exactly"),
        ([(1.0, [50.0, 51.0], [1e308, 1e308])], {}, "add up to more"),
        ([(1.0, [50.0 + 1j], [1.0])], {}, "aren't numbers"),
        ([(1.0, ["50"], [1.0])], {}, "aren't numbers"),
        ([(1.0, np.ma.masked_equal([50.0], 50.0), [1.0])], {}, "Masked points"),
        ([(1.0, [50.0], np.ma.masked_equal([1.0], 1.0))], {}, "Masked points"),
        ([(np.inf, [50.0], [1.0])], {}, "scan_acquisition_time can't be inf"),
        ([(-9999.0, [50.0], [1.0])], {}, "scan_acquisition_time can't be -9999"),
        ([], {}, "there are no scans"),
        (Short(ONE), {}, "only 1 of its 3 scans"),
        (scan_with(colour=3), {}, '"colour" is no number'),
        (scan_with(actual_scan_number=2**70), {}, "actual_scan_number can't be"),
        (scan_with(a_d_coaddition_factor=2**15), {}, "a_d_coaddition_factor can't be"),
        (ONE, {"note": 2**53 + 1}, "too large"),
        (ONE, {"note": "a\0b"}, "has a NUL"),
        (ONE, {"note": "\ud800"}, "half a character"),
        (ONE, {"note": True}, "neither a text nor numbers"),
        (ONE, {"number_of_times_processed": 2**70}, "neither a text nor numbers"),
        (ONE, {"library": [aiams.Compound(name="n" * 255)]}, "at most 254 characters"),
        (ONE, {"library": [aiams.Compound(name="日本")]}, "all of Latin-1"),
        (ONE, {"library": [aiams.Compound(melting_point=1e300)]}, "melting_point can't be"),
        (ONE, {"instruments": [aiams.Instrument(model="m" * 32)]}, "at most 31 characters"),
        (ONE, {"groups": group_with(mass_count=1)}, "the masses of a group can't be"),
        (ONE, {"groups": group_with(mass_count=2**31)}, "the mass_count of a group can't be"),
        (ONE, {"groups": group_with(times=(1.0, np.inf))}, "the sampling_times of a group can't be"),
    ],
)
def test_what_cannot_be_written_leaves_the_old_file(tmp_path, scans, more, sentence):
    path = tmp_path / "old.cdf"
    path.write_bytes(b"old")
    with pytest.raises(aiams.WriteError, match="exists. With overwrite=True"):
        aiams.write(path, ONE)
    with pytest.raises(aiams.WriteError, match=sentence):
        aiams.write(path, scans, overwrite=True, **more)
    assert os.listdir(tmp_path) == ["old.cdf"] and path.read_bytes() == b"old"
    with pytest.raises(aiams.WriteError, match="is a folder"):
        aiams.write(tmp_path, ONE, overwrite=True)
