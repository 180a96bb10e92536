"""Runs the benchmarks of a build folder and prints their ratios beside the bars; see bench/report."""

import json
import os
import resource
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
REAL_RUN = os.path.join(HERE, "..", "..", "shared", "data", "gcms-centroid-6401-scans.cdf")

# run, bar of the import beside the floor, bar beside the limit
IMPORT_BARS = [
    ("long-fixed", 1.0, 2.5),
    ("long-unlimited", 0.25, 3.0),
    ("long-fixed-65000", 1.0, None),
    ("short-fixed", 0.3, None),
    ("short-unlimited", 0.3, None),
    ("shorts-longs", None, None),
    ("longs-shorts", None, None),
    ("doubles", None, None),
]
# run, bar
NUMPY_BARS = [("long-fixed", 0.25), ("long-unlimited", 0.1)]


def benchmark(build, program, run, repetitions=9):
    """The median of the times and of the counters, by the name before the slash. What is compared takes turns,
    since a machine may be slower for some seconds."""
    output = subprocess.run(
        [os.path.join(build, "bin", program), f"--benchmark_filter={run}", "--benchmark_format=json",
         f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.1",
         "--benchmark_enable_random_interleaving=true"],
        check=True, capture_output=True, text=True).stdout
    result = {}
    for entry in json.loads(output)["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry['error_message']}")
        if entry.get("aggregate_name") == "median":
            result[entry["run_name"].split("/")[0]] = entry
    return result


def seconds(command):
    """Of the processor, so that others on the machine don't count."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def best_seconds(command, times=3):
    return min(seconds(command) for _ in range(times))


def convert(build, source, target, *options):
    """Seconds of the processor of a conversion, and the KiB that it took at most."""
    command = [os.path.join(build, "bin", "aia-convert"), "--force", "--quiet", *options, source, "-o", target]
    _, status, usage = os.wait4(subprocess.Popen(command).pid, 0)
    if status != 0:
        sys.exit(f"{command}: {status}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def report_conversions(build, files):
    """6 million points to mzML beside the library's own writer, and what conversions take of time and memory."""
    source, small, mzml, other, table = (os.path.join(files, name) for name in
                                         ("convert.cdf", "convert-small.cdf", "convert.mzML", "floor.mzML",
                                          "convert.csv"))
    for path, scans in ((source, 60000), (small, 6000)):
        if not os.path.exists(path):
            subprocess.run([os.path.join(build, "bin", "aia-sample"), "gcms", "--scans", str(scans), "--points", "100",
                            path], check=True)
    for packing, options in (("none", ["--no-compression"]), ("zlib", [])):
        ours = min(convert(build, source, mzml, *options)[0] for _ in range(3))
        floor = min(float(subprocess.run([os.path.join(build, "bin", "bench_mzml"), mzml, other, packing], check=True,
                                         capture_output=True, text=True).stdout) for _ in range(3))
        row(f"to mzML / library's writer from memory, {packing}", ours / floor, 1.3, f"{ours:.2f} s / {floor:.2f} s")
    points = min(convert(build, source, table, "--csv", "points")[0] for _ in range(3))
    row("CSV of 6 million points / 3 s", points / 3.0, 1.0, f"{6 / points:.1f} million points a second")
    for name, target, options in (("mzML", mzml, []), ("CSV", table, ["--csv", "points"]),
                                  (".cdf", os.path.join(files, "clean.cdf"), [])):
        large, little = (convert(build, path, target, *options)[1] for path in (source, small))
        row(f"memory for 6 million points / for 600,000, {name}", large / little, 1.3,
            f"{large / 1024:.0f} MiB / {little / 1024:.0f} MiB")


def row(measure, figure, bar, detail=""):
    held = "" if bar is None else "held" if figure <= bar else "NOT HELD"
    print(f"{measure:<52} {figure:8.2f} {'' if bar is None else bar:>8} {held:<9} {detail}")


def main():
    build = sys.argv[1]
    print(f"\n{'measure':<52} {'ratio':>8} {'bar':>8}")
    per_point = {}
    whole_ms = {}
    for run, floor_bar, limit_bar in IMPORT_BARS:
        got = {name: entry["cpu_time"] for name, entry in benchmark(build, "bench_import", f"/{run}$").items()}
        whole = whole_ms[run] = got["import"]
        row(f"whole import / floor, {run}", whole / got["floor"], floor_bar,
            f"{whole:.0f} ms / {got['floor']:.0f} ms")
        row(f"whole import / limit, {run}", whole / got["limit"], limit_bar,
            f"{whole:.0f} ms / {got['limit']:.0f} ms")
        row(f"all spectra of MsRun / whole import, {run}", got["spectra"] / whole, 1.0,
            f"{got['spectra']:.0f} ms / {whole:.0f} ms")
    files = os.path.join(build, "bench", "files")
    start = best_seconds([sys.executable, "-c", "import numpy, netCDF4"])
    for run, bar in NUMPY_BARS:
        numpy = best_seconds([sys.executable, os.path.join(HERE, "..", "tests", "oracle", "numpy_import.py"),
                              os.path.join(files, f"{run}.cdf")]) - start
        row(f"whole import / NumPy, {run}", whole_ms[run] / 1000 / numpy, bar,
            f"{whole_ms[run]:.0f} ms / {1000 * numpy:.0f} ms, Python's start taken off")

    for run in ("million", "hundred-million"):
        benchmark(build, "bench_import", f"floor/{run}$", 1)  # makes the file, which takes memory
        got = benchmark(build, "bench_import", f"import/{run}$")["import"]
        per_point[run] = got["cpu_time"] / got["points"]
        row(f"peak memory of the whole process [MiB], {run}", got["peak_kib"] / 1024, 32)
    row("time per point, 100 million / 1 million", per_point["hundred-million"] / per_point["million"], 1.1)

    got = benchmark(build, "bench_write", ".")
    row("ms_write_per_scan / bare nc_put_vara", got["toolkit"]["cpu_time"] / got["floor"]["cpu_time"], 1.3)
    for command in ([sys.executable, os.path.join(HERE, "package.py"), build],
                    [os.path.join(build, "bin", "bench_view"), os.path.join(files, "long-fixed.cdf"),
                     os.path.join(files, "hundred-million.cdf")]):
        lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
        for measure, figure, bar, detail in (line.split(";") for line in lines):
            row(measure, float(figure), float(bar), detail)
    report_conversions(build, files)
    if os.path.exists(REAL_RUN):
        whole = best_seconds([os.path.join(build, "bin", "aia-import"), REAL_RUN], 5)
        header = best_seconds(["ncdump", "-h", REAL_RUN], 5)
        row("aia-import of 6,401 scans / (2 ncdump -h + 0.1 s)", whole / (2 * header + 0.1), 1.0,
            f"{whole:.3f} s / {2 * header + 0.1:.3f} s")


if __name__ == "__main__":
    main()
