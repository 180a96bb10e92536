"""The attributes of an AIA MS file: which the template has, and their values as the import takes them.

netCDF4 hides an attribute's type and the NULs in a text, and both matter; so attributes are asked for
from the C library that netCDF4 has loaded, where its ids hold.
"""

import ctypes
import ctypes.util
import re

import numpy as np

MISSING = -9999.0
NC_BYTE, NC_CHAR, NC_SHORT, NC_INT, NC_FLOAT, NC_DOUBLE = range(1, 7)

GLOBAL_ATTRIBUTES = """dataset_completeness ms_template_revision netcdf_revision languages
    administrative_comments dataset_origin dataset_owner netcdf_file_date_time_stamp experiment_title
    experiment_date_time_stamp experiment_x_ref_0 experiment_x_ref_1 experiment_x_ref_2
    experiment_x_ref_3 operator_name pre_experiment_program_name post_experiment_program_name
    source_file_reference source_file_format source_file_date_time_stamp external_file_ref_0
    external_file_ref_1 external_file_ref_2 external_file_ref_3 calibration_history_0
    calibration_history_1 calibration_history_2 calibration_history_3 experiment_type
    number_of_times_processed number_of_times_calibrated
    sample_internal_id sample_external_id sample_receipt_date_time_stamp sample_owner
    sample_procedure_name sample_matrix sample_storage sample_disposal sample_history
    sample_prep_procedure sample_prep_comments sample_manual_handling sample_comments sample_state
    test_separation_type test_ms_inlet test_ms_inlet_temperature test_ionization_mode
    test_ionization_polarity test_electron_energy test_laser_wavelength test_reagent_gas
    test_reagent_gas_pressure test_fab_type test_fab_matrix test_source_temperature
    test_filament_current test_emission_current test_accelerating_potential test_detector_type
    test_detector_potential test_detector_entrance_potential test_resolution_type
    test_resolution_method test_scan_function test_scan_direction test_scan_law test_scan_time
    mass_calibration_file test_external_reference_file test_internal_reference_file test_comments
    raw_data_mass_format raw_data_time_format raw_data_intensity_format starting_scan_number
    global_mass_min global_mass_max global_time_min global_time_max global_intensity_min
    global_intensity_max calibrated_mass_min calibrated_mass_max actual_run_time_length
    actual_delay_time raw_data_uniform_sampling_flag raw_data_comments""".split()

VARIABLE_ATTRIBUTES = [
    (holder, name)
    for holder, names in (
        ("mass_values", "units scale_factor long_name"),
        ("time_values", "units scale_factor long_name"),
        ("intensity_values", "units add_offset scale_factor long_name"),
        ("total_intensity", "units"),
    )
    for name in names.split()
]

_netcdf = ctypes.CDLL(ctypes.util.find_library("netcdf"))


class Refused(Exception):
    """The file can't be imported."""


def read(ncid, varid, name):
    """Type and value (bytes, or an array of numbers) of an attribute; None if there is none."""
    kind, length = ctypes.c_int(), ctypes.c_size_t()
    for spelling in (name.encode(), name.replace("_", "-").encode()):
        if _netcdf.nc_inq_att(ncid, varid, spelling, ctypes.byref(kind), ctypes.byref(length)) == 0:
            break
    else:
        return None
    layout = {NC_BYTE: "i1", NC_CHAR: "S1", NC_SHORT: "i2", NC_INT: "i4", NC_FLOAT: "f4", NC_DOUBLE: "f8"}
    if kind.value not in layout:
        raise Refused(f"attribute {name} is of a type that the template doesn't have")
    value = np.zeros(length.value, layout[kind.value])
    if _netcdf.nc_get_att(ncid, varid, spelling, value.ctypes.data_as(ctypes.c_void_p)) != 0:
        raise Refused(f"attribute {name} can't be read")
    if kind.value == NC_CHAR:
        return NC_CHAR, value.tobytes().split(b"\0")[0]
    return kind.value, value


def decode_utf8(data):
    """The characters of UTF-8 bytes; each byte that isn't any becomes a replacement character."""
    text = data.decode("utf-8", "surrogateescape").removeprefix("\ufeff")
    return re.sub("[\udc80-\udcff]", "\ufffd", text)


def shortest(value):
    """A number in the shortest text that gives it back, with an exponent where that is shorter."""
    if value != value or value in (np.inf, -np.inf):
        return str(value)
    scientific = np.format_float_scientific(value, trim="-")
    if value == 0:
        return "0"
    sign, digits, exponent = re.fullmatch(r"(-?)(\d+(?:\.\d+)?)e([+-]\d+)", scientific).groups()
    digits, point = digits.replace(".", ""), int(exponent) + 1
    cutoff = 6
    if point > 0:
        cutoff = len(digits) + 4 + (2 if point > 100 else 1) + (len(digits) > point)
    if point <= -4 or point > cutoff:
        mantissa = digits[0] + ("." + digits[1:] if len(digits) > 1 else "")
        return f"{sign}{mantissa}e{point - 1:+03d}"
    if point <= 0:
        return f"{sign}0.{'0' * -point}{digits}"
    digits = digits.ljust(point, "0")
    return sign + digits[:point] + ("." + digits[point:] if digits[point:] else "")


def as_text(found):
    if found is None:
        return None
    kind, value = found
    if kind == NC_CHAR:
        text = decode_utf8(value)
    elif len(value) == 0:
        return None
    else:
        text = shortest(float(value[0])) if kind in (NC_FLOAT, NC_DOUBLE) else str(value[0])
    # Texts are kept in Latin-1; a character outside it becomes one question mark for each UTF-16 unit.
    return "".join(c if ord(c) < 256 else "?" * (1 + (ord(c) > 0xFFFF)) for c in text)


def as_double(found, default):
    number = MISSING
    if found is not None:
        kind, value = found
        if kind == NC_CHAR:
            text = decode_utf8(value).strip()
            if re.fullmatch(r"[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?", text, re.ASCII | re.IGNORECASE):
                number = float(text)
                if abs(number) == np.inf or number == 0.0 and re.match(r"[^e]*[1-9]", text.lower()):
                    number = MISSING  # beyond what a double holds
            elif re.fullmatch(r"[+-]?inf|nan", text, re.IGNORECASE):
                number = float(text)
        elif len(value) > 0:
            number = float(value[0])
    return default if number == MISSING else number


def counts_in_seconds(found):
    if found is None or found[0] != NC_CHAR:
        return True
    return found[1].lower() == b"seconds"
