// What the template says of dimensions and variables: the tables that all walkers read.

#include "variabletables_p.h"

#include <cstddef>
#include <iterator>

namespace {

// Row order is the order of definition in a new file, of reading and of messages.
// clang-format off

constexpr MsDimensionRow dimension_rows[] = {
    {MsDim_2_byte_string,   "_2_byte_string",    2},
    {MsDim_4_byte_string,   "_4_byte_string",    4},
    {MsDim_8_byte_string,   "_8_byte_string",    8},
    {MsDim_16_byte_string,  "_16_byte_string",   16},
    {MsDim_32_byte_string,  "_32_byte_string",   32},
    {MsDim_64_byte_string,  "_64_byte_string",   64},
    {MsDim_128_byte_string, "_128_byte_string",  128},
    {MsDim_255_byte_string, "_255_byte_string",  255},
    {MsDim_range,            "range",             2},
    {MsDim_point_number,     "point_number",      NC_UNLIMITED},
    {MsDim_error_number,     "error_number",      1},
};
static_assert(std::size(dimension_rows) == 11);

constexpr MsVariableRow error_rows[] = {
    {MsVar_error_log, "error_log", NC_CHAR, offsetof(MsAdminRecord, error_log), 2, {MsDim_error_number, MsDim_64_byte_string}},
};
static_assert(std::size(error_rows) == 1);

constexpr MsVariableRow per_scan_rows[] = {
    {MsVar_a_d_sampling_rate,     "a_d_sampling_rate",     NC_DOUBLE, offsetof(MsScanRecord, a_d_sampling_rate),     1, {MsDim_scan_number, -1}},
    {MsVar_a_d_coaddition_factor, "a_d_coaddition_factor", NC_SHORT,  offsetof(MsScanRecord, a_d_coaddition_factor), 1, {MsDim_scan_number, -1}},
    {MsVar_scan_acquisition_time, "scan_acquisition_time", NC_DOUBLE, offsetof(MsScanRecord, scan_acquisition_time), 1, {MsDim_scan_number, -1}},
    {MsVar_scan_duration,         "scan_duration",         NC_DOUBLE, offsetof(MsScanRecord, scan_duration),         1, {MsDim_scan_number, -1}},
    {MsVar_inter_scan_time,       "inter_scan_time",       NC_DOUBLE, offsetof(MsScanRecord, inter_scan_time),       1, {MsDim_scan_number, -1}},
    {MsVar_resolution,            "resolution",            NC_DOUBLE, offsetof(MsScanRecord, resolution),            1, {MsDim_scan_number, -1}},
    {MsVar_actual_scan_number,    "actual_scan_number",    NC_LONG,   offsetof(MsScanRecord, actual_scan_number),    1, {MsDim_scan_number, -1}},
    {MsVar_total_intensity,       "total_intensity",       NC_DOUBLE, offsetof(MsScanRecord, total_intensity),       1, {MsDim_scan_number, -1}},
    {MsVar_mass_range_min,        "mass_range_min",        NC_DOUBLE, offsetof(MsScanRecord, mass_range_min),        1, {MsDim_scan_number, -1}},
    {MsVar_mass_range_max,        "mass_range_max",        NC_DOUBLE, offsetof(MsScanRecord, mass_range_max),        1, {MsDim_scan_number, -1}},
    {MsVar_time_range_min,        "time_range_min",        NC_DOUBLE, offsetof(MsScanRecord, time_range_min),        1, {MsDim_scan_number, -1}},
    {MsVar_time_range_max,        "time_range_max",        NC_DOUBLE, offsetof(MsScanRecord, time_range_max),        1, {MsDim_scan_number, -1}},
};
static_assert(std::size(per_scan_rows) == 12);

constexpr MsVariableRow group_rows[] = {
    {MsVar_group_mass_count,     "group_mass_count",     NC_LONG,   offsetof(MsGroupRecord, group_mass_count),     1, {MsDim_group_number, -1}},
    {MsVar_group_starting_scan,  "group_starting_scan",  NC_LONG,   offsetof(MsGroupRecord, group_starting_scan),  1, {MsDim_group_number, -1}},
    {MsVar_group_masses,         "group_masses",         NC_DOUBLE, offsetof(MsGroupRecord, group_masses),         2, {MsDim_group_number, MsDim_group_max_masses}},
    {MsVar_group_sampling_times, "group_sampling_times", NC_DOUBLE, offsetof(MsGroupRecord, group_sampling_times), 2, {MsDim_group_number, MsDim_group_max_masses}},
    {MsVar_group_delay_times,    "group_delay_times",    NC_DOUBLE, offsetof(MsGroupRecord, group_delay_times),    2, {MsDim_group_number, MsDim_group_max_masses}},
};
static_assert(std::size(group_rows) == 5);

constexpr MsVariableRow instrument_rows[] = {
    {MsVar_instrument_name,        "instrument_name",        NC_CHAR, offsetof(MsInstrumentRecord, instrument_name),        2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_id,          "instrument_id",          NC_CHAR, offsetof(MsInstrumentRecord, instrument_id),          2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_mfr,         "instrument_mfr",         NC_CHAR, offsetof(MsInstrumentRecord, instrument_mfr),         2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_model,       "instrument_model",       NC_CHAR, offsetof(MsInstrumentRecord, instrument_model),       2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_serial_no,   "instrument_serial_no",   NC_CHAR, offsetof(MsInstrumentRecord, instrument_serial_no),   2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_sw_version,  "instrument_sw_version",  NC_CHAR, offsetof(MsInstrumentRecord, instrument_sw_version),  2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_fw_version,  "instrument_fw_version",  NC_CHAR, offsetof(MsInstrumentRecord, instrument_fw_version),  2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_os_version,  "instrument_os_version",  NC_CHAR, offsetof(MsInstrumentRecord, instrument_os_version),  2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_app_version, "instrument_app_version", NC_CHAR, offsetof(MsInstrumentRecord, instrument_app_version), 2, {MsDim_instrument_number, MsDim_32_byte_string}},
    {MsVar_instrument_comments,    "instrument_comments",    NC_CHAR, offsetof(MsInstrumentRecord, instrument_comments),    2, {MsDim_instrument_number, MsDim_32_byte_string}},
};
static_assert(std::size(instrument_rows) == 10);

constexpr MsVariableRow library_rows[] = {
    {MsVar_entry_name,                 "entry_name",                 NC_CHAR,   offsetof(MsLibraryRecord, entry_name),                 2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_entry_id,                   "entry_id",                   NC_CHAR,   offsetof(MsLibraryRecord, entry_id),                   2, {MsDim_scan_number, MsDim_32_byte_string}},
    {MsVar_entry_number,               "entry_number",               NC_LONG,   offsetof(MsLibraryRecord, entry_number),               1, {MsDim_scan_number, -1}},
    {MsVar_source_data_file_reference, "source_data_file_reference", NC_CHAR,   offsetof(MsLibraryRecord, source_data_file_reference), 2, {MsDim_scan_number, MsDim_32_byte_string}},
    {MsVar_CAS_name,                   "CAS_name",                   NC_CHAR,   offsetof(MsLibraryRecord, CAS_name),                   2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_CAS_number,                 "CAS_number",                 NC_LONG,   offsetof(MsLibraryRecord, CAS_number),                 1, {MsDim_scan_number, -1}},
    {MsVar_other_name_0,               "other_name_0",               NC_CHAR,   offsetof(MsLibraryRecord, other_name_0),               2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_other_name_1,               "other_name_1",               NC_CHAR,   offsetof(MsLibraryRecord, other_name_1),               2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_other_name_2,               "other_name_2",               NC_CHAR,   offsetof(MsLibraryRecord, other_name_2),               2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_other_name_3,               "other_name_3",               NC_CHAR,   offsetof(MsLibraryRecord, other_name_3),               2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_chemical_formula,           "chemical_formula",           NC_CHAR,   offsetof(MsLibraryRecord, chemical_formula),           2, {MsDim_scan_number, MsDim_64_byte_string}},
    {MsVar_smiles,                     "smiles",                     NC_CHAR,   offsetof(MsLibraryRecord, smiles),                     2, {MsDim_scan_number, MsDim_255_byte_string}},
    {MsVar_wiswesser,                  "wiswesser",                  NC_CHAR,   offsetof(MsLibraryRecord, wiswesser),                  2, {MsDim_scan_number, MsDim_128_byte_string}},
    {MsVar_molfile_reference,          "molfile_reference",          NC_CHAR,   offsetof(MsLibraryRecord, molfile_reference),          2, {MsDim_scan_number, MsDim_32_byte_string}},
    {MsVar_other_structure,            "other_structure",            NC_CHAR,   offsetof(MsLibraryRecord, other_structure),            2, {MsDim_scan_number, MsDim_128_byte_string}},
    {MsVar_retention_index,            "retention_index",            NC_DOUBLE, offsetof(MsLibraryRecord, retention_index),            1, {MsDim_scan_number, -1}},
    {MsVar_retention_type,             "retention_type",             NC_CHAR,   offsetof(MsLibraryRecord, retention_type),             2, {MsDim_scan_number, MsDim_32_byte_string}},
    {MsVar_relative_retention,         "relative_retention",         NC_DOUBLE, offsetof(MsLibraryRecord, relative_retention),         1, {MsDim_scan_number, -1}},
    {MsVar_absolute_retention,         "absolute_retention",         NC_DOUBLE, offsetof(MsLibraryRecord, absolute_retention),         1, {MsDim_scan_number, -1}},
    {MsVar_retention_reference_name,   "retention_reference_name",   NC_CHAR,   offsetof(MsLibraryRecord, retention_reference_name),   2, {MsDim_scan_number, MsDim_128_byte_string}},
    {MsVar_retention_reference_CAS,    "retention_reference_CAS",    NC_LONG,   offsetof(MsLibraryRecord, retention_reference_CAS),    1, {MsDim_scan_number, -1}},
    {MsVar_melting_point,              "melting_point",              NC_FLOAT,  offsetof(MsLibraryRecord, melting_point),              1, {MsDim_scan_number, -1}},
    {MsVar_boiling_point,              "boiling_point",              NC_FLOAT,  offsetof(MsLibraryRecord, boiling_point),              1, {MsDim_scan_number, -1}},
    {MsVar_chemical_mass,              "chemical_mass",              NC_DOUBLE, offsetof(MsLibraryRecord, chemical_mass),              1, {MsDim_scan_number, -1}},
    {MsVar_nominal_mass,               "nominal_mass",               NC_LONG,   offsetof(MsLibraryRecord, nominal_mass),               1, {MsDim_scan_number, -1}},
    {MsVar_accurate_mass,              "accurate_mass",              NC_DOUBLE, offsetof(MsLibraryRecord, accurate_mass),              1, {MsDim_scan_number, -1}},
    {MsVar_entry_other_information,    "entry_other_information",    NC_CHAR,   offsetof(MsLibraryRecord, entry_other_information),    2, {MsDim_scan_number, MsDim_255_byte_string}},
};
static_assert(std::size(library_rows) == 27);

constexpr MsDimensionRow counting_rows[] = {
    {MsDim_scan_number,       "scan_number",       0},
    {MsDim_instrument_number, "instrument_number", 0},
    {MsDim_group_number,      "group_number",      0},
    {MsDim_group_max_masses,  "group_max_masses",  0},
};

// No fields of a record belong to these.
constexpr MsVariableRow counter_rows[] = {
    {MsVar_scan_index,  "scan_index",  NC_LONG, 0, 1, {MsDim_scan_number, -1}},
    {MsVar_point_count, "point_count", NC_LONG, 0, 1, {MsDim_scan_number, -1}},
    {MsVar_flag_count,  "flag_count",  NC_LONG, 0, 1, {MsDim_scan_number, -1}},
};
constexpr MsVariableRow value_rows[] = {
    {MsVar_mass_values,      "mass_values",      NC_SHORT, 0, 1, {MsDim_point_number, -1}},
    {MsVar_time_values,      "time_values",      NC_SHORT, 0, 1, {MsDim_point_number, -1}},
    {MsVar_intensity_values, "intensity_values", NC_LONG,  0, 1, {MsDim_point_number, -1}},
};
static_assert(std::size(value_rows) == 3);

// clang-format on

template <class Row, std::size_t count> constexpr MsTable<Row> table(const Row (&rows)[count])
{
    return {rows, int(count)};
}

} // namespace

static_assert(MsDimensionCount == 15);
static_assert(MsVariableCount == 61);

constexpr MsTable<MsDimensionRow> ms_dimension_table = table(dimension_rows);
constexpr MsTable<MsVariableRow> ms_error_table = table(error_rows);
constexpr MsTable<MsVariableRow> ms_per_scan_table = table(per_scan_rows);
constexpr MsTable<MsVariableRow> ms_group_table = table(group_rows);
constexpr MsTable<MsVariableRow> ms_instrument_table = table(instrument_rows);
constexpr MsTable<MsVariableRow> ms_library_table = table(library_rows);
constexpr MsTable<MsDimensionRow> ms_counting_dimension_table = table(counting_rows);
constexpr MsTable<MsVariableRow> ms_counter_table = table(counter_rows);
constexpr MsTable<MsVariableRow> ms_value_table = table(value_rows);
