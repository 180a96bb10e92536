#include "statedglobals.h"

#include "msattribute.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace {

constexpr qint32 noCode = -1;

// What says how a file is made is written anew with each file.
constexpr const char *aboutTheFile[] = {"dataset_completeness",
                                        "ms_template_revision",
                                        "netcdf_revision",
                                        "languages",
                                        "experiment_type",
                                        "raw_data_mass_format",
                                        "netcdf_file_date_time_stamp",
                                        "raw_data_time_format",
                                        "raw_data_intensity_format",
                                        "global_intensity_min",
                                        "global_mass_min",
                                        "global_time_min",
                                        "global_intensity_max",
                                        "global_mass_max",
                                        "global_time_max",
                                        "starting_scan_number"};

bool isDescription(const MsAttributeRow &row)
{
    const bool isScale = row.variable != -1 && row.nc_type != NC_CHAR;
    return !isScale
        && std::none_of(std::begin(aboutTheFile), std::end(aboutTheFile),
                        [&row](const char *name) { return qstrcmp(name, row.name) == 0; });
}

// Returns the value of the row's field as a text; null where it has none.
QString textOf(const MsAttributeRow &row, const void *record)
{
    const char *field = static_cast<const char *>(record) + row.field;
    if (row.enumerated)
        return QString::fromLatin1(ms_enum_text(*reinterpret_cast<const qint32 *>(field)));
    if (row.nc_type == NC_CHAR)
        return QString::fromUtf8(*reinterpret_cast<char *const *>(field));
    char digits[40];
    const auto text = [&digits](auto number) {
        return number == decltype(number)(MsMissingDouble)
            ? QString()
            : QString::fromLatin1(
                digits, int(std::to_chars(digits, digits + sizeof(digits), number).ptr - digits));
    };
    switch (row.nc_type) {
    case NC_LONG:
        return text(*reinterpret_cast<const qint32 *>(field));
    case NC_FLOAT:
        return text(*reinterpret_cast<const float *>(field));
    default:
        return text(*reinterpret_cast<const double *>(field));
    }
}

template <class Globals, class Use> void forEachTable(Globals &globals, Use &&use)
{
    use(ms_admin_table, &globals.admin);
    use(ms_sample_table, &globals.sample);
    use(ms_test_table, &globals.test);
    use(ms_raw_table, &globals.raw);
}

void keep(const MsTerm &term, qint32 *code, ConversionLog *log)
{
    *code = term.isStated() ? term.code : noCode;
    if (term.isStated() && term.code == noCode)
        log->warn(
            QStringLiteral("The file's own words \"%1\" are none of the template's; they are left out.")
                .arg(term.text));
}

} // namespace

StatedGlobals statedGlobals(const MsRun &run, ConversionLog *log)
{
    StatedGlobals stated;
    static_cast<MsGlobalRecords &>(stated) = run.globals();
    forEachTable(stated, [&](const MsTable<MsAttributeRow> &table, void *record) {
        for (const MsAttributeRow &row : table) {
            if (row.nc_type != NC_CHAR || row.enumerated)
                continue;
            const QString text = textOfAttribute(run.fileId(), row, record);
            char *&field = *reinterpret_cast<char **>(static_cast<char *>(record) + row.field);
            field = nullptr;
            if (text.isNull())
                continue;
            stated.texts.push_back(text.toUtf8());
            field = stated.texts.back().data();
        }
    });
    const MsRunFacts &facts = run.facts();
    keep(facts.sampleState, &stated.sample.sample_state, log);
    keep(facts.separation, &stated.test.test_separation_type, log);
    keep(facts.inlet, &stated.test.test_ms_inlet, log);
    keep(facts.ionisation, &stated.test.test_ionization_mode, log);
    keep(facts.ionisationSign, &stated.test.test_ionization_polarity, log);
    keep(facts.detector, &stated.test.test_detector_type, log);
    keep(facts.resolution, &stated.test.test_resolution_type, log);
    keep(facts.scanFunction, &stated.test.test_scan_function, log);
    keep(facts.scanDirection, &stated.test.test_scan_direction, log);
    keep(facts.scanLaw, &stated.test.test_scan_law, log);
    keep(facts.massUnits, &stated.raw.mass_units, log);
    keep(facts.timeUnits, &stated.raw.time_units, log);
    keep(facts.intensityUnits, &stated.raw.intensity_units, log);
    keep(facts.totalUnits, &stated.raw.total_intensity_units, log);
    return stated;
}

void forEachDescription(const MsGlobalRecords &globals,
                        const std::function<void(const QByteArray &name, const QString &text)> &use)
{
    forEachTable(globals, [&use](const MsTable<MsAttributeRow> &table, const void *record) {
        for (const MsAttributeRow &row : table) {
            const QString text = isDescription(row) ? textOf(row, record) : QString();
            if (!text.isEmpty())
                use(attributeName(row), text);
        }
    });
}

void replaceText(void *record, std::size_t field, const QByteArray &bytes)
{
    ms_replace_text(record, field, QString::fromLatin1(bytes)); // which is a byte for each letter
}

bool setDescription(const char *name, const QString &text, MsGlobalRecords *globals)
{
    bool isSet = false;
    forEachTable(*globals, [&](const MsTable<MsAttributeRow> &table, void *record) {
        for (const MsAttributeRow &row : table) {
            if (attributeName(row) != name || !isDescription(row))
                continue;
            if (row.enumerated)
                *reinterpret_cast<qint32 *>(static_cast<char *>(record) + row.field) =
                    ms_enum_code(text.toLatin1().constData());
            else if (row.nc_type == NC_CHAR)
                replaceText(record, row.field, text.toUtf8());
            else
                ms_store_variant(record, row.field, QVariant(text), row.nc_type);
            isSet = true;
        }
    });
    return isSet;
}
