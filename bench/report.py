"""Runs the benchmarks of a build folder and prints their ratios beside the bars; see bench/report."""

import json
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
REAL_RUN = os.path.join(HERE, "..", "..", "shared", "data", "gcms-centroid-6401-scans.cdf")

# run, bar
IMPORT_BARS = [
    ("long-fixed", 1.8),
    ("long-unlimited", 1.3),
    ("long-fixed-65000", 1.8),
    ("short-fixed", 1.5),
    ("short-unlimited", 1.5),
    ("shorts-longs", None),
    ("longs-shorts", None),
    ("doubles", None),
]


def benchmark(build, program, run, repetitions=3):
    """The median of the times and of the counters, by the name before the slash."""
    output = subprocess.run(
        [os.path.join(build, "bin", program), f"--benchmark_filter={run}", "--benchmark_format=json",
         f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.2"],
        check=True, capture_output=True, text=True).stdout
    result = {}
    for entry in json.loads(output)["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry['error_message']}")
        if entry.get("aggregate_name") == "median":
            result[entry["run_name"].split("/")[0]] = entry
    return result


def seconds(command):
    started = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - started


def best_seconds(command, times=3):
    return min(seconds(command) for _ in range(times))


def row(measure, figure, bar, detail=""):
    held = "" if bar is None else "held" if figure <= bar else "NOT HELD"
    print(f"{measure:<52} {figure:8.2f} {'' if bar is None else bar:>8} {held:<9} {detail}")


def main():
    build = sys.argv[1]
    print(f"\n{'measure':<52} {'ratio':>8} {'bar':>8}")
    per_point = {}
    for run, bar in IMPORT_BARS:
        got = benchmark(build, "bench_import", f"/{run}$")
        floor, whole = got["floor"]["real_time"], got["import"]["real_time"]
        row(f"whole import / floor, {run}", whole / floor, bar, f"{whole:.0f} ms / {floor:.0f} ms")
        if run == "long-fixed":
            import_ms = whole
    files = os.path.join(build, "bench", "files")
    numpy = best_seconds([sys.executable, os.path.join(HERE, "..", "tests", "oracle", "numpy_import.py"),
                          os.path.join(files, "long-fixed.cdf")])
    start = best_seconds([sys.executable, "-c", "import numpy, netCDF4"])
    row("whole import / NumPy, long-fixed", import_ms / 1000 / (numpy - start), 0.25,
        f"{import_ms:.0f} ms / {1000 * (numpy - start):.0f} ms, Python's start taken off")

    for run in ("million", "hundred-million"):
        benchmark(build, "bench_import", f"floor/{run}$", 1)  # makes the file, which takes memory
        got = benchmark(build, "bench_import", f"import/{run}$")["import"]
        per_point[run] = got["real_time"] / got["points"]
        row(f"peak memory of the whole process [MiB], {run}", got["peak_kib"] / 1024, 64)
    row("time per point, 100 million / 1 million", per_point["hundred-million"] / per_point["million"], 1.1)

    got = benchmark(build, "bench_write", ".")
    row("ms_write_per_scan / bare nc_put_vara", got["toolkit"]["real_time"] / got["floor"]["real_time"], 1.3)
    if os.path.exists(REAL_RUN):
        whole = best_seconds([os.path.join(build, "bin", "aia-import"), REAL_RUN], 5)
        header = best_seconds(["ncdump", "-h", REAL_RUN], 5)
        row("aia-import of 6,401 scans / (2 ncdump -h + 0.1 s)", whole / (2 * header + 0.1), 1.0,
            f"{whole:.3f} s / {2 * header + 0.1:.3f} s")


if __name__ == "__main__":
    main()
