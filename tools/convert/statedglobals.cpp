#include "statedglobals.h"

#include "msattribute.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>

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

// Returns the code of what the file says in an attribute, and tells of words that have none.
qint32 statedCode(int ncid, const MsAttributeRow &row, ConversionLog *log)
{
    const MsTerm term = ms_read_term(ncid, row);
    if (term.isStated() && term.code == noCode && isDescription(row))
        log->warn(
            QStringLiteral("The file's own words \"%1\" are none of the template's; they are left out.")
                .arg(term.text));
    return term.code;
}

} // namespace

StatedGlobals statedGlobals(const MsRun &run, ConversionLog *log)
{
    StatedGlobals stated;
    static_cast<MsGlobalRecords &>(stated) = run.globals();
    forEachTable(stated, [&](const MsTable<MsAttributeRow> &table, void *record) {
        for (const MsAttributeRow &row : table) {
            char *field = static_cast<char *>(record) + row.field;
            if (row.enumerated)
                *reinterpret_cast<qint32 *>(field) = statedCode(run.fileId(), row, log);
            if (row.nc_type != NC_CHAR || row.enumerated)
                continue;
            const QString text = textOfAttribute(run.fileId(), row, record);
            char *&kept = *reinterpret_cast<char **>(field);
            kept = nullptr;
            if (text.isNull())
                continue;
            stated.texts.push_back(text.toUtf8());
            kept = stated.texts.back().data();
        }
    });
    return stated;
}

void clearTerms(MsGlobalRecords *globals)
{
    forEachTable(*globals, [](const MsTable<MsAttributeRow> &table, void *record) {
        for (const MsAttributeRow &row : table) {
            if (row.enumerated)
                *reinterpret_cast<qint32 *>(static_cast<char *>(record) + row.field) = noCode;
        }
    });
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
