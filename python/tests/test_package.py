"""What programs do with the package, rightly and wrongly."""

import logging
import os
import signal
import subprocess
import sys
import threading

import netCDF4
import numpy as np
import pytest
from conftest import FIXTURES, make_sample

import aiams


def test_scans_points_and_slices_agree(sample):
    with aiams.open(sample) as run:
        mz, intensity, offsets = run.points()
        assert (mz.dtype, offsets.dtype, len(offsets), offsets[-1]) == (np.float32, np.int64, 201, len(mz))
        some = run[10:20:3]
        assert [scan.index for scan in some] == [10, 13, 16, 19] and len(some[1:]) == 3
        assert run[-1].index == 199 and run.scan_at(run.times[7]).index == 7
        part = run.points(5, 8)
        assert np.array_equal(part[0], mz[offsets[5] : offsets[8]]) and part[2][-1] == len(part[0])
        assert len(run.library) == 0 and run.to_xarray().time.attrs == {"units": "s"}
        # What was read outlives run and scan.
        kept = run[3].mz
    assert run.closed
    assert np.array_equal(kept, mz[offsets[3] : offsets[4]])
    with pytest.raises(ValueError):
        kept[0] = 1.0


def test_traces_and_averages_are_those_of_the_points(sample):
    with aiams.open(sample) as run:
        mz, intensity, offsets = run.points()
        scan_of = np.repeat(np.arange(len(run)), np.diff(offsets))
        windows = [(50.0, 100.0), (73.0, 73.5), (1000.0, 2000.0)]
        for (lowest, highest), trace in zip(windows, run.eic(windows)):
            inside = (mz >= lowest) & (mz <= highest)
            np.testing.assert_allclose(trace, np.bincount(scan_of[inside], intensity[inside], 200), rtol=1e-12)
        peaks = run.average(run.times[10], run.times[12])
        inside = (scan_of >= 10) & (scan_of <= 12)
        masses, places = np.unique(mz[inside].astype(float), return_inverse=True)
        assert np.array_equal(peaks[0], masses)
        np.testing.assert_allclose(peaks[1], np.bincount(places, intensity[inside]) / 3, rtol=1e-12)
        np.testing.assert_allclose(run.summed_tic(), np.bincount(scan_of, intensity, 200), rtol=1e-12)


def test_a_map_has_each_scan_where_its_time_lies(tmp_path):
    """Late and early ones, two in one place, and places without one."""
    times = [10.0, 10.5, 11.0, 11.5, 11.9, 12.6, 13.0, 13.1, 13.5, 14.0, 15.5]
    scans = [aiams.ScanData(time, [50.0], [1.0], tic=i + 1) for i, time in enumerate(times)]
    aiams.write(tmp_path / "run.cdf", scans)
    expected = [[1, 2, 3, 4], [5, 6, 7.5, 9], [10, np.nan, np.nan, 11]]
    with aiams.open(tmp_path / "run.cdf") as run:
        np.testing.assert_array_equal(run.map(2.0), expected)
        np.testing.assert_array_equal(run.map(2.0, -run.tic), np.negative(expected))
        uneven = [[1, 2, 3, 4.5], [np.nan, 6, 7.5, 9.5], [np.nan, np.nan, 11, np.nan]]
        np.testing.assert_array_equal(run.map(2.2), uneven)
        gap = np.where(run.tic == 9, np.nan, run.tic)
        assert np.isnan(run.map(2.0, gap)[1, 3])
        with pytest.raises(ValueError, match="one number for each scan"):
            run.map(2.0, run.tic[1:])


@pytest.mark.parametrize(
    "fixture, sentence",
    [
        ("no-such-file", 'The file ".*no-such-file.cdf" doesn\'t exist.'),
        ("not-netcdf", "isn't a netCDF file"),
        ("cut & off", 'The file ".*cut & off.cdf" is damaged'),
    ],
)
def test_unreadable_files(tmp_path, fixture, sentence):
    beginnings = {"not-netcdf": b"CDF\7nothing", "cut & off": b"CDF\1\0"}
    if fixture in beginnings:
        (tmp_path / f"{fixture}.cdf").write_bytes(beginnings[fixture])
    with pytest.raises(aiams.ReadError, match=sentence):
        aiams.open(tmp_path / f"{fixture}.cdf")


@pytest.mark.parametrize("name", ["ä日本.cdf".encode(), b"latin-\xe4.cdf", "-", "blank \n\".cdf"])
def test_names(sample, tmp_path, monkeypatch, name):
    monkeypatch.chdir(tmp_path)
    with aiams.open(sample) as run:
        aiams.write(name, run[:3])
    with aiams.open(name) as copy:
        assert len(copy) == 3 and copy.name == os.fsdecode(name)
    assert os.listdir(os.fsencode(tmp_path)) == [os.fsencode(name)]


def test_misuse_raises(sample):
    run = aiams.open(sample)
    for index in (200, -201, 2**40, -(2**70)):
        with pytest.raises(IndexError):
            run[index]
    for length in (0.1, np.nan, 1e9, 1e300):
        with pytest.raises(ValueError, match="A modulation can't be"):
            run.map(length)
    with pytest.raises(ValueError, match="NUL"):
        aiams.open(f"{sample}\0.txt")
    for kind in (type(run[0]), type(run._core)):
        with pytest.raises(TypeError):
            kind.__new__(kind)
    with pytest.raises(TypeError):
        run["0"]
    with pytest.raises(TypeError):
        aiams.open(None)
    before = sample.read_bytes()
    for name, value in {"overwrite": 1, "library": "NIST", "groups": [1.0, 2.0], "instruments": 3}.items():
        with pytest.raises(TypeError, match=f"{name} takes"):
            aiams.write(sample, run[:4], **{name: value})  # as an attribute of a file that is copied
    assert sample.read_bytes() == before
    assert len(run.points(50, 10)[0]) == 0
    scan = run[0]
    run.close()
    run.close()
    assert len(scan.mz) > 0
    for use in (len, list, lambda r: r.times, lambda r: r[0], lambda r: r.points(), lambda r: r.doubts):
        with pytest.raises(aiams.ClosedError):
            use(run)


def test_threads_share_a_run(sample):
    """Some read, one closes: each gets right numbers or ClosedError."""
    run = aiams.open(sample)
    expected, wrong = run.points(), []

    def read():
        try:
            for _ in range(200):
                found = run.points()
                wrong.extend(1 for a, b in zip(found, expected) if not np.array_equal(a, b))
        except aiams.ClosedError:
            pass

    threads = [threading.Thread(target=read) for _ in range(4)]
    for thread in threads:
        thread.start()
    threads[0].join(0.2)
    run.close()
    for thread in threads:
        thread.join(60)
        assert not thread.is_alive()
    assert not wrong


@pytest.mark.parametrize("call", ["run.points()", "aiams.open(path).close()"])
def test_daemons_do_not_end_the_process(call):
    """They are in the middle of C++, or of a message, when the interpreter ends."""
    program = f"""
import sys, threading, time, aiams
path = sys.argv[1]
run = aiams.open(path)
def work():
    while True:
        {call}
for _ in range(4):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.05)
"""
    for _ in range(3):
        command = [sys.executable, "-c", program, FIXTURES / "no-attributes.cdf"]
        assert subprocess.run(command, timeout=60).returncode == 0


def test_a_handler_of_a_signal_cannot_close_what_is_read(sample):
    long, closed = make_sample(sample.with_name("long.cdf"), "--scans", 20000, "gcms"), []

    def close(*_):
        try:
            run.close()
            closed.append("before")
        except aiams.ClosedError:
            closed.append("meanwhile")

    before = signal.signal(signal.SIGALRM, close)
    for _ in range(50):
        run = aiams.open(long)
        signal.setitimer(signal.ITIMER_REAL, 0.001)
        try:
            assert len(run.points()[2]) == 20001
        except aiams.ClosedError:
            continue
        if closed[-1:] == ["meanwhile"]:
            break
    signal.setitimer(signal.ITIMER_REAL, 0)
    signal.signal(signal.SIGALRM, before)
    assert closed[-1] == "meanwhile"


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


def test_a_child_process_opens_its_own(sample):
    """Also where a thread is reading when the process forks, which is gone in the child."""
    run, done = aiams.open(make_sample(sample.with_name("forked.cdf"), "--scans", 20000, "gcms")), []
    thread = threading.Thread(target=lambda: [run.points() for _ in iter(lambda: len(done), 20)])
    thread.start()
    for _ in range(20):
        child = os.fork()
        if child == 0:
            signal.alarm(60)
            try:
                list(run)
            except aiams.ClosedError:
                was_closed = run.closed and "closed" in repr(run)
                run.close()
                with aiams.open(sample) as own:
                    os._exit(0 if was_closed and len(own) == 200 else 2)
            os._exit(1)
        done.append(os.waitpid(child, 0)[1])
    thread.join(60)
    assert not thread.is_alive() and not any(done)


def test_ctrl_c_among_messages_is_not_lost():
    class Press(logging.Filter):
        def filter(self, record):
            signal.raise_signal(signal.SIGINT)
            return True

    before = signal.signal(signal.SIGINT, signal.default_int_handler)  # a shell's job ignores it
    logger, press = logging.getLogger("aiams"), Press()
    logger.addFilter(press)
    logger.setLevel(logging.INFO)
    try:
        with pytest.raises(KeyboardInterrupt):
            aiams.open(FIXTURES / "no-attributes.cdf")
            list(range(1000))
    finally:
        logger.removeFilter(press)
        logger.setLevel(logging.NOTSET)
        signal.signal(signal.SIGINT, before)


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


MASSES = np.arange(50.0, 60.0)


@pytest.mark.parametrize(
    "masses",
    [
        MASSES[::-2],
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


def test_messages_go_to_the_logger(caplog):
    with caplog.at_level(logging.INFO, "aiams"):
        for name in ("no-attributes", "instrument-rank-1"):
            aiams.open(FIXTURES / f"{name}.cdf").close()
    said = {(record.levelname, record.getMessage()) for record in caplog.records}
    assert any(level == "INFO" and "is missing from file" in text for level, text in said)
    assert ("WARNING", 'Size type mismatch while loading "instrument_name"') in said
    assert all("<b>" not in record.getMessage() for record in caplog.records)


def test_pythons_lock_is_let_go_only_where_the_library_is_not_called(sample):
    assert aiams.open(sample)._core.reads_alone
    assert not aiams.open(FIXTURES / "groups-no-masses.cdf")._core.reads_alone
