"""A tour of aiams: what docs/python.md shows. python3 tour.py AIA-SAMPLE FOLDER [FOLDER-FOR-PLOTS]

Makes two samples in the folder and prints what a program gets of them.
"""

import pathlib
import subprocess
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import aiams

program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
plots = pathlib.Path(sys.argv[3] if len(sys.argv) > 3 else folder)
folder.mkdir(parents=True, exist_ok=True)
for kind, scans in (("gcms", 2000), ("gcxgc", 40000)):
    if not (folder / f"{kind}.cdf").exists():
        subprocess.run([program, "--scans", str(scans), kind, folder / f"{kind}.cdf"], check=True)

print("A run")
with aiams.open(folder / "gcms.cdf") as run:
    mz, intensity, offsets = run.points()
    print(f"  {len(run)} scans from {run.times[0]:g} to {run.times[-1]:g} s, {len(mz)} points, {mz.dtype}")
    print(f"  {run.attributes['experiment_title']}, {run.attributes['test_ionization_mode']}")
    print(f"  {', '.join(part.model for part in run.instruments)}; doubts: {len(run.doubts)}")

    highest = run[int(np.argmax(run.tic))]
    base = highest.mz[np.argmax(highest.intensity)]
    print(f"  The highest scan is {highest.index}, at {highest.time:g} s; its base peak has m/z {base:.2f}")

    trace = run.eic([(base - 0.5, base + 0.5)])[0]
    mean_mz, mean_intensity = run.average(highest.time - 2, highest.time + 2, width=0.2)
    print(f"  The mean of the scans around it has {len(mean_mz)} peaks")

    figure, (above, below) = plt.subplots(2, figsize=(8, 5), layout="constrained")
    above.plot(run.times / 60, run.tic, label="total")
    above.plot(run.times / 60, trace, label=f"m/z {base:.2f}")
    above.set(xlabel="minutes", ylabel="intensity")
    above.legend()
    below.vlines(mean_mz, 0, mean_intensity)
    below.set(xlabel="m/z", ylabel="mean intensity")
    figure.savefig(plots / "tour-run.png", dpi=80, metadata={"Software": None})

print("As a table")
with aiams.open(folder / "gcms.cdf") as run:
    table = run.to_dataframe()
    print("  " + table.nlargest(3, "intensity").to_string(index=False).replace("\n", "\n  "))

print("Written again, every tenth scan")
with aiams.open(folder / "gcms.cdf") as run:
    aiams.write(folder / "thin.cdf", run[::10], overwrite=True, instruments=run.instruments, **run.attributes)
print(f"  {len(aiams.open(folder / 'thin.cdf'))} scans")

print("A GCxGC run")
with aiams.open(folder / "gcxgc.cdf") as run:
    modulation = run.modulation()
    print(f"  Its modulation takes {modulation.seconds:.2f} s", "for sure" if modulation.is_confident else "perhaps")
    image = run.map(round(modulation.seconds, 2))
    print(f"  Its map has {image.shape[0]} modulations of {image.shape[1]} scans")
    figure, axes = plt.subplots(figsize=(8, 4), layout="constrained")
    extent = (0, image.shape[0] * modulation.seconds / 60, 0, modulation.seconds)
    axes.imshow(np.sqrt(np.nan_to_num(image.T)), origin="lower", aspect="auto", extent=extent, cmap="magma")
    axes.set(xlabel="minutes", ylabel="seconds")
    figure.savefig(plots / "tour-map.png", dpi=80, metadata={"Software": None})

print("A file that is none")
try:
    aiams.open(folder / "nothing.cdf")
except aiams.ReadError as failure:
    print(f"  {str(failure).replace(str(folder) + '/', '')}")
