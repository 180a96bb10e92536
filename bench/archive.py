"""How an archive job grows with the workers: tasks over a few large samples, on one worker and on two.

python3 archive.py BUILD-FOLDER [TASKS] prints what one run costs, and throughputs beside their bar. It fails
where a task isn't done once, also with a worker that is killed in the middle, and where a bar isn't held.
"""

import collections
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

build = pathlib.Path(sys.argv[1]).resolve()
tasks = int(sys.argv[2]) if len(sys.argv) > 2 else 1000
os.environ["PYTHONPATH"] = str(build / "lib/python3/dist-packages")
sys.path.insert(0, os.environ["PYTHONPATH"])

import dask  # noqa: E402
from dask.distributed import Client, LocalCluster, as_completed  # noqa: E402

BAR = 1.5  # of two workers' throughput beside one's


def work(number, path, leave):
    """Reads a run whole, and again until 100 ms of this thread's time are over."""
    import aiams

    if leave and number == leave[0]:
        try:
            os.close(os.open(leave[1], os.O_CREAT | os.O_EXCL))
            os.kill(os.getpid(), signal.SIGKILL)
        except FileExistsError:
            pass
    start = time.thread_time()
    while time.thread_time() - start < 0.1:
        with aiams.open(path) as run:
            points = len(run.points()[0])
    return number, points


def run(workers, paths, leave=None):
    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
        with Client(cluster, timeout=300) as client:
            client.submit(work, -1, paths[0], None).result()  # imports
            start = time.perf_counter()
            # Taken and given up as they come: what a worker still keeps is lost with it, and done again.
            coming = as_completed(
                [client.submit(work, i, paths[i % len(paths)], leave, pure=False) for i in range(tasks)],
                with_results=True,
            )
            done = [result for _, result in coming]
            seconds = time.perf_counter() - start
    counts = collections.Counter(number for number, _ in done)
    assert sorted(counts) == list(range(tasks)) and set(counts.values()) == {1}
    assert all(points > 0 for _, points in done)
    return tasks / seconds


def print_costs(path):
    """The best of three times of each job on one run, in this process."""
    from aiams import archive

    with tempfile.TemporaryDirectory() as folder, dask.config.set(scheduler="synchronous"):
        jobs = {
            "report": lambda: archive.report(path),
            "scans": lambda: archive.scans(path),
            "points": lambda: archive.points(path),
            "store as Zarr": lambda: archive.store(path, folder, "zarr", overwrite=True),
            "store as netCDF": lambda: archive.store(path, folder, "netcdf", overwrite=True),
        }
        for name, job in jobs.items():
            seconds = []
            for _ in range(3):
                start = time.perf_counter()
                job().compute()
                seconds.append(time.perf_counter() - start)
            print(f"{name:<24} {min(seconds):6.3f} s a run of 5 million points")


def main():
    dask.config.set({"distributed.comm.timeouts.connect": "300s"})
    folder = build / "bench" / "files"
    folder.mkdir(parents=True, exist_ok=True)
    paths = []
    for seed in (1, 2, 3):
        path = folder / f"large-{seed}.cdf"
        if not path.exists():
            options = ["--scans", "20000", "--points", "250", "--seed", str(seed), "gcms"]
            subprocess.run([build / "bin/aia-sample", *options, path], check=True)
        paths.append(str(path))
    print_costs(paths[0])
    marker = folder / "killed"
    marker.unlink(missing_ok=True)
    one, two = run(1, paths), run(2, paths)
    killed = run(2, paths, (tasks // 2, str(marker)))
    assert marker.exists()
    print(f"{'1 worker':<24} {one:6.1f} tasks/s")
    ratios = {"2 workers": two / one, "2 workers, one killed": killed / one}
    for (what, ratio), rate in zip(ratios.items(), (two, killed)):
        held = "held" if ratio >= BAR else "NOT HELD"
        print(f"{what:<24} {rate:6.1f} tasks/s  x {ratio:.2f}  {BAR} {held}")
    return 0 if min(ratios.values()) >= BAR else 1


if __name__ == "__main__":
    sys.exit(main())
