#!/usr/bin/python3
"""Import one AIA MS file with NumPy and netCDF4 alone, and write what aia-import --json writes.

It is there for two ends: a second opinion on the import's results, which have to agree to the last
bit, and the yardstick of its speed. So all points of the run are worked on at once, and memory grows
with the run.
"""

import argparse
import calendar
import json
import os
import re
import sys
import time

import netCDF4
import numpy as np

import aia_attributes as attributes
from aia_attributes import MISSING, Refused

TABLE_LIMIT = 65535  # masses in a table; positions are 16 bits wide
SCAN_CAPACITY = 1 << 24  # points in a scan
INT_MIN, INT_MAX = -(2**31), 2**31 - 1

PER_SCAN = """a_d_sampling_rate a_d_coaddition_factor scan_acquisition_time scan_duration inter_scan_time
    resolution actual_scan_number total_intensity mass_range_min mass_range_max time_range_min
    time_range_max""".split()

# --- Variables ---------------------------------------------------------------------------------------


def find(objects, name):
    """A variable or dimension under its name or its dashed spelling."""
    return objects[name] if name in objects else objects.get(name.replace("_", "-"))


def is_number(variable):
    kind = variable.datatype  # not dtype, which passes an enumeration off as its whole numbers
    return isinstance(kind, np.dtype) and kind.kind in "iuf"


def read_whole(variable):
    return np.asarray(variable[...]) if variable.size else np.empty(variable.shape, variable.dtype)


def fit(values, low, high):
    """The values cut to whole numbers, and which of them lie between the two ends."""
    fits = (values >= low) & (values <= high)
    return np.where(fits, values, low).astype(np.int64), fits


def read_counter(dataset, name, count):
    """One whole number for each scan, and which scans have a readable one."""
    numbers, readable = np.zeros(count, np.int64), np.zeros(count, bool)
    variable = dataset.variables.get(name)
    if variable is not None and variable.ndim == 1 and is_number(variable):
        stored = read_whole(variable)[:count]
        numbers[: len(stored)], readable[: len(stored)] = fit(stored, INT_MIN, INT_MAX)
    return numbers, readable


class Axis:
    """A value variable: its numbers, and which stretches of it can be read."""

    def __init__(self, variable, fallback):
        self.readable = variable is not None and variable.ndim == 1 and is_number(variable)
        self.length = len(variable) if self.readable else 0
        self.is_native = self.readable and variable.dtype.str[1:] in ("i2", "i4", "f4", "f8")
        self.variable, self.fallback = variable, fallback
        self.misfits = None
        self.numbers = np.empty(0)

    def load(self):
        """Reads all; types that the template lacks are converted to the fallback where they fit."""
        if not self.readable:
            return
        self.numbers = read_whole(self.variable)
        if not self.is_native:
            limits = np.iinfo(self.fallback)
            self.numbers, fits = fit(self.numbers, limits.min, limits.max)
            self.misfits = np.concatenate(([0], np.cumsum(~fits)))

    def holds(self, start, count):
        """Whether the stretches lie in the variable and all their numbers could be converted."""
        held = (start >= 0) & (count >= 0) & (start + count <= self.length) & self.readable
        if self.misfits is not None:
            first, last = np.where(held, start, 0), np.where(held, start + count, 0)
            held &= self.misfits[first] == self.misfits[last]
        return held

    def is_whole(self, length):
        return self.length == length and bool(self.holds(0, length))


# --- The run -----------------------------------------------------------------------------------------


def date_of(stamp):
    """Seconds since 1970 of a stamp "YYYYMMDDhhmmss+zz", counted from the local clock at the epoch."""

    def number(first, last):
        text = stamp[first:last].strip(" \t\n\v\f\r\x85\xa0")
        return int(text) if re.fullmatch(r"[+-]?\d+", text, re.ASCII) else 0

    year, month, day = number(0, 4), number(4, 6), number(6, 8)
    seconds = ((number(14, 17) + number(8, 10)) * 60 - 60 + number(10, 12)) * 60 + number(12, 14)
    epoch = time.localtime(0)
    months = epoch.tm_year * 12 + epoch.tm_mon - 1 + (year - 1970) * 12 + month - 1
    year, month = months // 12, months % 12 + 1
    if year < 1901:
        return 2**32 - 1
    last_day = calendar.monthrange(year, month)[1]
    clock = (year, month, min(epoch.tm_mday, last_day) + day - 1) + epoch[3:6]
    result = int(time.mktime(clock + (0, 0, -1))) + seconds
    return result if 0 <= result < 2**32 - 1 else 2**32 - 1


def round_half_away(values):
    whole = np.trunc(values)
    whole += np.copysign(np.abs(values - whole) >= 0.5, values)
    whole[np.isnan(values)] = 0
    infinite = np.isinf(values)
    whole[infinite] = values[infinite]
    return np.clip(whole, INT_MIN, INT_MAX).astype(np.int32)


def take_census(masses):
    """The distinct masses as sorted whole numbers, and the decimals that these have.

    Before each mass the census looks whether it is full, and gives up one decimal if so. In between the
    order of the masses makes no difference, so they are taken together.
    """
    keys, decimals, taken = np.empty(0, np.int32), 2, 0
    while taken < len(masses):
        if len(keys) >= TABLE_LIMIT:
            decimals -= 1
            if decimals == -1:
                break
            shortened = np.trunc(keys / 10).astype(np.int32)  # toward zero
            own = round_half_away(masses[taken : taken + 1] * 10.0**decimals)
            keys = np.union1d(shortened, own)
            taken += 1
            continue
        rest = round_half_away(masses[taken:] * 10.0**decimals)
        together = np.union1d(keys, rest)
        if len(together) < TABLE_LIMIT:
            return together, decimals
        found, first_places = np.unique(rest, return_index=True)
        new_places = np.sort(first_places[~np.isin(found, keys, assume_unique=True)])
        filling = new_places[TABLE_LIMIT - len(keys) - 1]
        keys = np.union1d(keys, rest[: filling + 1])
        taken += filling + 1
    return keys, decimals


def sequential_sums(values, start, count):
    """The sum of each stretch, added up from its first value to its last."""
    sums = np.zeros(len(start))
    if len(start) == 0:
        return sums
    if count.max() > len(start):
        for scan in np.flatnonzero(count):
            stretch = values[start[scan] : start[scan] + count[scan]]
            sums[scan] = np.add.accumulate(np.concatenate(([0.0], stretch)))[-1]
        return sums
    # Many short scans: all their first values, then all their second ones.
    order = np.argsort(-count, kind="stable")
    lengths, places = -count[order], start[order]
    for step in range(-lengths[0]):
        active = np.searchsorted(lengths, -step)
        sums[order[:active]] += values[places[:active] + step]
    return sums


class Run:
    def __init__(self, path, modulation):
        self.path = path
        self.modulation = float(np.float32(modulation))
        if not re.search(r"\.cdf$", path, re.IGNORECASE):
            raise Refused("not a .cdf file")
        if not os.path.isfile(path):
            raise Refused("not a file")
        try:
            self.dataset = netCDF4.Dataset(path)
        except OSError as error:
            raise Refused(str(error)) from error
        self.dataset.set_auto_maskandscale(False)
        self.dataset.set_auto_chartostring(False)
        self.read_global()
        self.read_times()
        self.make_table()
        self.read_scans()

    def holder_attribute(self, holder, name):
        fixed = self.dataset.variables.get(holder)
        variable = find(self.dataset.variables, holder) if holder in PER_SCAN else fixed
        # The attributes of an absent variable are looked for among those of the file.
        return attributes.read(self.dataset._grpid, -1 if variable is None else variable._varid, name)

    def read_global(self):
        ncid = self.dataset._grpid
        texts = {name: attributes.read(ncid, -1, name) for name in attributes.GLOBAL_ATTRIBUTES}
        held = {key: self.holder_attribute(*key) for key in attributes.VARIABLE_ATTRIBUTES}
        error_log = find(self.dataset.variables, "error_log")
        if error_log is not None and error_log.ndim != 2:
            raise Refused("error_log has another rank")
        if "scan_number" not in self.dataset.dimensions:
            raise Refused("no dimension scan_number")
        self.scan_count = len(self.dataset.dimensions["scan_number"])
        self.stamp = attributes.as_text(texts["experiment_date_time_stamp"])
        self.device = attributes.as_text(texts["source_file_format"])
        self.title = attributes.as_text(texts["experiment_title"])
        self.mass_scale = attributes.as_double(held["mass_values", "scale_factor"], 1.0)
        self.intensity_scale = attributes.as_double(held["intensity_values", "scale_factor"], 1.0)
        self.intensity_offset = attributes.as_double(held["intensity_values", "add_offset"], 0.0)
        self.time_divisor = 60.0 if attributes.counts_in_seconds(held["time_values", "units"]) else 1.0

    def read_times(self):
        """Stored times, which scans have readable numbers, and what the first and the last say."""
        count = self.scan_count
        self.readable = np.ones(count, bool)
        for name in PER_SCAN:
            variable = find(self.dataset.variables, name)
            if variable is None:
                continue
            if variable.ndim != 1:
                self.readable[:] = False
            else:
                self.readable[len(variable) :] = False
        self.stored_times = np.full(count, MISSING)
        variable = find(self.dataset.variables, "scan_acquisition_time")
        if variable is not None and variable.ndim == 1 and is_number(variable):
            stored = read_whole(variable)[:count]
            self.stored_times[: len(stored)] = stored

        def end_time(scan, default):
            if count == 0 or not self.readable[scan] or self.stored_times[scan] == MISSING:
                return default
            return self.stored_times[scan] / self.time_divisor

        self.delay = end_time(0, 0.0)
        self.run_length = end_time(count - 1, float(count - 1)) - self.delay
        self.interval = float(np.divide(self.run_length, np.float64(count - 1)))

    def make_table(self):
        dimension = find(self.dataset.dimensions, "point_number")
        points = 0 if dimension is None else len(dimension)
        self.mass_axis = Axis(self.dataset.variables.get("mass_values"), np.int16)
        keys, decimals = np.empty(0, np.int32), 2
        if points > 0:
            self.mass_axis.load()
            if self.mass_axis.is_whole(points):
                self.masses = self.mass_axis.numbers.astype(np.float64) * self.mass_scale
                keys, decimals = take_census(self.masses)
        self.mass_factor = 10.0**decimals
        self.table = np.empty(0, np.float32)
        if len(keys) > 1:
            self.table = (keys[:TABLE_LIMIT] / self.mass_factor).astype(np.float32)

    def read_scans(self):
        scans = np.arange(self.scan_count)
        self.start = np.zeros(self.scan_count, np.int64)
        self.count = np.zeros(self.scan_count, np.int64)
        self.positions = np.empty(0, np.uint16)
        self.abundances = np.empty(0, np.float32)
        if len(self.table) == 0:
            self.read_total_ion(scans)
        else:
            self.read_spectra(scans)

    def whole_trace(self, name):
        variable = find(self.dataset.variables, name)
        if variable is None or not is_number(variable):
            return None
        if self.scan_count < 1 or variable.size != self.scan_count:
            return None
        return read_whole(variable).reshape(-1).astype(np.float64)

    def read_total_ion(self, scans):
        self.bits, self.coefficient, self.detector = 32, None, None
        self.times = scans * self.interval + self.delay
        self.totals = np.zeros(self.scan_count)
        intensities = self.whole_trace("total_intensity")
        times = self.whole_trace("scan_acquisition_time")
        if intensities is None or times is None:
            return
        self.coefficient = 0
        self.detector = 1792 if self.modulation > 0.0 else 256
        self.times, self.totals = times / self.time_divisor, intensities

    def read_spectra(self, scans):
        self.bits, self.coefficient = 28, None
        self.detector = 2048 if self.modulation > 0.0 else 512
        start, start_readable = read_counter(self.dataset, "scan_index", self.scan_count)
        count, count_readable = read_counter(self.dataset, "point_count", self.scan_count)
        flags, flags_readable = read_counter(self.dataset, "flag_count", self.scan_count)
        intensity_axis = Axis(self.dataset.variables.get("intensity_values"), np.int32)
        intensity_axis.load()
        whole = np.maximum(np.where(flags_readable, flags, 0), 0) + count
        held = self.mass_axis.holds(start, whole) & intensity_axis.holds(start, whole)
        if "time_values" in self.dataset.variables:
            time_axis = Axis(self.dataset.variables["time_values"], np.int16)
            if not time_axis.is_native:
                time_axis.load()
            held &= time_axis.holds(start, count)
        self.readable &= start_readable & count_readable & (held & (count <= SCAN_CAPACITY) | (count < 1))
        filled = self.readable & (count > 0)
        self.start, self.count = np.where(filled, start, 0), np.where(filled, count, 0)

        grid = (round_half_away(self.masses * self.mass_factor) / self.mass_factor).astype(np.float32)
        places = np.searchsorted(self.table, grid)
        np.minimum(places, len(self.table) - 1, out=places)
        known = self.table[places] == grid
        self.positions = np.where(known, places, 0).astype(np.uint16)
        intensities = intensity_axis.numbers.astype(np.float64) * self.intensity_scale
        intensities += self.intensity_offset
        shared = min(len(known), len(intensities))  # no scan goes beyond the shorter axis
        self.abundances = np.where(known[:shared], intensities[:shared], 0.0).astype(np.float32)
        self.totals = sequential_sums(intensities, self.start, self.count)

        if self.modulation > 0.0:
            times, timed = scans * self.interval, self.readable
        else:
            times = self.stored_times / self.time_divisor
            timed = self.readable & (self.stored_times != MISSING)
        self.times = np.where(timed, times, scans * self.interval + self.delay)

    # --- JSON ------------------------------------------------------------------------------------------

    def write(self, out):
        header = {
            "scanCount": self.scan_count,
            "modulation": number_text(self.modulation),
            "abundanceBits": self.bits,
            "abundanceCoefficient": self.coefficient,
            "date": int(time.time()) if self.stamp is None else date_of(self.stamp),
            "device": self.device,
            "experimentName": self.title,
            "retentionUnit": "minutes",
            "runLength": number_text(self.run_length),
            "delay": number_text(self.delay),
            "samplingInterval": number_text(self.interval),
            "detectorType": self.detector,
        }
        fields = (
            f"{json.dumps(name)}:{value if isinstance(value, RawText) else json.dumps(value)}"
            for name, value in header.items()
        )
        out.write(f'{{"file":{json.dumps(self.path)},"header":{{{",".join(fields)}}},')
        out.write(f'"massTable":[{list_text(self.table)}],"scans":[')
        for scan in range(self.scan_count):
            stretch = slice(self.start[scan], self.start[scan] + self.count[scan])
            out.write("," if scan else "")
            out.write(f'{{"time":{number_text(self.times[scan])},')
            out.write(f'"total":{number_text(self.totals[scan])},')
            out.write(f'"positions":[{",".join(map(str, self.positions[stretch]))}],')
            out.write(f'"abundances":[{list_text(self.abundances[stretch])}]}}')
        out.write("]}\n")


class RawText(str):
    """A text that stands in the JSON as it is."""


def number_text(value):
    value = float(value)
    if value != value:
        return RawText("null")
    if value in (np.inf, -np.inf):
        return RawText("1e999" if value > 0 else "-1e999")
    return RawText(repr(value))


def list_text(values):
    return ",".join(map(number_text, values.tolist()))


def modulation_length(text):
    length = float(text)
    if not 0.0 <= length <= 100.0:
        raise argparse.ArgumentTypeError("the modulation length lies between 0 and 100")
    return length


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    target = parser.add_mutually_exclusive_group()
    target.add_argument("--json", metavar="FILE", default="-", help="where to write (-: standard output)")
    target.add_argument("--no-json", action="store_true", help="do the work, write nothing")
    parser.add_argument(
        "--gcxgc", metavar="LENGTH", type=modulation_length, default=0.0, help="modulation length"
    )
    parser.add_argument("file")
    options = parser.parse_args()
    np.seterr(all="ignore")
    try:
        run = Run(options.file, options.gcxgc)
    except Refused as refusal:
        print(f"{options.file}: {refusal}", file=sys.stderr)
        return 1
    if options.no_json:
        return 0
    if options.json == "-":
        run.write(sys.stdout)
    else:
        with open(options.json, "w", encoding="utf-8") as out:
            run.write(out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
