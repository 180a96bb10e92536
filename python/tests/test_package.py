"""What programs do with runs, rightly and wrongly."""

import logging
import os
import signal
import subprocess
import sys
import threading

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
        assert run[-1].index == 199 and run[-200].index == 0 and run.scan_at(run.times[7]).index == 7
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
    for misuse in (
        lambda: run.eic([(50.0, 60.0), (60.0, 50.0)]),
        lambda: run.eic([(np.nan, 50.0)]),
        lambda: run.average(2.0, 1.0),
        lambda: run.average(1.0, 2.0, -0.1),
    ):
        with pytest.raises(ValueError, match="There is no (window|time range) from|over a width"):
            misuse()
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
        thread.join(300)
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
        assert subprocess.run(command, timeout=300).returncode == 0


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


def test_a_child_process_opens_its_own(sample):
    """Also where a thread is reading when the process forks, which is gone in the child."""
    run, done = aiams.open(make_sample(sample.with_name("forked.cdf"), "--scans", 20000, "gcms")), []
    thread = threading.Thread(target=lambda: [run.points() for _ in iter(lambda: len(done), 20)])
    thread.start()
    for _ in range(20):
        child = os.fork()
        if child == 0:
            signal.alarm(300)
            try:
                list(run)
            except aiams.ClosedError:
                was_closed = run.closed and "closed" in repr(run)
                run.close()
                with aiams.open(sample) as own:
                    os._exit(0 if was_closed and len(own) == 200 else 2)
            os._exit(1)
        done.append(os.waitpid(child, 0)[1])
    thread.join(300)
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
