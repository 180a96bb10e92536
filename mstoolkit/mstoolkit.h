// The toolkit for AIA MS files: reads and writes netCDF files in the ANDI mass-spectrometry
// interchange layout. This header is its manual.
//
// Conventions that hold for every routine:
//   * A file is known by its netCDF id, from ms_open_read or ms_open_write. Routines that work with
//     the template's objects look the id up in the file registry first; an unknown id is a failure.
//   * Status: 0 is success, -1 is failure. Routines that hand out a text return null on failure.
//   * What a file lacks is no failure on reading: it shows as an id of -1, a default code or a missing
//     value (-1 for NC_BYTE, -9999 for the other number types; compare exactly).
//   * Texts and arrays that the toolkit hands out are heap blocks of the caller's, freed with ms_free.
//     A record frees what it owns through its ms_init_... routine with `release` set; a read doesn't
//     free what a field holds, so release a record before it is read again.
//   * Memory exhaustion is not a status: std::bad_alloc passes through to the caller. A vector whose
//     size in bytes doesn't fit in 32 bits is a failure before anything is allocated.
//   * Nothing is locked. Calls, for whatever file, come one at a time.
//   * Messages are English rich text, sent to the host's MessageLoggerInterface.
#ifndef MSTOOLKIT_H
#define MSTOOLKIT_H

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QVariant>

#include <cmath>
#include <cstddef>
#include <netcdf.h>

// ---------------------------------------------------------------------------------------------------
// Codes
// ---------------------------------------------------------------------------------------------------

// The experiment types; vocabulary codes like those below.
enum MsExperimentType {
    MsCentroidedSpectrum = 0, // "Centroided Mass Spectrum"
    MsContinuumSpectrum = 1,  // "Continuum Mass Spectrum"
    MsLibrarySpectrum = 2     // "Library Mass Spectrum"
};

// The data formats: how the numbers of mass_values, time_values or intensity_values are stored.
enum MsDataFormat {
    MsShortFormat = 74, // NC_SHORT, signed 16-bit
    MsLongFormat = 75,  // NC_LONG, signed 32-bit
    MsFloatFormat = 76, // NC_FLOAT, IEEE 754 single
    MsDoubleFormat = 77 // NC_DOUBLE, IEEE 754 double
};

// The vocabulary code of the time unit "Seconds".
constexpr qint32 MsSeconds = 81;

// What stands for an absent number in a field of each type.
constexpr qint32 MsMissingLong = -9999;
constexpr double MsMissingDouble = -9999.0;

// No packing in use makes more bytes than these of one byte of a file (deflate makes 1,032). What is
// larger, a file only claims.
constexpr qint64 MsTightestPacking = 1100;

// Returns a number of a record, such as a factor, or `otherwise` for a missing one.
constexpr double ms_given(double number, double otherwise)
{
    return number == MsMissingDouble ? otherwise : number;
}

// ---------------------------------------------------------------------------------------------------
// The template: dimensions and variables, and the record of one open file
// ---------------------------------------------------------------------------------------------------

// Places of the template's dimensions in MsFileRecord.
enum MsDimensionSlot {
    MsDim_2_byte_string,
    MsDim_4_byte_string,
    MsDim_8_byte_string,
    MsDim_16_byte_string,
    MsDim_32_byte_string,
    MsDim_64_byte_string,
    MsDim_128_byte_string,
    MsDim_255_byte_string,
    MsDim_range,
    MsDim_scan_number,
    MsDim_point_number,
    MsDim_instrument_number,
    MsDim_group_number,
    MsDim_group_max_masses,
    MsDim_error_number,
    MsDimensionCount
};

// Places of the template's variables in MsFileRecord.
enum MsVariableSlot {
    MsVar_error_log,
    MsVar_instrument_name,
    MsVar_instrument_id,
    MsVar_instrument_mfr,
    MsVar_instrument_model,
    MsVar_instrument_serial_no,
    MsVar_instrument_sw_version,
    MsVar_instrument_fw_version,
    MsVar_instrument_os_version,
    MsVar_instrument_app_version,
    MsVar_instrument_comments,
    MsVar_scan_index,
    MsVar_point_count,
    MsVar_flag_count,
    MsVar_mass_values,
    MsVar_time_values,
    MsVar_intensity_values,
    MsVar_a_d_sampling_rate,
    MsVar_a_d_coaddition_factor,
    MsVar_scan_acquisition_time,
    MsVar_scan_duration,
    MsVar_inter_scan_time,
    MsVar_resolution,
    MsVar_actual_scan_number,
    MsVar_total_intensity,
    MsVar_mass_range_min,
    MsVar_mass_range_max,
    MsVar_time_range_min,
    MsVar_time_range_max,
    MsVar_group_mass_count,
    MsVar_group_starting_scan,
    MsVar_group_masses,
    MsVar_group_sampling_times,
    MsVar_group_delay_times,
    MsVar_entry_name,
    MsVar_entry_id,
    MsVar_entry_number,
    MsVar_source_data_file_reference,
    MsVar_CAS_name,
    MsVar_CAS_number,
    MsVar_other_name_0,
    MsVar_other_name_1,
    MsVar_other_name_2,
    MsVar_other_name_3,
    MsVar_chemical_formula,
    MsVar_wiswesser,
    MsVar_smiles,
    MsVar_molfile_reference,
    MsVar_other_structure,
    MsVar_retention_index,
    MsVar_retention_type,
    MsVar_absolute_retention,
    MsVar_relative_retention,
    MsVar_retention_reference_name,
    MsVar_retention_reference_CAS,
    MsVar_melting_point,
    MsVar_boiling_point,
    MsVar_chemical_mass,
    MsVar_nominal_mass,
    MsVar_accurate_mass,
    MsVar_entry_other_information,
    MsVariableCount
};

// One dimension of an open file. `id` is -1 where the file has no such dimension; `size` is then the
// template's (string dimensions, range, error_number, point_number) or 0 (the other four). A size
// beyond 32 bits shows as the largest 32-bit number.
struct MsDimension {
    qint32 id;
    qint32 size;
};

// What the toolkit remembers of one open file. It owns nothing.
struct MsFileRecord {
    qint32 ncid;
    qint32 experiment_type; // vocabulary code; 0 where the file doesn't say
    qint32 mass_format;     // data format codes: of the stored variables in a file that is read,
    qint32 time_format;     // of ms_open_write's arguments in one that is written
    qint32 intensity_format;
    qint32 has_mass_values; // 1 if the variable exists, else 0
    qint32 has_time_values;
    MsDimension dimensions[MsDimensionCount]; // by MsDimensionSlot
    qint32 variables[MsVariableCount];        // netCDF ids by MsVariableSlot; -1 for an absent one
    qint32 next_point_index;                  // of a file being written: scan_index of the next scan
};

// A constant table: `count` rows from `first` on, in an order that matters.
template <class Row> struct MsTable {
    const Row *first;
    int count;

    constexpr const Row *begin() const { return first; }
    constexpr const Row *end() const { return first + count; }
};

// One dimension that every new file gets with the template's size.
struct MsDimensionRow {
    int slot; // MsDimensionSlot
    const char *name;
    qint32 size;
};

// One variable of the template.
struct MsVariableRow {
    int slot; // MsVariableSlot
    const char *name;
    qint32 nc_type;
    std::size_t field; // offset of the value in the table's record; the field bears the variable's name
    qint32 ndims;      // 1 or 2
    int dims[2];       // MsDimensionSlot, outermost first; the second is -1 where ndims is 1
};

extern const MsTable<MsDimensionRow> ms_dimension_table; // 11 rows, in the order of definition
extern const MsTable<MsVariableRow> ms_error_table;      // 1 row, MsAdminRecord
extern const MsTable<MsVariableRow> ms_per_scan_table;   // 12 rows, MsScanRecord
extern const MsTable<MsVariableRow> ms_group_table;      // 5 rows, MsGroupRecord
extern const MsTable<MsVariableRow> ms_instrument_table; // 10 rows, MsInstrumentRecord
extern const MsTable<MsVariableRow> ms_library_table;    // 27 rows, MsLibraryRecord

// ---------------------------------------------------------------------------------------------------
// Opening and closing
// ---------------------------------------------------------------------------------------------------

// Returns the path of an existing file for the routines below: `name` in the coding of the file system,
// as Qt has it, or else in Latin-1, if that is a file's. Never that of a file with another name, which a
// lossy coding would lead to. Empty where there is no file.
QByteArray ms_path_of(const QString &name);

// Opens an existing file for reading and finds the template's objects in it. `path` is NUL-terminated,
// in the 8-bit coding of the file system. Any netCDF file will do. Whatever its name looks like, it is
// looked for among the files only. Returns the netCDF id, or -1 for a null or empty path, a pipe, a
// device, a folder, a file that isn't netCDF, a damaged header, a file that changed while it was opened,
// and one whose header the system refuses to read. An error message names the last three.
int ms_open_read(const char *path);

// Creates a file, over an existing one of that name, with the template's dimensions and variables, and
// leaves it in data mode.
//   experiment_type     MsExperimentType; with MsLibrarySpectrum the library variables are defined
//   scan_count          size of scan_number, at least 1
//   instrument_count    size of instrument_number; below 1 the file gets no instrument variables
//   mass_format, time_format, intensity_format   MsDataFormat; another code counts as short, short, long
//   has_mass_values, has_time_values   which axes the file gets; at least one
// Returns the netCDF id, or -1; the partly made file then stays on disk, closed. The library refuses some
// definitions only when all are made (a file too large for its kind): then the first write fails.
int ms_open_write(const char *path, qint32 experiment_type, qint32 scan_count, qint32 instrument_count,
                  qint32 mass_format, qint32 time_format, qint32 intensity_format, qint32 has_mass_values,
                  qint32 has_time_values);

// Closes the file and drops its record. Any id may be passed, also -1. Returns -1 for an id without a
// record, else 0, whether or not netCDF could close the file. A writer who must know that all has reached
// the disk calls nc_sync first and looks at its status.
int ms_close(int ncid);

// Returns how many bytes are missing at the end of a file of the classic kinds, opened by ms_open_read,
// by what its header says. What lies there can't be read: a number of a scan, an entry or a group is then
// missing, a text is null, and a scan or a group whose counts or arrays lie there fails. Returns 0 for a
// whole file, another kind of file, and an unknown id.
quint64 ms_missing_bytes(int ncid);

// Returns the record of an open file, or null for an unknown id. It lives until ms_close; hold the
// pointer no longer than one call.
MsFileRecord *ms_file_record(int ncid);

// The registry under the routines above. Registering a known id changes nothing; unregistering an
// unknown one returns -1. All dimensions of a new record have id -1 and size 0, all variables id -1.
int ms_register_file(int ncid);
int ms_unregister_file(int ncid);

// The steps of ms_open_write, for a file in define mode. The first refused definition ends them
// with -1; what was defined so far stays.
int ms_define_dimensions(int ncid, qint32 scan_count, qint32 instrument_count);
int ms_define_variables(int ncid, qint32 experiment_type, qint32 mass_format, qint32 time_format,
                        qint32 intensity_format, qint32 has_mass_values, qint32 has_time_values);

// The steps of ms_open_read: fill the file's record. A table row or named dimension is looked up under
// its name and then under its dashed spelling. They fail only for an unknown id.
int ms_inquire_dimensions(int ncid);
int ms_inquire_variables(int ncid);

// ---------------------------------------------------------------------------------------------------
// Types, formats and memory
// ---------------------------------------------------------------------------------------------------

// Return the data format code of an nc type, and the reverse; `fallback` for anything outside the four.
qint32 ms_format_of_nc_type(qint32 type, qint32 fallback);
qint32 ms_nc_type_of_format(qint32 format, qint32 fallback);

// Returns a new, uncleared array of `count` elements; null for a type other than NC_SHORT, NC_LONG,
// NC_FLOAT and NC_DOUBLE, and where the size in bytes doesn't fit in 32 bits. Free with ms_free.
void *ms_alloc_array(quint32 count, qint32 type);

// Frees a text or array that the toolkit handed out; null is allowed.
void ms_free(void *block);

// Stores the missing value of `type` in element `index` of an array of that type; nothing for
// NC_CHAR and unknown types.
void ms_set_missing(qint32 type, void *array, qint32 index);

// Converts `count` elements from one data format to another, in separate buffers. Whole numbers are made
// by truncation toward zero in 32 bits, after adding 0.5 if `round_values` isn't 0; what lies outside 32
// bits, and NaN, becomes -2147483648. A short takes the low 16 bits of a 32-bit number.
// Nothing happens for a null pointer, a count below 1 or a format outside the four.
void ms_transcode_vector(const void *source, qint32 source_format, qint32 count, void *target,
                         qint32 target_format, qint32 round_values);

// ---------------------------------------------------------------------------------------------------
// Vocabulary, attributes and texts
// ---------------------------------------------------------------------------------------------------

// One phrase of the vocabulary of enumerated attributes and its code.
struct MsVocabularyRow {
    const char *text;
    qint32 code;
};

extern const MsTable<MsVocabularyRow> ms_vocabulary; // 90 rows, ascending by lower-cased text

// Returns the code of a phrase, in any mixture of case; -1 for null and for a text outside the
// vocabulary.
qint32 ms_enum_code(const char *text);

// Returns the phrase of a code, constant, not to be freed; null for an unknown code.
const char *ms_enum_text(qint32 code);

// Returns the code that the text attribute `name` of variable `varid` (-1: global) holds; -1 where the
// attribute is absent, empty, not text, or outside the vocabulary.
qint32 ms_read_enum_attribute(int ncid, int varid, const char *name);

// Reads one text of a text variable: row `row` of a variable of two dimensions, or a variable of one
// dimension with `row` -1. `column` is the first byte wanted (-1: 0), `width` the number of bytes, of
// which the last one counts as terminator. Trailing blanks are cut. Returns a new text, or null for a
// blank one, for a variable of another shape or of a type that isn't one byte wide, for a width of more
// than 2^20, and where the read fails.
char *ms_read_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width);

// Writes `text` (null: blanks) to a row of `width` bytes: the text, cut to width - 1, its NUL, blanks,
// and a NUL as last byte. Rows as above. With a `column` of 0 or more, only the first of these bytes is
// written, at that column. A row beyond the last one of an unlimited dimension is added. Returns -1 for a
// variable of another shape or of a type that isn't one byte wide, for any other place that it doesn't
// have, and for a refused write.
int ms_write_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width,
                             const char *text);

// Returns the spelling of a template name with dashes in place of underscores, as some writers have it.
QByteArray ms_dash_name(const char *name);

// ---------------------------------------------------------------------------------------------------
// Global information: four records, filled from the attribute tables
// ---------------------------------------------------------------------------------------------------

// Texts are NUL-terminated Latin-1, or null; those of attributes are read as UTF-8, and characters beyond
// Latin-1 become question marks. Codes are vocabulary codes, or -1 for a text that the
// vocabulary lacks. Absent numbers are -9999. All fields are attributes of the same name but those
// whose comment says otherwise.

// Who made the file, and why.
struct MsAdminRecord {
    char *dataset_completeness;
    char *ms_template_revision;
    char *netcdf_revision;
    char *languages;
    char *administrative_comments;
    char *dataset_origin;
    char *dataset_owner;
    char *netcdf_file_date_time_stamp;
    char *experiment_title;
    char *experiment_date_time_stamp;
    char *experiment_x_ref_0;
    char *experiment_x_ref_1;
    char *experiment_x_ref_2;
    char *experiment_x_ref_3;
    char *operator_name;
    char *pre_experiment_program_name;
    char *post_experiment_program_name;
    char *source_file_reference;
    char *source_file_format;
    char *source_file_date_time_stamp;
    char *external_file_ref_0;
    char *external_file_ref_1;
    char *external_file_ref_2;
    char *external_file_ref_3;
    char *calibration_history_0;
    char *calibration_history_1;
    char *calibration_history_2;
    char *calibration_history_3;
    char *error_log =
        nullptr; // variable error_log: the first of its first 1,000 lines that isn't blank, or null. The
                 // block is the record holder's to free: ms_init_global leaves it alone
    qint32 experiment_type; // code
    qint32 number_of_times_processed;
    qint32 number_of_times_calibrated;
    qint32 instrument_count = 0; // size of instrument_number, or -1 without it
};

// The sample.
struct MsSampleRecord {
    char *sample_internal_id;
    char *sample_external_id;
    char *sample_receipt_date_time_stamp;
    char *sample_owner;
    char *sample_procedure_name;
    char *sample_matrix;
    char *sample_storage;
    char *sample_disposal;
    char *sample_history;
    char *sample_prep_procedure;
    char *sample_prep_comments;
    char *sample_manual_handling;
    char *sample_comments;
    qint32 sample_state; // code
};

// The method and the instrument's settings.
struct MsTestRecord {
    qint32 test_separation_type; // code
    qint32 test_ms_inlet;        // code
    float test_ms_inlet_temperature;
    qint32 test_ionization_mode;     // code
    qint32 test_ionization_polarity; // code
    float test_electron_energy;
    float test_laser_wavelength;
    char *test_reagent_gas;
    float test_reagent_gas_pressure;
    char *test_fab_type;
    char *test_fab_matrix;
    float test_source_temperature;
    float test_filament_current;
    float test_emission_current;
    float test_accelerating_potential;
    qint32 test_detector_type; // code
    float test_detector_potential;
    float test_detector_entrance_potential;
    qint32 test_resolution_type; // code
    char *test_resolution_method;
    qint32 test_scan_function;  // code
    qint32 test_scan_direction; // code
    qint32 test_scan_law;       // code
    float test_scan_time;
    char *mass_calibration_file;
    char *test_external_reference_file;
    char *test_internal_reference_file;
    char *test_comments;
};

// The axes and ranges of the raw data.
struct MsRawGlobalRecord {
    qint32 scan_count = 0;      // size of scan_number, or of point_number in a file without it
    qint32 has_mass_values = 0; // 1 if the file has the variable, else 0
    qint32 has_time_values = 0;
    double mass_scale_factor;      // scale_factor of mass_values
    double time_scale_factor;      // scale_factor of time_values
    double intensity_scale_factor; // scale_factor of intensity_values
    double intensity_add_offset;   // add_offset of intensity_values
    qint32 mass_units;             // code; units of mass_values
    qint32 time_units;             // code; units of time_values
    qint32 intensity_units;        // code; units of intensity_values
    qint32 total_intensity_units;  // code; units of total_intensity
    qint32 raw_data_mass_format;   // data format codes as the attributes say; the stored ones
    qint32 raw_data_time_format;   // are in MsFileRecord
    qint32 raw_data_intensity_format;
    char *mass_long_name;      // long_name of mass_values
    char *time_long_name;      // long_name of time_values
    char *intensity_long_name; // long_name of intensity_values
    qint32 starting_scan_number;
    double global_mass_min;
    double global_mass_max;
    double global_time_min;
    double global_time_max;
    double global_intensity_min;
    double global_intensity_max;
    double calibrated_mass_min;
    double calibrated_mass_max;
    double actual_run_time_length;
    double actual_delay_time;
    float raw_data_uniform_sampling_flag;
    char *raw_data_comments;
};

// One attribute of the template.
struct MsAttributeRow {
    std::size_t field; // offset in the table's record
    const char *name;
    int variable; // MsVariableSlot of the holder, or -1 for a global attribute
    qint32 nc_type;
    qint32 mandatory;    // 1: a warning where the file lacks it
    qint32 enumerated;   // 1: a text of the vocabulary, held as its code
    qint32 default_code; // code of an absent enumerated attribute, else 0
};

// Row order is the order of reading, of writing and of messages.
extern const MsTable<MsAttributeRow> ms_admin_table;  // 31 rows, MsAdminRecord
extern const MsTable<MsAttributeRow> ms_sample_table; // 14 rows, MsSampleRecord
extern const MsTable<MsAttributeRow> ms_test_table;   // 28 rows, MsTestRecord
extern const MsTable<MsAttributeRow> ms_raw_table;    // 27 rows, MsRawGlobalRecord

// Clears the records: null texts, default codes, missing numbers. With `release` other than 0 the
// texts are freed first; with 0 they aren't looked at (fresh memory, or blocks that now belong to
// another record). Any record may be null. Fields that are no attributes stay as they are.
void ms_init_global(char release, MsAdminRecord *admin, MsSampleRecord *sample, MsTestRecord *test,
                    MsRawGlobalRecord *raw);

// Fills the records from a file. A missing attribute gets its default; a mandatory one costs a warning
// then. An attribute of another type is converted after a warning. Returns -1 for a null record, an
// attribute of a type outside NC_BYTE to NC_DOUBLE or one that can't be read, an error_log of another
// rank, and a file with neither scan_number nor point_number. The records are then partly filled: release
// them.
int ms_read_global(int ncid, MsAdminRecord *admin, MsSampleRecord *sample, MsTestRecord *test,
                   MsRawGlobalRecord *raw);

// Writes the records to a file made by ms_open_write, in data mode before and after. A null text, a
// missing number (here each one above -10000 and up to -9999) and a code outside the vocabulary leave no
// attribute; error_log is always written. Texts are written as they are; a reader takes those of
// attributes as UTF-8. dataset_completeness, ms_template_revision, netcdf_revision and languages get
// fixed texts whatever `admin` holds, and are null in it afterwards, unfreed. Returns -1 for a null
// record and at the first refused write; the file may then still be in define mode.
int ms_write_global(int ncid, MsAdminRecord *admin, const MsSampleRecord *sample,
                    const MsTestRecord *test, const MsRawGlobalRecord *raw);

// Converts `value` to `type` and stores it in the field at offset `field` of `record`. A value that makes
// no number is stored as missing; a number that the field is too narrow for is cut as C++ does it; a text
// becomes a new block in Latin-1. Another type than NC_BYTE to NC_DOUBLE only warns.
void ms_store_variant(void *record, std::size_t field, const QVariant &value, qint32 type);

// ---------------------------------------------------------------------------------------------------
// Instrument components
// ---------------------------------------------------------------------------------------------------

// One component of the instrument. Texts are owned by a record that was read, the caller's in one that
// is written.
struct MsInstrumentRecord {
    qint32 component_index; // which component, from 0; set it before each read or write. A negative one
                            // stands for the only component of a file with one, and is refused in others
    char *instrument_name;
    char *instrument_id;
    char *instrument_mfr;
    char *instrument_model;
    char *instrument_serial_no;
    char *instrument_sw_version;
    char *instrument_fw_version;
    char *instrument_os_version;
    char *instrument_app_version;
    char *instrument_comments;
};

// Clears the texts, after freeing them where `release` isn't 0; component_index stays. Null is allowed.
void ms_init_instrument(char release, MsInstrumentRecord *instrument);

// Reads component `instrument->component_index`. An absent or blank line reads as null. Returns -1 for a
// null record, an index beyond instrument_number (nothing is read then), and a variable of another rank
// (after an error message).
int ms_read_instrument(int ncid, MsInstrumentRecord *instrument);

// Writes the component to a file made with an instrument_count of at least 1. Returns -1 for a null
// record and at the first line that can't be written.
int ms_write_instrument(int ncid, const MsInstrumentRecord *instrument);

// ---------------------------------------------------------------------------------------------------
// Groups of monitored masses
// ---------------------------------------------------------------------------------------------------

// One group of masses of selected ion monitoring. All groups of a file have arrays of the same width,
// group_max_masses; places beyond group_mass_count read as -9999.0.
struct MsGroupRecord {
    qint32 group_number; // which group, from 0; set it before each read or write
    qint32 group_mass_count;
    qint32 group_starting_scan;
    double *group_masses;         // group_max_masses elements each: owned by a record that was read, the
    double *group_sampling_times; // caller's in one that is written
    double *group_delay_times;
};

// Clears the record: numbers, group_number too, to -9999, arrays to null, after freeing them where
// `release` isn't 0. Null is allowed.
void ms_init_group(char release, MsGroupRecord *group);

// Looks for the groups of an existing file; needed before ms_read_group. The counts are both 0 where the
// file has no groups. Returns -1 for a null pointer.
int ms_inquire_groups(int ncid, qint32 *group_count, qint32 *max_masses);

// Reads group `group->group_number`. In a file without group_mass_count, that and all places are -9999.
// Returns -1 for a null record, a number outside group_number, a variable of another rank (after an error
// message) and an unreadable one. After the latter two the record holds no arrays and a group_mass_count
// of 0.
int ms_read_group(int ncid, MsGroupRecord *group);

// Adds the dimensions and variables of the groups to a new file, in data mode before and after. Returns
// -1 for a count below 1 and for a refused definition, which leaves the file in define mode.
int ms_define_groups(int ncid, qint32 group_count, qint32 max_masses);

// Writes the group, each array over its whole width. Returns -1 for a null record, a null array, a number
// outside group_number, and a refused write.
int ms_write_group(int ncid, const MsGroupRecord *group);

// ---------------------------------------------------------------------------------------------------
// Library entries, scans
// ---------------------------------------------------------------------------------------------------

// One spectrum of a library file and its compound. Fields are the variables of the same names; texts
// are owned by a record that was read, the caller's in one that is written.
struct MsLibraryRecord {
    qint32 entry_index; // which entry, from 0; set it before each read or write
    char *entry_name;
    char *entry_id;
    qint32 entry_number;
    char *source_data_file_reference;
    char *CAS_name;
    qint32 CAS_number;
    char *other_name_0;
    char *other_name_1;
    char *other_name_2;
    char *other_name_3;
    char *chemical_formula;
    char *smiles;
    char *wiswesser;
    char *molfile_reference;
    char *other_structure;
    double retention_index;
    char *retention_type;
    double absolute_retention;
    double relative_retention;
    char *retention_reference_name;
    qint32 retention_reference_CAS;
    float melting_point;
    float boiling_point;
    double chemical_mass;
    qint32 nominal_mass;
    double accurate_mass;
    char *entry_other_information;
};

// One scan. Numbers that the file lacks are missing values.
struct MsScanRecord {
    qint32 scan_number; // which scan, from 0; set it before each read or write
    qint32 point_count;
    qint32 flag_count;
    qint32 actual_scan_number;
    double total_intensity;
    double a_d_sampling_rate;
    qint16 a_d_coaddition_factor;
    double scan_acquisition_time; // as stored: seconds in most files
    double scan_duration;
    double inter_scan_time;
    double mass_range_min;
    double mass_range_max;
    double time_range_min;
    double time_range_max;
    double resolution;
    void *mass_values;      // point_count elements in the file record's mass_format, or null
    void *time_values;      // likewise, time_format
    void *intensity_values; // likewise, intensity_format
    qint32 *flagged_peaks;  // flag_count elements, or null
    qint16 *flag_values;    // flag_count elements, or null
};

// Clears a scan and a library record; either may be null. With `release` other than 0 the vectors and
// texts are freed first. scan_number and entry_index become -1.
void ms_init_per_scan(char release, MsScanRecord *scan, MsLibraryRecord *library);

// Reads the twelve numbers of scan `scan->scan_number`, without counts and vectors. A variable of
// another type is converted after a warning (what the field can't hold becomes missing). Returns -1 for a
// negative scan_number, one beyond the end of a variable, a variable of another rank (after an error
// message) and an unreadable one. Returns 0 for a null scan.
int ms_read_scan_header(int ncid, MsScanRecord *scan);

// Reads a scan whole: the numbers, the counts, the vectors in the file record's formats, the flags,
// and, in a library file, the entry `library->entry_index`. Either record may be null. Returns -1 as
// above, and where scan_index, point_count or a vector can't be read as far as the scan needs it. What
// was read by then stays in the records: release them.
int ms_read_per_scan(int ncid, MsScanRecord *scan, MsLibraryRecord *library);

// Where the points of a scan lie along the point axis: the first position, from 0, and how many there
// are, with the flags directly behind them.
struct MsScanPlace {
    qint64 first;  // scan_index in a file
    qint32 points; // point_count
    qint32 flags;  // flag_count
};

// Returns the counters of a scan as they are in the file. One that the file lacks, or that can't be read
// as a 32-bit number, is -9999; so are all for an unknown id.
MsScanPlace ms_read_scan_place(int ncid, qint32 scan);

// Reads scan `scan->scan_number` whole as ms_read_per_scan does, with its points and flags at `place`,
// whatever scan_index and the counts say; flags below 0 count as none. For readers who know better than
// the file does. Returns -1 as ms_read_per_scan does, and for points below 0.
int ms_read_scan_at(int ncid, const MsScanPlace &place, MsScanRecord *scan);

// Returns the positions of the point axis: as many as the shortest of mass_values, time_values and
// intensity_values has. A file that is cut off needn't hold them all. 0 where the file has none of the
// variables as numbers of one dimension, and for an unknown id.
qint64 ms_count_positions(int ncid);

// Whether a number of type `type` is the one that netCDF stores where nothing was written. A double may
// come from a float, or be the rounded number of the manuals.
bool ms_is_fill(qint32 type, double number);

// Whether a number of a record was given: it is finite, not missing, and not what netCDF stores where
// nothing was written. That is another number in 16 bits; ask ms_is_fill, too, about a field of NC_SHORT.
inline bool ms_is_given(double number)
{
    constexpr double below_fill = 9e36; // nearly all numbers are
    if (std::abs(number) < below_fill)
        return number != MsMissingDouble;
    return std::isfinite(number) && !ms_is_fill(NC_DOUBLE, number);
}
inline bool ms_is_given(qint32 number)
{
    return number != MsMissingLong && !ms_is_fill(NC_LONG, number);
}

// Whether scans come from the file's bytes alone: the file is of a classic kind, and its variables have
// types that need no conversion of netCDF. Asks netCDF all that the routines above want to know of them,
// so that those without a library record call it no more; its other users may be busy in other threads
// then. False for an unknown id.
bool ms_reads_scans_alone(int ncid);

// Appends a scan to a file made by ms_open_write: numbers and counts at `scan->scan_number`, vectors (in
// the formats given to ms_open_write) and flags behind the points written so far, and, in a library file,
// the entry. Either record may be null. Scans may come in any order; one that is written twice appends
// its data twice. A null mass or time vector leaves its stretch unwritten; without a mass vector the
// flags go to the time axis. Returns -1 at the first refused write; what was written so far stays in the
// file. Returns -1 before anything is written for a negative scan_number, points without
// intensity_values, flags without flagged_peaks or flag_values, and points that would end beyond position
// 2^31 - 1.
int ms_write_per_scan(int ncid, const MsScanRecord *scan, const MsLibraryRecord *library);

// ---------------------------------------------------------------------------------------------------
// Whole-run readers
// ---------------------------------------------------------------------------------------------------

// Adds the distinct masses of a run to `masses`, as keys: stored value x scale x 10^decimals, rounded.
// At 65535 keys a decimal is given up: the keys are cut to a tenth, and `*decimals` drops by one. At -1
// the census stops and reads no further. `*decimals` goes in with the number wanted and comes out with
// that of the keys. A run without masses changes nothing. In a file that is cut off, the masses that it
// still has count, and so do those around a place that the system refuses to read. Returns -1 for masses
// that can't be read; set and `*decimals` are unchanged then. Reads in stretches: memory doesn't grow
// with the run, whose masses may have any number of bytes.
int ms_read_mass_census(int ncid, QSet<qint32> &masses, qint32 *decimals, double scale);

// Hands out total_intensity and, where `times` isn't null, scan_acquisition_time of all scans, as new
// arrays of `scan_count` numbers; scan_count has to be the size of scan_number. Numbers beyond the end of
// a file that is cut off, and those that the system refuses to read, are missing values. Returns -1 for a
// count below 1, an absent variable, one with another number of elements, and one of which such a file
// has nothing; nothing is handed out then.
int ms_read_total_intensity(int ncid, qint32 scan_count, double **intensities, double **times);

// ---------------------------------------------------------------------------------------------------
// Time stamps
// ---------------------------------------------------------------------------------------------------

// A date-time stamp of the template and its numbers: "YYYYMMDDhhmmss+zzzz".
struct MsTimestamp {
    char *text;
    qint32 year;
    qint32 month;
    qint32 day;
    qint32 hour;
    qint32 minute;
    qint32 second;
    qint32 zone; // as a plain signed number: "-0500" is -500
};

// With `to_text` other than 0, makes a new text from the numbers; `text` is overwritten unfreed. With 0,
// takes the text apart; what stands behind its 19th character doesn't count. No number is tested for
// its range. Returns -1 for a null stamp, a null text, and one shorter than 19 characters.
int ms_timestamp(qint32 to_text, MsTimestamp *stamp);

// Returns the number in `count` bytes of `text` from `offset` on, each counting as its distance from "0";
// -1 for a null text.
qint32 ms_digits_to_int(const char *text, qint32 offset, qint32 count);

// Writes the absolute value into `count` bytes from `offset` on, filled with zeros on the left. Of a
// number with more digits the field keeps the low ones. Returns -1 for a null text.
int ms_int_to_digits(char *text, qint32 offset, qint32 count, qint32 value);

#endif // MSTOOLKIT_H
