"""Imports an AIA MS file with NumPy and netCDF4 alone; python3 numpy_import.py FILE.

It is there for two ends: a second opinion on the import's results, which have to agree to the last bit,
and the yardstick of its speed. So all points of the run are worked on at once, and memory grows with the
run. Dates come out as on a machine in UTC.
"""

import calendar
import ctypes
import ctypes.util
import re
import sys

import netCDF4
import numpy as np

MISSING = -9999.0
INT_MIN, INT_MAX = -(2**31), 2**31 - 1
NO_NUMBER = -(2**40)  # beyond all that a file counts with
PER_SCAN = """a_d_sampling_rate a_d_coaddition_factor scan_acquisition_time scan_duration inter_scan_time
    resolution actual_scan_number total_intensity mass_range_min mass_range_max time_range_min
    time_range_max""".split()

netcdf = ctypes.CDLL(ctypes.util.find_library("netcdf"))  # the one that netCDF4 has loaded


class Refused(Exception):
    """The file can't be imported."""


def find(objects, name):
    """A variable or dimension under its name or its dashed spelling."""
    return objects[name] if name in objects else objects.get(name.replace("_", "-"))


# --- Attributes --------------------------------------------------------------------------------------


def attribute(ncid, varid, name):
    """An attribute's text as bytes, or its first number; None if there is none.

    netCDF4 hides the type of an attribute and the NULs in a text, so the C library is asked.
    """
    kind, length = ctypes.c_int(), ctypes.c_size_t()
    for spelling in (name.encode(), name.replace("_", "-").encode()):
        if netcdf.nc_inq_att(ncid, varid, spelling, ctypes.byref(kind), ctypes.byref(length)) == 0:
            break
    else:
        return None
    if kind.value > 6:
        raise Refused
    value = np.zeros(length.value, ("i1", "S1", "i2", "i4", "f4", "f8")[kind.value - 1])
    netcdf.nc_get_att(ncid, varid, spelling, value.ctypes.data_as(ctypes.c_void_p))
    if value.dtype == "S1":
        return value.tobytes().split(b"\0")[0]
    return value[0] if len(value) else None


def as_text(value):
    """Texts are kept in Latin-1, with question marks for other characters."""
    if value is None:
        return None
    if isinstance(value, bytes):
        return value.decode("utf-8-sig", "replace").encode("latin-1", "replace").decode("latin-1")
    return np.format_float_positional(float(value), trim="-")


def as_number(value, default):
    try:
        number = MISSING if value is None else float(value)
    except ValueError:
        return default
    return default if number == MISSING else number


def date_of(stamp):
    """Seconds since 1970 of "YYYYMMDDhhmmss+zz": the zone is added, and an hour taken off."""

    def number(first, last):
        text = stamp[first:last].strip()
        return int(text) if re.fullmatch(r"[+-]?\d+", text, re.ASCII) else 0

    months = number(0, 4) * 12 + number(4, 6) - 1
    if months < 12:
        return 2**32 - 1
    hour = number(8, 10) + number(14, 17) - 1
    clock = (hour, number(10, 12), number(12, 14))
    seconds = calendar.timegm((months // 12, months % 12 + 1, number(6, 8), *clock))
    return seconds if 0 <= seconds < 2**32 else 2**32 - 1


# --- Variables ---------------------------------------------------------------------------------------


def numbers_of(variable, any_rank=False):
    """The numbers of a variable, of one dimension unless any rank will do; none of one that has none."""
    kind = getattr(variable, "datatype", None)  # not dtype, which passes an enumeration off as its numbers
    if not isinstance(kind, np.dtype) or kind.kind not in "iuf" or not (any_rank or variable.ndim == 1):
        return np.empty(0)
    return np.asarray(variable[...], np.float64).reshape(-1)


def scan_counts(dataset, name, count):
    """A whole number for each scan, NO_NUMBER where there is none."""
    stored = numbers_of(dataset.variables.get(name))[:count]
    numbers = np.full(count, NO_NUMBER)
    numbers[: len(stored)] = np.where((stored >= INT_MIN) & (stored <= INT_MAX), stored, NO_NUMBER)
    return numbers


class Axis:
    """Masses, times or intensities of all scans. Of a type that the template lacks, what the fallback holds."""

    def __init__(self, dataset, name, fallback):
        variable = dataset.variables.get(name)
        self.numbers = numbers_of(variable)
        self.misfits = np.zeros(len(self.numbers) + 1, np.int64)  # before each place
        if len(self.numbers) > 0 and variable.dtype.str[1:] not in ("i2", "i4", "f4", "f8"):
            limits = np.iinfo(fallback)
            np.cumsum((self.numbers < limits.min) | (self.numbers > limits.max), out=self.misfits[1:])

    def holds(self, start, count):
        inside = (start >= 0) & (count >= 0) & (start + count <= len(self.numbers))
        first, last = np.where(inside, start, 0), np.where(inside, start + count, 0)
        return inside & (self.misfits[first] == self.misfits[last])


# --- The run -----------------------------------------------------------------------------------------


def round_half_away(values):
    whole = np.trunc(values)
    whole += np.copysign(np.abs(values - whole) >= 0.5, values)
    return np.clip(np.nan_to_num(whole), INT_MIN, INT_MAX).astype(np.int32)


def plain(numbers):
    return [None if number != number else number for number in np.asarray(numbers, np.float64).tolist()]


class Run:
    def __init__(self, path, modulation=0.0):
        self.path, self.modulation = path, modulation
        self.dataset = netCDF4.Dataset(path)
        self.dataset.set_auto_maskandscale(False)
        self.read_global()
        self.read_times()
        self.make_table()
        if len(self.table) > 0:
            self.read_spectra()
        else:
            self.read_total_ion()

    def read_global(self):
        variables, ncid = self.dataset.variables, self.dataset._grpid

        def held(holder, name):  # what an absent variable would hold is looked for among those of the file
            return attribute(ncid, variables[holder]._varid if holder in variables else -1, name)

        for name in self.dataset.ncattrs():
            attribute(ncid, -1, name)  # one of a strange type refuses the file
        error_log = find(variables, "error_log")
        if error_log is not None and error_log.ndim != 2 or "scan_number" not in self.dataset.dimensions:
            raise Refused
        self.scan_count = len(self.dataset.dimensions["scan_number"])
        self.stamp = as_text(attribute(ncid, -1, "experiment_date_time_stamp"))
        self.device = as_text(attribute(ncid, -1, "source_file_format"))
        self.title = as_text(attribute(ncid, -1, "experiment_title"))
        self.mass_scale = as_number(held("mass_values", "scale_factor"), 1.0)
        self.intensity_scale = as_number(held("intensity_values", "scale_factor"), 1.0)
        self.intensity_offset = as_number(held("intensity_values", "add_offset"), 0.0)
        units = held("time_values", "units")
        self.time_divisor = 1.0 if isinstance(units, bytes) and units.lower() != b"seconds" else 60.0

    def read_times(self):
        count = self.scan_count
        self.readable = np.ones(count, bool)
        for name in PER_SCAN:
            variable = find(self.dataset.variables, name)
            if variable is not None:
                self.readable[len(variable) if variable.ndim == 1 else 0 :] = False
        stored = numbers_of(find(self.dataset.variables, "scan_acquisition_time"))[:count]
        self.times = np.full(count, MISSING)
        self.times[: len(stored)] = stored
        self.timed = self.readable & (self.times != MISSING)
        self.times /= self.time_divisor
        self.delay = self.times[0] if count > 0 and self.timed[0] else 0.0
        self.run_length = (self.times[-1] if count > 0 and self.timed[-1] else count - 1.0) - self.delay
        self.interval = np.divide(self.run_length, count - 1.0)
        self.by_interval = np.arange(count) * self.interval

    def make_table(self):
        points = find(self.dataset.dimensions, "point_number")
        self.mass_axis = Axis(self.dataset, "mass_values", np.int16)
        keys = round_half_away(self.mass_axis.numbers * self.mass_scale * 100.0)
        self.grid = (keys / 100.0).astype(np.float32)
        if points is None or len(points) != len(keys) or self.mass_axis.misfits[-1] > 0:
            keys = keys[:0]
        keys = np.unique(keys)
        assert len(keys) < 65535  # so the grid keeps its two decimals
        self.table = (keys / 100.0).astype(np.float32) if len(keys) > 1 else np.empty(0)

    def read_total_ion(self):
        self.start = self.count = np.zeros(self.scan_count, np.int64)
        self.positions = self.abundances = np.empty(0)
        self.bits, self.coefficient, self.detector = 32, None, None
        self.times, self.totals = self.by_interval + self.delay, np.zeros(self.scan_count)
        intensities, times = (
            numbers_of(find(self.dataset.variables, name), any_rank=True)
            for name in ("total_intensity", "scan_acquisition_time")
        )
        if len(intensities) == len(times) == self.scan_count > 0:
            self.coefficient, self.detector = 0, 1792 if self.modulation > 0.0 else 256
            self.times, self.totals = times / self.time_divisor, intensities

    def read_spectra(self):
        self.bits, self.coefficient, self.detector = 28, None, 2048 if self.modulation > 0.0 else 512
        start, count, flags = (
            scan_counts(self.dataset, name, self.scan_count)
            for name in ("scan_index", "point_count", "flag_count")
        )
        intensity_axis = Axis(self.dataset, "intensity_values", np.int32)
        whole = count + np.maximum(flags, 0)
        held = self.mass_axis.holds(start, whole) & intensity_axis.holds(start, whole)
        if "time_values" in self.dataset.variables:
            held &= Axis(self.dataset, "time_values", np.int16).holds(start, count)
        self.readable &= (start != NO_NUMBER) & (count != NO_NUMBER) & (held | (count < 1))
        filled = self.readable & (count > 0)
        self.start, self.count = np.where(filled, start, 0), np.where(filled, count, 0)

        places = np.minimum(np.searchsorted(self.table, self.grid), len(self.table) - 1)
        known = self.table[places] == self.grid
        self.positions = np.where(known, places, 0).astype(np.uint16)
        intensities = intensity_axis.numbers * self.intensity_scale + self.intensity_offset
        shared = min(len(known), len(intensities))  # no scan goes beyond the shorter axis
        self.abundances = np.where(known[:shared], intensities[:shared], 0.0).astype(np.float32)
        self.totals = np.zeros(self.scan_count)
        for scan in np.flatnonzero(filled):  # from the first to the last point; a sum of 0 has no sign
            stretch = slice(start[scan], start[scan] + count[scan])
            self.totals[scan] = np.add.accumulate(intensities[stretch])[-1] + 0.0

        times, timed = (self.by_interval, True) if self.modulation > 0.0 else (self.times, self.timed)
        self.times = np.where(self.readable & timed, times, self.by_interval + self.delay)

    def as_json(self):
        """As aia-import writes it; the date is null where there is no stamp, and not today's."""
        run_length, delay, interval = plain([self.run_length, self.delay, self.interval])
        header = {
            "scanCount": self.scan_count,
            "modulation": float(np.float32(self.modulation)),
            "abundanceBits": self.bits,
            "abundanceCoefficient": self.coefficient,
            "date": None if self.stamp is None else date_of(self.stamp),
            "device": self.device,
            "experimentName": self.title,
            "retentionUnit": "minutes",
            "runLength": run_length,
            "delay": delay,
            "samplingInterval": interval,
            "detectorType": self.detector,
        }
        scans = [
            {
                "time": time,
                "total": total,
                "positions": self.positions[start : start + count].tolist(),
                "abundances": plain(self.abundances[start : start + count]),
            }
            for time, total, start, count in zip(plain(self.times), plain(self.totals), self.start, self.count)
        ]
        return {"file": self.path, "header": header, "massTable": plain(self.table), "scans": scans}


if __name__ == "__main__":
    Run(sys.argv[1])
