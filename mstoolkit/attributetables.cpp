// The hundred attributes of the template. Row order is the order of reading, writing and messages.

#include "mstoolkit.h"

#include <cstddef>
#include <iterator>

namespace {

// clang-format off
//   field, name, holder (-1: global), type, mandatory, enumerated, default code

constexpr MsAttributeRow admin_rows[] = {
    {offsetof(MsAdminRecord, dataset_completeness),         "dataset_completeness",         -1, NC_CHAR, 1, 0,  0},
    {offsetof(MsAdminRecord, ms_template_revision),         "ms_template_revision",         -1, NC_CHAR, 1, 0,  0},
    {offsetof(MsAdminRecord, netcdf_revision),              "netcdf_revision",              -1, NC_CHAR, 1, 0,  0},
    {offsetof(MsAdminRecord, languages),                    "languages",                    -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, administrative_comments),      "administrative_comments",      -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, dataset_origin),               "dataset_origin",               -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, dataset_owner),                "dataset_owner",                -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, netcdf_file_date_time_stamp),  "netcdf_file_date_time_stamp",  -1, NC_CHAR, 1, 0,  0},
    {offsetof(MsAdminRecord, experiment_title),             "experiment_title",             -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, experiment_date_time_stamp),   "experiment_date_time_stamp",   -1, NC_CHAR, 1, 0,  0},
    {offsetof(MsAdminRecord, experiment_x_ref_0),           "experiment_x_ref_0",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, experiment_x_ref_1),           "experiment_x_ref_1",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, experiment_x_ref_2),           "experiment_x_ref_2",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, experiment_x_ref_3),           "experiment_x_ref_3",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, operator_name),                "operator_name",                -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, pre_experiment_program_name),  "pre_experiment_program_name",  -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, post_experiment_program_name), "post_experiment_program_name", -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, source_file_reference),        "source_file_reference",        -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, source_file_format),           "source_file_format",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, source_file_date_time_stamp),  "source_file_date_time_stamp",  -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, external_file_ref_0),          "external_file_ref_0",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, external_file_ref_1),          "external_file_ref_1",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, external_file_ref_2),          "external_file_ref_2",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, external_file_ref_3),          "external_file_ref_3",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, calibration_history_0),        "calibration_history_0",        -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, calibration_history_1),        "calibration_history_1",        -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, calibration_history_2),        "calibration_history_2",        -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, calibration_history_3),        "calibration_history_3",        -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsAdminRecord, experiment_type),              "experiment_type",              -1, NC_CHAR, 0, 1,  0},
    {offsetof(MsAdminRecord, number_of_times_processed),    "number_of_times_processed",    -1, NC_LONG, 0, 0,  0},
    {offsetof(MsAdminRecord, number_of_times_calibrated),   "number_of_times_calibrated",   -1, NC_LONG, 0, 0,  0},
};
static_assert(std::size(admin_rows) == 31);

constexpr MsAttributeRow sample_rows[] = {
    {offsetof(MsSampleRecord, sample_internal_id),             "sample_internal_id",             -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_external_id),             "sample_external_id",             -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_receipt_date_time_stamp), "sample_receipt_date_time_stamp", -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_owner),                   "sample_owner",                   -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_procedure_name),          "sample_procedure_name",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_matrix),                  "sample_matrix",                  -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_storage),                 "sample_storage",                 -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_disposal),                "sample_disposal",                -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_history),                 "sample_history",                 -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_prep_procedure),          "sample_prep_procedure",          -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_prep_comments),           "sample_prep_comments",           -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_manual_handling),         "sample_manual_handling",         -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_comments),                "sample_comments",                -1, NC_CHAR, 0, 0,  0},
    {offsetof(MsSampleRecord, sample_state),                   "sample_state",                   -1, NC_CHAR, 0, 1,  8},
};
static_assert(std::size(sample_rows) == 14);

constexpr MsAttributeRow test_rows[] = {
    {offsetof(MsTestRecord, test_separation_type),             "test_separation_type",             -1, NC_CHAR,  0, 1, 22},
    {offsetof(MsTestRecord, test_ms_inlet),                    "test_ms_inlet",                    -1, NC_CHAR,  0, 1, 27},
    {offsetof(MsTestRecord, test_ms_inlet_temperature),        "test_ms_inlet_temperature",        -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_ionization_mode),             "test_ionization_mode",             -1, NC_CHAR,  0, 1, 39},
    {offsetof(MsTestRecord, test_ionization_polarity),         "test_ionization_polarity",         -1, NC_CHAR,  0, 1, 52},
    {offsetof(MsTestRecord, test_electron_energy),             "test_electron_energy",             -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_laser_wavelength),            "test_laser_wavelength",            -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_reagent_gas),                 "test_reagent_gas",                 -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_reagent_gas_pressure),        "test_reagent_gas_pressure",        -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_fab_type),                    "test_fab_type",                    -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_fab_matrix),                  "test_fab_matrix",                  -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_source_temperature),          "test_source_temperature",          -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_filament_current),            "test_filament_current",            -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_emission_current),            "test_emission_current",            -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_accelerating_potential),      "test_accelerating_potential",      -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_detector_type),               "test_detector_type",               -1, NC_CHAR,  0, 1, 54},
    {offsetof(MsTestRecord, test_detector_potential),          "test_detector_potential",          -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_detector_entrance_potential), "test_detector_entrance_potential", -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, test_resolution_type),             "test_resolution_type",             -1, NC_CHAR,  0, 1, 62},
    {offsetof(MsTestRecord, test_resolution_method),           "test_resolution_method",           -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_scan_function),               "test_scan_function",               -1, NC_CHAR,  0, 1, 64},
    {offsetof(MsTestRecord, test_scan_direction),              "test_scan_direction",              -1, NC_CHAR,  0, 1, 67},
    {offsetof(MsTestRecord, test_scan_law),                    "test_scan_law",                    -1, NC_CHAR,  0, 1, 70},
    {offsetof(MsTestRecord, test_scan_time),                   "test_scan_time",                   -1, NC_FLOAT, 0, 0,  0},
    {offsetof(MsTestRecord, mass_calibration_file),            "mass_calibration_file",            -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_external_reference_file),     "test_external_reference_file",     -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_internal_reference_file),     "test_internal_reference_file",     -1, NC_CHAR,  0, 0,  0},
    {offsetof(MsTestRecord, test_comments),                    "test_comments",                    -1, NC_CHAR,  0, 0,  0},
};
static_assert(std::size(test_rows) == 28);

constexpr MsAttributeRow raw_rows[] = {
    {offsetof(MsRawGlobalRecord, raw_data_mass_format),           "raw_data_mass_format",           -1,                     NC_CHAR,   0, 1, 74},
    {offsetof(MsRawGlobalRecord, raw_data_time_format),           "raw_data_time_format",           -1,                     NC_CHAR,   0, 1, 74},
    {offsetof(MsRawGlobalRecord, raw_data_intensity_format),      "raw_data_intensity_format",      -1,                     NC_CHAR,   0, 1, 75},
    {offsetof(MsRawGlobalRecord, mass_units),                     "units",                          MsVar_mass_values,      NC_CHAR,   0, 1, 78},
    {offsetof(MsRawGlobalRecord, time_units),                     "units",                          MsVar_time_values,      NC_CHAR,   0, 1, 81},
    {offsetof(MsRawGlobalRecord, intensity_units),                "units",                          MsVar_intensity_values, NC_CHAR,   0, 1, 88},
    {offsetof(MsRawGlobalRecord, intensity_add_offset),           "add_offset",                     MsVar_intensity_values, NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, mass_scale_factor),              "scale_factor",                   MsVar_mass_values,      NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, time_scale_factor),              "scale_factor",                   MsVar_time_values,      NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, intensity_scale_factor),         "scale_factor",                   MsVar_intensity_values, NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, total_intensity_units),          "units",                          MsVar_total_intensity,  NC_CHAR,   0, 1, 88},
    {offsetof(MsRawGlobalRecord, mass_long_name),                 "long_name",                      MsVar_mass_values,      NC_CHAR,   0, 0,  0},
    {offsetof(MsRawGlobalRecord, time_long_name),                 "long_name",                      MsVar_time_values,      NC_CHAR,   0, 0,  0},
    {offsetof(MsRawGlobalRecord, intensity_long_name),            "long_name",                      MsVar_intensity_values, NC_CHAR,   0, 0,  0},
    {offsetof(MsRawGlobalRecord, starting_scan_number),           "starting_scan_number",           -1,                     NC_LONG,   0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_mass_min),                "global_mass_min",                -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_mass_max),                "global_mass_max",                -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_time_min),                "global_time_min",                -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_time_max),                "global_time_max",                -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_intensity_min),           "global_intensity_min",           -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, global_intensity_max),           "global_intensity_max",           -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, calibrated_mass_min),            "calibrated_mass_min",            -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, calibrated_mass_max),            "calibrated_mass_max",            -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, actual_run_time_length),         "actual_run_time_length",         -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, actual_delay_time),              "actual_delay_time",              -1,                     NC_DOUBLE, 0, 0,  0},
    {offsetof(MsRawGlobalRecord, raw_data_uniform_sampling_flag), "raw_data_uniform_sampling_flag", -1,                     NC_FLOAT,  0, 0,  0},
    {offsetof(MsRawGlobalRecord, raw_data_comments),              "raw_data_comments",              -1,                     NC_CHAR,   0, 0,  0},
};
static_assert(std::size(raw_rows) == 27);

// clang-format on

template <std::size_t count> constexpr MsTable<MsAttributeRow> table(const MsAttributeRow (&rows)[count])
{
    return {rows, int(count)};
}

} // namespace

constexpr MsTable<MsAttributeRow> ms_admin_table = table(admin_rows);
constexpr MsTable<MsAttributeRow> ms_sample_table = table(sample_rows);
constexpr MsTable<MsAttributeRow> ms_test_table = table(test_rows);
constexpr MsTable<MsAttributeRow> ms_raw_table = table(raw_rows);
