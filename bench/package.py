"""Times the Python package beside C++ and beside netCDF4 with NumPy, on files that aia-sample makes.

python3 package.py BUILD-FOLDER prints a line for each ratio: measure, ratio, bar.
"""

import os
import pathlib
import subprocess
import sys
import time

build = pathlib.Path(sys.argv[1]).resolve()
sys.path.insert(0, str(build / "lib/python3/dist-packages"))

import aiams  # noqa: E402
import netCDF4  # noqa: E402
import numpy as np  # noqa: E402


def sample(name, scans, points):
    path = build / "bench" / "files" / f"{name}.cdf"
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists():
        options = ["--scans", str(scans), "--points", str(points), "gcms"]
        subprocess.run([build / "bin/aia-sample", *options, path], check=True)
    return path


def best(action, times=7):
    seconds = []
    for _ in range(times):
        start = time.perf_counter()
        action()
        seconds.append(time.perf_counter() - start)
    return min(seconds)


def netcdf4_points(path):
    """The same arrays, scan by scan, as readers on netCDF4 do it."""
    with netCDF4.Dataset(path) as file:
        file.set_auto_maskandscale(False)
        starts, counts = file["scan_index"][:], file["point_count"][:]
        masses, intensities = file["mass_values"], file["intensity_values"]
        mz = [masses[start : start + count] for start, count in zip(starts, counts)]
        intensity = [intensities[start : start + count] for start, count in zip(starts, counts)]
        return np.concatenate(mz), np.concatenate(intensity), np.append(0, np.cumsum(counts))


def main():
    os.environ["LC_ALL"] = "C.UTF-8"
    six_million = sample("six-million", 20000, 300)
    with aiams.open(six_million) as run:
        assert len(run.points()[0]) == 6_000_000
        here = best(run.points)
    cpp = float(subprocess.run([build / "bin/bench_points", six_million], check=True, capture_output=True).stdout)
    print(f"run.points() / C++, 6 million points;{here / cpp:.2f};1.3;{1e3 * here:.0f} ms / {1e3 * cpp:.0f} ms")

    def read():
        with aiams.open(short) as run:
            return run.points()

    short = sample("many-short", 100000, 10)
    assert all(np.array_equal(a, b) for a, b in zip(read(), netcdf4_points(short)))
    here, numpy = best(read), best(lambda: netcdf4_points(short), 2)
    detail = f"{1e3 * here:.0f} ms / {1e3 * numpy:.0f} ms"
    print(f"open and points() / netCDF4 and NumPy, short scans;{here / numpy:.3f};0.05;{detail}")


main()
