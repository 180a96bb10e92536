"""Archives on Dask: all runs count once, whatever happens to files and workers."""

import os
import signal
import sys

import dask
import netCDF4
import numpy as np
import pandas as pd
import pytest
import xarray
from conftest import BIN, make_sample
from dask.distributed import Client, LocalCluster

import aiams
from aiams import archive

RUNS = 12
PROGRAM = BIN / "aia-convert"


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    """Runs of 5, 6, 7... scans, one of which has lost its end, and two files that are none."""
    folder = tmp_path_factory.mktemp("archive")
    for i in range(RUNS):
        make_sample(folder / f"run-{i:02}.cdf", "--scans", 5 + i, "--seed", i + 1, "gcms")
    whole = (folder / "run-03.cdf").read_bytes()
    (folder / "run-03.cdf").write_bytes(whole[: len(whole) - 900])
    (folder / "text.cdf").write_text("no run")
    (folder / "empty.cdf").touch()
    return folder


def check_counts(scans, report, folder):
    assert scans.time.dtype == scans.tic.dtype == np.float64
    counts = scans.groupby("file").scan.agg(["count", "nunique"])
    assert list(counts["count"]) == list(counts["nunique"]) == [5 + i for i in range(RUNS)]
    assert sorted(report.file) == sorted(map(str, folder.glob("*.cdf")))
    failed = report[report.error != ""]
    assert [os.path.basename(name) for name in failed.file] == ["empty.cdf", "text.cdf"]
    assert failed.error.iloc[0].endswith('empty.cdf" is empty.')
    lossy = report[report.losses > 0]
    assert [os.path.basename(name) for name in lossy.file] == ["run-03.cdf"]
    assert "cut-off" in lossy.doubts.iloc[0]
    with aiams.open(folder / "run-03.cdf") as run:
        assert lossy.unread.iloc[0] == sum(not scan.is_read for scan in run) > 1


@pytest.mark.parametrize("scheduler", ["threads", "processes"])
def test_on_one_machine(folder, scheduler):
    with dask.config.set(scheduler=scheduler, num_workers=2):
        check_counts(archive.scans(folder / "*.cdf").compute(), archive.report(f"{folder}/*.cdf").compute(), folder)
        points = archive.points(folder / "run-0[01].cdf", scans_per_partition=2)
        assert points.npartitions == 3 + 3
        found = points.compute()
        for i, name in enumerate(sorted(folder.glob("run-0[01].cdf"))):
            expected = aiams.open(name).to_dataframe()
            of_run = found[found.file == str(name)].reset_index(drop=True)
            pd.testing.assert_frame_equal(of_run.drop(columns="file"), expected, check_dtype=False)


def test_tables_know_their_columns_without_reading(folder):
    for make in (archive.scans, archive.points, archive.attributes, archive.report):
        for paths in ([], ["no-such-file.cdf"]):
            table = make(paths)
            found = table.compute()
            assert dict(found.dtypes) == dict(table.dtypes)
    for name, sentence in (("no-such-file.cdf", "doesn't exist"), ("a\0b", "NUL"), ("\ud800", "surrogates")):
        assert sentence in archive.report([name]).compute().error[0] and len(archive.scans([name]).compute()) == 0
    assert archive.files([b"\xe4.cdf"]) == ["\udce4.cdf"]
    bracketed = folder / "a[1].txt"
    bracketed.touch()
    assert archive.files(bracketed) == [str(bracketed)]
    run = folder / "run-00.cdf"
    assert archive.files([run, f"{folder}/**/run-00.cdf", f"{folder}/./run-00.cdf"]) == [str(run)]


def test_points_that_cannot_all_be_held_are_reported(tmp_path):
    """Scans have the same thousand points."""
    path, count = str(tmp_path / "shared.cdf"), 20000
    aiams.write(path, [(0.0, np.arange(1.0, 1e5), np.ones(99999)), *[(float(i), [], []) for i in range(1, count)]])
    with netCDF4.Dataset(path, "a") as file:
        file["scan_index"][:] = np.arange(count) % 2
        file["point_count"][:] = 1000
    row = archive.report(path).compute().iloc[0]
    assert "share their points so often" in row.error and row.points == 1000 * count
    assert archive.scans(path).compute().points.sum() == row.points and len(archive.points(path).compute()) == 0


def die_once(name, marker):
    """Ends the worker's process, the first time."""
    try:
        os.close(os.open(marker, os.O_CREAT | os.O_EXCL))
    except FileExistsError:
        return
    os.kill(os.getpid(), signal.SIGKILL)


def test_a_killed_worker_loses_and_doubles_nothing(folder, tmp_path):
    """It dies once a run was read, and again when an output was made and nobody knows of it yet."""
    victim = str(folder / "run-05.cdf")

    def and_kill(part, marker):
        if (part.file == victim).any():
            die_once(victim, str(marker))
        return part

    # On a busy machine a killed worker takes long to come back; a cluster gives it up after 15 s.
    patience = {
        "distributed.comm.timeouts.connect": "300s",
        "distributed.comm.timeouts.tcp": "300s",
        "distributed.deploy.lost-worker-timeout": "300s",
    }
    with dask.config.set(patience):
        with LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
            with Client(cluster, timeout=300) as client:
                before = set(client.run(os.getpid).values())
                scans = archive.scans(folder / "*.cdf").map_partitions(and_kill, tmp_path / "read").compute()
                report = archive.report(folder / "*.cdf").compute()
                client.wait_for_workers(2, timeout=300)
                after = set(client.run(os.getpid).values())
                jobs = {"stored": archive.store(folder / "*.cdf", tmp_path / "columns", "csv")}
                if PROGRAM.exists():
                    jobs["converted"] = archive.convert(folder / "*.cdf", tmp_path / "mzml", program=PROGRAM)
                done = {name: job.map_partitions(and_kill, tmp_path / name).compute() for name, job in jobs.items()}
    assert (tmp_path / "read").exists() and len(before) == len(after) == 2 and len(before & after) == 1
    check_counts(scans, report, folder)
    for name, table in done.items():
        assert (tmp_path / name).exists() and sorted(table.file) == sorted(report.file)
        made = table[table.output != ""]
        assert sorted(table.file[table.output == ""]) == sorted(report.file[report.error != ""])
        assert len(set(made.output)) == RUNS and all(map(os.path.exists, made.output))
        lossy = made.file[made.error != ""]
        assert [os.path.basename(file) for file in lossy] == (["run-03.cdf"] if name == "converted" else [])


@pytest.mark.parametrize("format", ["zarr", "netcdf", "csv"])
def test_columns_for_other_engines(folder, tmp_path, format, monkeypatch):
    paths = [folder / "run-00.cdf", folder / "text.cdf"]
    done = archive.store(paths, tmp_path, format).compute().reset_index()
    assert done.error[0] == "" and "isn't a netCDF file" in done.error[1]
    with aiams.open(paths[0]) as run:
        mz, intensity, offsets = run.points()
        if format == "csv":
            found = pd.read_csv(done.output[0])
        else:
            found = xarray.open_dataset(done.output[0], engine={"netcdf": "netcdf4"}.get(format, format))
            assert np.array_equal(found.row_size, np.diff(offsets))
            assert found.attrs["experiment_title"] == run.attributes["experiment_title"]
            assert np.array_equal(found.time, run.times)
        assert np.array_equal(np.asarray(found.mz, mz.dtype), mz)
        assert np.array_equal(np.asarray(found.intensity, intensity.dtype), intensity)
    assert os.listdir(tmp_path) == [os.path.basename(done.output[0])]
    again = archive.store(paths[:1], tmp_path, format).compute()
    assert "exists" in again.error[0]

    def fail(run, part):
        os.mkdir(part) if format == "zarr" else open(part, "w").close()
        raise KeyError("not foreseen")

    monkeypatch.setitem(archive._WRITERS, format, fail)
    assert archive.store(paths[:1], tmp_path, format, overwrite=True).compute().error[0] == "'not foreseen'"
    monkeypatch.undo()
    assert os.listdir(tmp_path) == [os.path.basename(done.output[0])]
    assert archive.store(paths[:1], tmp_path, format, overwrite=True).compute().error[0] == ""


def test_conversion_of_an_archive(folder, tmp_path):
    if not PROGRAM.exists():
        pytest.skip("aia-convert isn't built")
    paths = [folder / "run-00.cdf", folder / "text.cdf"]
    done = archive.convert(paths, tmp_path, ".csv", program=PROGRAM).compute().reset_index()
    assert done.error[0] == "" and "text.cdf" in done.error[1] and os.listdir(tmp_path) == ["run-00.csv"]
    again = archive.convert(paths, tmp_path, "csv", program=PROGRAM).compute()
    assert "exists" in again.error.iloc[0] and list(again.output) == ["", ""]
    with pytest.raises(ValueError, match="would both become"):
        archive.convert([folder / "run-00.cdf", tmp_path / "run-00.cdf"], tmp_path)
    gone = archive.convert(paths[:1], tmp_path, "csv", program="no-such-program").compute()
    assert "can't be started" in gone.error[0]


def test_attributes(folder, tmp_path):
    aiams.write(tmp_path / "run.cdf", [(1.0, [50.0], [1.0])], number=7)
    assert archive.attributes(tmp_path / "run.cdf", ["number"]).compute().number[0] == "7"
    table = archive.attributes(folder / "*.cdf", ["experiment_title", "no_such"]).compute()
    assert list(archive.attributes([], "experiment_title").columns) == ["file", "experiment_title"]
    assert len(table) == RUNS and table.no_such.isna().all() and table.experiment_title.notna().all()


def test_parts_of_an_archive_make_up_the_whole(folder, tmp_path, capsys, monkeypatch):
    command = [str(tmp_path), f"{folder}/*.cdf", "--format", "csv", "--part"]
    assert [archive.main([*command, f"{part}/3"]) for part in range(3)] == [1, 1, 0]
    assert capsys.readouterr().err.count("1 of 5 files have no output: ") == 2
    with open("/dev/full", "w") as full, monkeypatch.context() as patch, pytest.raises(SystemExit, match="1"):
        patch.setattr(sys, "stdout", full)
        archive.main(["--help"])
    assert "Standard output can't be written" in capsys.readouterr().err
    with pytest.raises(SystemExit, match="2"):  # the first part is 0
        archive.main([*command, "3/3"])
    with pytest.raises(SystemExit, match="1"):
        archive.main([str(folder / "text.cdf"), "x.cdf"])
    assert "File exists" in capsys.readouterr().err
    # The first was killed when an output was made, and is started anew. Somebody removed another one.
    (tmp_path / "run-05.csv").unlink()
    table = tmp_path / "part-0-of-3.csv"
    lines = table.read_text().splitlines(keepends=True)
    table.write_text("".join(line for line in lines if "run-02" not in line))
    os.utime(table, (0, 0))
    archive.main([*command, "0/3"])
    # The second had no room for its table.
    os.truncate(tmp_path / "part-1-of-3.csv", 0)
    os.utime(tmp_path / "part-1-of-3.csv", (0, 0))
    archive.main([*command, "1/3"])
    tables = [pd.read_csv(path, keep_default_na=False) for path in tmp_path.glob("part-*-of-3.csv")]
    done = pd.concat(tables)
    assert sorted(done.file) == sorted(map(str, folder.glob("*.cdf")))
    assert sorted(done.output[done.error == ""]) == sorted(map(str, tmp_path.glob("run-*.csv")))
    assert (done.error != "").sum() == 2
    table.write_text("of somebody else\n")
    with pytest.raises(SystemExit, match="1"):
        archive.main([*command, "0/3"])
    assert "is no table of this program" in capsys.readouterr().err and table.read_text() == "of somebody else\n"
