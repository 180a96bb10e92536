"""Converts files with aia-convert and reads what came out with other programs: every number has to be the same.

check.py CONVERT FOLDER FILE.cdf... writes to FOLDER. mzML is read by pymzml and validated by FileInfo,
.cdf by netCDF4, CSV by the csv module; what mzML says is held against the .cdf, too. Prints what is wrong; the status says whether anything is.
"""

import csv
import hashlib
import os
import re
import subprocess
import sys

import netCDF4
import numpy
import pymzml

FILL = 9.969209968386869e36  # what netCDF has for a number that was never written


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=600)


class Scans:
    """What a file has of each scan: times, totals, masses and intensities."""

    def __init__(self, times, totals, points):
        self.times = numpy.array(times, dtype=float)
        self.totals = numpy.array(totals, dtype=float)
        self.points = points

    def difference(self, other, what):
        for name, mine, theirs in (("times", self.times, other.times), ("totals", self.totals, other.totals)):
            if not numpy.array_equal(mine, theirs, equal_nan=True):
                return f"{what}: {name} differ"
        if len(self.points) != len(other.points):
            return f"{what}: {len(self.points)} spectra and {len(other.points)}"
        for place, (mine, theirs) in enumerate(zip(self.points, other.points)):
            for name, one, two in zip(("masses", "intensities"), mine, theirs):
                if not numpy.array_equal(one, two):
                    return f"{what}: {name} of spectrum {place} differ: {one[:4]} {two[:4]}"
        return None


def known(numbers):
    numbers = numpy.array(numbers, dtype=float)
    return numpy.where((numbers == -9999) | ~numpy.isfinite(numbers) | (numbers == FILL), numpy.nan, numbers)


def read_cdf(path):
    """A clean file, which needs no judgement."""
    with netCDF4.Dataset(path) as data:
        data.set_auto_mask(False)
        first, count = data["scan_index"][:], data["point_count"][:]
        points = []
        if "mass_values" in data.variables:
            masses, intensities = data["mass_values"][:], data["intensity_values"][:]
            points = [(masses[a:a + n], intensities[a:a + n]) for a, n in zip(first, count)]
        for name in ("instrument_name", "total_intensity", "scan_acquisition_time", "actual_scan_number"):
            assert name in data.variables, name
        return Scans(known(data["scan_acquisition_time"][:]), known(data["total_intensity"][:]), points)


def read_mzml(path):
    times, totals, points, trace, names = [], [], [], None, []
    reader = pymzml.run.Reader(path)
    for spectrum in reader:
        time = spectrum.get("MS:1000016")
        times.append(numpy.nan if time is None else float(time))
        total = spectrum.get("MS:1000285")
        totals.append(numpy.nan if total is None else float(total))
        points.append((spectrum.mz, spectrum.i) if spectrum.mz is not None and len(spectrum.mz) else ([], []))
        names.append(spectrum.ID)
    trace = [(float(t), float(i)) for t, i in reader["TIC"].peaks()]
    if len(set(names)) != len(names):
        raise AssertionError("names of spectra are repeated")
    if points:
        pairs = [(t, i) for t, i in zip(times, totals) if not numpy.isnan(t) and not numpy.isnan(i)]
        if len(pairs) != len(trace) or not numpy.array_equal([i for _, i in pairs], [i for _, i in trace]):
            raise AssertionError("the trace isn't that of the spectra")
        return Scans(times, totals, points)
    return Scans([t for t, _ in trace], [i for _, i in trace], [])


def wrong_terms(mzml, source, clean):
    """Yields what mzML says otherwise than the clean .cdf."""
    with open(mzml, encoding="utf-8") as file:
        text = file.read()
    with netCDF4.Dataset(clean) as data:
        said = {name: data.getncattr(name) for name in data.ncattrs()}
        numbers = data["actual_scan_number"][:].tolist()
        has_masses = "mass_values" in data.variables
        has_groups = "group_number" in data.dimensions
    scan = said.get("test_scan_function")
    is_sim = has_masses and (scan == "Selected Ion Detection" or (scan is None and has_groups))
    is_profile = said["experiment_type"] == "Continuum Mass Spectrum"
    sign = said.get("test_ionization_polarity")
    mode = said.get("test_ionization_mode")
    has_owner = "dataset_owner" in said or "dataset_origin" in said
    has_contact = "operator_name" in said and has_owner
    wanted = {
        "MS:1002441": True, "MS:1000776": has_masses, "MS:1000824": not has_masses,
        "MS:1000582": is_sim, "MS:1000579": has_masses and not is_sim, "MS:1000795": has_masses,
        "MS:1000128": has_masses and is_profile, "MS:1000127": has_masses and not is_profile,
        "MS:1000130": has_masses and sign == "Positive Polarity",
        "MS:1000129": has_masses and sign == "Negative Polarity",
        "MS:1000389": mode == "Electron Impact", "MS:1000071": mode == "Chemical Ionization",
        "MS:1000031": True, "MS:1000443": True, "MS:1000026": "test_detector_type" not in said,
        "MS:1000586": has_contact, "MS:1000590": has_contact,
        "MS:1000799": True, "MS:1000544": True, "MS:1000235": True, "UO:0000010": True, "UO:0000031": False,
    }
    for accession, is_there in wanted.items():
        if (f'ccession="{accession}"' in text) != is_there:
            yield f"mzML {'lacks' if is_there else 'has'} {accession}"
    with open(source, "rb") as file:
        if hashlib.sha1(file.read()).hexdigest() not in text:
            yield "mzML has another checksum"
    upto, _, own = text.encode().rpartition(b"<fileChecksum>")
    if not own.startswith(hashlib.sha1(upto + b"<fileChecksum>").hexdigest().encode()):
        yield "mzML has another checksum of itself"
    zone = re.search("[+-][0-9]{4}$", said.get("experiment_date_time_stamp", "").strip())
    if ("startTimeStamp" in text) != bool(zone):
        yield "mzML has a start without a zone, or none with one"
    names = re.findall('<spectrum index="[0-9]*" id="scan=([0-9]+)"', text)
    is_unique = len(set(numbers)) == len(numbers) and min(numbers) >= 0
    if has_masses and (len(names) != len(numbers) or (is_unique and sorted(map(int, names)) != sorted(numbers))):
        yield f"mzML calls its spectra {names[:5]}"


ABOUT_THE_FILE = "^(netcdf_file_date.*|raw_data_.*_format|global_.*|starting_scan_number|experiment_type)$"


def plain(value):
    return re.sub("[\\x00-\\x20]", " ", str(value)).strip()  # XML has no control characters


def lost_attributes(clean, back):
    """Yields the attributes of the clean .cdf that mzML and back have otherwise."""
    with netCDF4.Dataset(clean) as before, netCDF4.Dataset(back) as after:
        for name in before.ncattrs():
            is_same = name in after.ncattrs() and plain(before.getncattr(name)) == plain(after.getncattr(name))
            if not is_same and not re.match(ABOUT_THE_FILE, name):
                yield f"mzML and back lose {name}"
        kinds = [data.getncattr("experiment_type") == "Continuum Mass Spectrum" for data in (before, after)]
        if "mass_values" in before.variables and kinds[0] != kinds[1]:
            yield "mzML and back change experiment_type"


def read_points(path):
    with open(path, newline="") as file:
        rows = list(csv.reader(file))
    assert rows[0][0] == "scan" and "mass (m/z)" in rows[0], rows[0]
    return numpy.array([[float(cell or "nan") for cell in row] for row in rows[1:]]).reshape(-1, 4)


def check(convert, folder, source):
    name = os.path.splitext(os.path.basename(source))[0]
    mzml, clean, back, points = (os.path.join(folder, name + end) for end in
                                 (".mzML", ".cdf", ".back.cdf", ".csv"))
    results = {path: run(convert, "--force", source, "-o", path) for path in (mzml, clean)}
    for path, result in results.items():
        if result.returncode not in (0, 1):
            yield f"{path}: status {result.returncode}: {result.stderr}"
        if not os.path.exists(path) and (result.returncode != 1 or source not in result.stderr):
            yield f"{path}: refused without a word: {result.stderr}"
    if os.path.exists(mzml) != os.path.exists(clean):
        yield "one of mzML and .cdf was refused"
    if not os.path.exists(mzml):
        return
    said = run("FileInfo", "-v", "-in", mzml)
    if said.stdout.count("Success") != 2 or re.search("Warning|Error", said.stdout + said.stderr):
        yield "mzML isn't valid: " + "".join(re.findall(".*(?:Warning|Error).*\n", said.stdout + said.stderr)[:3])
    of_mzml = read_mzml(mzml)
    result = run(convert, "--force", mzml, "-o", back)
    if result.returncode != 0 and of_mzml.times.size:
        yield f"mzML doesn't come back: {result.stderr}"
        return
    yield from wrong_terms(mzml, source, clean)
    of_clean = read_cdf(clean)
    if not numpy.array_equal(of_clean.times, of_mzml.times, equal_nan=True) \
            and numpy.array_equal(numpy.sort(of_clean.times), of_mzml.times):
        order = numpy.argsort(of_clean.times, kind="stable")  # mzML has scans in the order of time
        of_clean = Scans(of_clean.times[order], of_clean.totals[order], [of_clean.points[i] for i in order])
    if of_mzml.points or of_mzml.times.size == of_clean.times.size:
        yield of_mzml.difference(of_clean, "mzML and the clean .cdf")
    if result.returncode == 0:
        yield of_mzml.difference(read_cdf(back), "mzML and back")
        yield from lost_attributes(clean, back)
    again = run(convert, "--quiet", clean, "-o", os.path.join(folder, name + ".again.cdf"), "--force")
    if again.returncode != 0:
        yield f"the clean .cdf isn't clean: {again.stderr}"
    if of_mzml.points:
        result = run(convert, "--force", "--csv", "points", source, "-o", points)
        rows = read_points(points)
        if rows.shape[0] != sum(len(masses) for masses, _ in of_mzml.points):
            yield "CSV has other points"
        elif not numpy.array_equal(numpy.sort(rows[:, 3]), numpy.sort(numpy.concatenate(
                [numpy.asarray(i, dtype=float) for _, i in of_mzml.points]))):
            yield "CSV has other intensities"


def main():
    convert, folder = sys.argv[1:3]
    os.makedirs(folder, exist_ok=True)
    wrong = 0
    for source in sys.argv[3:]:
        try:
            for fault in check(convert, folder, source):
                if fault:
                    wrong += 1
                    print(f"{source}: {fault}")
        except Exception as fault:  # whatever a reader says of a file
            wrong += 1
            print(f"{source}: {type(fault).__name__}: {fault}")
    print(f"{len(sys.argv) - 3} files, {wrong} faults")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
