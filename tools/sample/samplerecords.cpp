// The descriptions in a sample: the global records and the instrument.

#include "samplerecords.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

constexpr qint32 noCode = -1;

template <class Record> struct TextRow {
    char *Record::*field;
    const char *text;
};

// clang-format off
constexpr TextRow<MsAdminRecord> adminTexts[] = {
    {&MsAdminRecord::administrative_comments,     "Made by aia-sample; nothing was measured"},
    {&MsAdminRecord::dataset_origin,              "Example laboratory"},
    {&MsAdminRecord::dataset_owner,               "Example laboratory"},
    {&MsAdminRecord::netcdf_file_date_time_stamp, "20240312151200+0000"},
    {&MsAdminRecord::experiment_date_time_stamp,  "20240312142530+0000"},
    {&MsAdminRecord::operator_name,               "Operator"},
    {&MsAdminRecord::source_file_reference,       "aia-sample"},
    {&MsAdminRecord::source_file_format,          "Synthetic"},
    {&MsAdminRecord::source_file_date_time_stamp, "20240312145100+0000"},
};

constexpr TextRow<MsSampleRecord> sampleTexts[] = {
    {&MsSampleRecord::sample_internal_id,             "MIX-24"},
    {&MsSampleRecord::sample_external_id,             "Calibration mix of 24 compounds"},
    {&MsSampleRecord::sample_receipt_date_time_stamp, "20240311090000+0000"},
    {&MsSampleRecord::sample_owner,                   "Example laboratory"},
    {&MsSampleRecord::sample_matrix,                  "Dichloromethane"},
    {&MsSampleRecord::sample_storage,                 "4 degrees Celsius, dark"},
    {&MsSampleRecord::sample_prep_comments,           "Diluted to 10 mg/l"},
};

constexpr TextRow<MsTestRecord> testTexts[] = {
    {&MsTestRecord::test_resolution_method, "Full width at half maximum"},
    {&MsTestRecord::mass_calibration_file,  "PFTBA"},
    {&MsTestRecord::test_comments,          "30 m x 0.25 mm, 0.25 um film of 5% phenyl; helium 1.0 ml/min"},
};

constexpr struct {
    float MsTestRecord::*field;
    float value;
} testNumbers[] = {
    {&MsTestRecord::test_ms_inlet_temperature, 280.0f},
    {&MsTestRecord::test_electron_energy,       70.0f},
    {&MsTestRecord::test_source_temperature,   230.0f},
    {&MsTestRecord::test_emission_current,      35.0f},
    {&MsTestRecord::test_detector_potential,  1450.0f},
};

constexpr struct {
    SampleKind kind;
    const char *title;
    const char *scanFunction; // of the vocabulary; null: none
    float scanTime; // seconds
} kinds[] = {
    {SampleKind::Gcms,    "GC-MS of a calibration mix",                     "Mass Scan",              0.55f},
    {SampleKind::Gcxgc,   "GCxGC-MS of a calibration mix, 4 s modulation",  "Mass Scan",              0.01f},
    {SampleKind::Tic,     "Total ion chromatogram of a calibration mix",    nullptr,                  0.55f},
    {SampleKind::Library, "Library of a calibration mix",                   "Mass Scan",              0.55f},
    {SampleKind::Sim,     "Selected ions of a calibration mix",             "Selected Ion Detection", 0.50f},
};

constexpr TextRow<MsInstrumentRecord> components[sampleComponentCount][10] = {
    {
        {&MsInstrumentRecord::instrument_name,        "Gas chromatograph"},
        {&MsInstrumentRecord::instrument_id,          "GC-1"},
        {&MsInstrumentRecord::instrument_mfr,         "Example Instruments"},
        {&MsInstrumentRecord::instrument_model,       "Example GC"},
        {&MsInstrumentRecord::instrument_serial_no,   "100001"},
        {&MsInstrumentRecord::instrument_sw_version,  "1.0"},
        {&MsInstrumentRecord::instrument_fw_version,  "1.2"},
        {&MsInstrumentRecord::instrument_os_version,  "none"},
        {&MsInstrumentRecord::instrument_app_version, "1.0"},
        {&MsInstrumentRecord::instrument_comments,    "Split 1:20, 10 C a minute"},
    },
    {
        {&MsInstrumentRecord::instrument_name,        "Mass spectrometer"},
        {&MsInstrumentRecord::instrument_id,          "MS-1"},
        {&MsInstrumentRecord::instrument_mfr,         "Example Instruments"},
        {&MsInstrumentRecord::instrument_model,       "Example MS"},
        {&MsInstrumentRecord::instrument_serial_no,   "200001"},
        {&MsInstrumentRecord::instrument_sw_version,  "2.0"},
        {&MsInstrumentRecord::instrument_fw_version,  "2.3"},
        {&MsInstrumentRecord::instrument_os_version,  "none"},
        {&MsInstrumentRecord::instrument_app_version, "2.0"},
        {&MsInstrumentRecord::instrument_comments,    "Electron impact, 70 eV"},
    },
};
// clang-format on

template <class Record, std::size_t size, class Draft>
void fillTexts(const TextRow<Record> (&rows)[size], SampleTexts *texts, Draft *record)
{
    for (const auto &row : rows)
        record->*row.field = texts->keep(row.text);
}

void describeRawData(const SampleOptions &options, const SampleScales &scales, SampleTexts *texts,
                     MsRawGlobalRecord *raw)
{
    raw->raw_data_mass_format = options.massFormat;
    raw->raw_data_time_format = options.timeFormat;
    raw->raw_data_intensity_format = options.intensityFormat;
    raw->intensity_units = ms_enum_code("Total Counts");
    raw->total_intensity_units = raw->intensity_units;
    raw->intensity_scale_factor = scales.intensity;
    raw->intensity_add_offset = 0.0;
    raw->intensity_long_name = texts->keep("Abundance");
    raw->starting_scan_number = 0;
    raw->actual_delay_time = 0.0;
    raw->raw_data_uniform_sampling_flag = 1.0f;

    // The toolkit would store the attributes of an axis that the file lacks as global ones.
    if (options.hasMasses()) {
        raw->mass_scale_factor = scales.mass;
        raw->mass_long_name = texts->keep("Mass");
    } else {
        raw->mass_units = noCode;
    }
    if (options.hasTimes()) {
        raw->time_scale_factor = scales.time;
        raw->time_long_name = texts->keep("Time");
    } else {
        raw->time_units = noCode;
    }
}

} // namespace

void describeSample(const SampleOptions &options, const SampleScales &scales, SampleTexts *texts,
                    MsGlobalsDraft *globals)
{
    const auto &kind = *std::find_if(std::begin(kinds), std::end(kinds),
                                     [&options](const auto &row) { return row.kind == options.kind; });

    MsAdminRecord &admin = globals->admin;
    fillTexts(adminTexts, texts, &admin);
    admin.experiment_title = texts->keep(kind.title);
    admin.experiment_type = options.isLibrary() ? MsLibrarySpectrum : MsCentroidedSpectrum;
    admin.number_of_times_processed = 1;
    admin.number_of_times_calibrated = 1;

    fillTexts(sampleTexts, texts, &globals->sample);
    globals->sample.sample_state = ms_enum_code(options.isLibrary() ? "Solid" : "Liquid");

    MsTestRecord &test = globals->test;
    fillTexts(testTexts, texts, &test);
    for (const auto &row : testNumbers)
        test.*row.field = row.value;
    test.test_separation_type = ms_enum_code("Gas-Liquid Chromatography");
    test.test_ms_inlet = ms_enum_code("Capillary Direct");
    test.test_scan_function = ms_enum_code(kind.scanFunction);
    test.test_scan_time = kind.scanTime;

    describeRawData(options, scales, texts, &globals->raw);
}

MsInstrumentDraft sampleComponent(int index, SampleTexts *texts)
{
    MsInstrumentDraft component(index);
    fillTexts(components[index], texts, &component);
    return component;
}
