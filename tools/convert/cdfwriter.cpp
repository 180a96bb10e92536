#include "cdfwriter.h"

#include "msattribute.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace {

constexpr qint32 noCode = -1;

char *asText(QByteArray *text)
{
    return text->data();
}

void addAll(const MsNumbers &numbers, GrowingRange *range)
{
    numbers.visit([range](const auto *first, qint32 count) {
        const auto ends = std::minmax_element(first, first + count);
        range->add(double(*ends.first));
        range->add(double(*ends.second));
    });
}

// Makes a scan's own range hold all of its points.
void widen(const GrowingRange &points, double *min, double *max)
{
    if (points.isEmpty())
        return;
    *min = *min == MsMissingDouble ? points.min() : std::min(*min, points.min());
    *max = *max == MsMissingDouble ? points.max() : std::max(*max, points.max());
}

} // namespace

void GrowingRange::add(double number)
{
    if (std::isnan(number) || number == MsMissingDouble)
        return;
    min_ = std::min(min_, number);
    max_ = std::max(max_, number);
}

QByteArray bytesOfText(const QString &text)
{
    const QByteArray latin1 = text.toLatin1();
    return textFromFile(latin1.constData()) == text ? latin1 : text.toUtf8();
}

QByteArray stampOf(const QDateTime &moment)
{
    return moment.toUTC().toString(QStringLiteral("yyyyMMddhhmmss")).toLatin1() + "+0000";
}

CdfWriter::CdfWriter(const QByteArray &path, const Head &head, ConversionLog *log)
    : head_(head), log_(log)
{
    MsFileLayout layout = head.layout;
    layout.instrument_count = std::max(qint32(head.instruments.size()), 1);
    file = MsFile::create(path.constData(), layout);
    errno = 0; // from here on, it tells of a write that failed
    // Every number is written, so filling the file first would only take time.
    int before = NC_FILL;
    check(file && nc_set_fill(file.id(), NC_NOFILL, &before) == NC_NOERR);

    // The ranges are known at the end only. The first writing makes room for them in the file's header.
    check(writeGlobals() && writeGroups());
    const MsInstrumentDraft none(0);
    for (qint32 i = 0; i < layout.instrument_count; ++i) {
        MsInstrumentRecord instrument =
            head.instruments.empty() ? none : *head.instruments[std::size_t(i)];
        instrument.component_index = i;
        QByteArray name(instrument.instrument_model ? instrument.instrument_model : "Unknown");
        if (i == 0 && !instrument.instrument_name) // some readers refuse a file without it
            instrument.instrument_name = asText(&name);
        if (file)
            warnOfLongTexts(ms_instrument_table, &instrument);
        check(file.write(instrument));
    }
}

bool CdfWriter::check(bool isWritten)
{
    if (!isWritten && failure_.isNull())
        failure_ = QStringLiteral("the new file can't be written: %1")
                       .arg(errno == 0 ? QStringLiteral("netCDF refuses it") : qt_error_string(errno));
    return failure_.isNull();
}

// The toolkit cuts them off.
void CdfWriter::warnOfLongTexts(const MsTable<MsVariableRow> &table, const void *record)
{
    for (const MsVariableRow &row : table) {
        if (row.nc_type != NC_CHAR)
            continue;
        const char *text =
            *reinterpret_cast<char *const *>(static_cast<const char *>(record) + row.field);
        const int room = file.record()->dimensions[row.dims[1]].size - 1; // and a NUL
        if (qstrlen(text) > uint(std::max(room, 0)))
            log_->warn(QStringLiteral("The template has room for %1 letters of %2, so longer texts are "
                                      "cut off there.")
                           .arg(QString::number(room), QLatin1String(row.name)));
    }
}

bool CdfWriter::writeGlobals()
{
    MsGlobalsDraft globals;
    static_cast<MsGlobalRecords &>(globals) = *head_.globals;
    MsRawGlobalRecord &raw = globals.raw;
    const MsFileLayout &layout = head_.layout;
    raw.raw_data_mass_format = layout.mass_format;
    raw.raw_data_time_format = layout.time_format;
    raw.raw_data_intensity_format = layout.intensity_format;
    // The points are written as they are meant.
    raw.mass_scale_factor = MsMissingDouble;
    raw.time_scale_factor = MsMissingDouble;
    raw.intensity_scale_factor = MsMissingDouble;
    raw.intensity_add_offset = MsMissingDouble;
    // The toolkit would store the attributes of an axis that the file lacks as global ones.
    if (!layout.has_mass_values) {
        raw.mass_units = noCode;
        raw.mass_long_name = nullptr;
    }
    if (!layout.has_time_values) {
        raw.time_units = noCode;
        raw.time_long_name = nullptr;
    }
    raw.global_mass_min = masses.min();
    raw.global_mass_max = masses.max();
    raw.global_time_min = times.min();
    raw.global_time_max = times.max();
    raw.global_intensity_min = intensities.min();
    raw.global_intensity_max = intensities.max();
    raw.starting_scan_number = firstNumber;
    QByteArray now = stampOf(QDateTime::currentDateTimeUtc());
    if (!globals.admin.netcdf_file_date_time_stamp)
        globals.admin.netcdf_file_date_time_stamp = asText(&now);
    return file.write(globals);
}

bool CdfWriter::writeGroups()
{
    if (head_.groups.empty())
        return true;
    qint32 width = 1;
    for (const MsGroup *group : head_.groups)
        width = std::max(width, group->masses().size());
    if (!file.defineGroups(qint32(head_.groups.size()), width))
        return false;
    for (std::size_t i = 0; i < head_.groups.size(); ++i) {
        const MsGroup &group = *head_.groups[i];
        std::vector<double> columns[] = {group.masses().toVector(), group.samplingTimes().toVector(),
                                         group.delayTimes().toVector()};
        MsGroupDraft record{qint32(i)};
        record.group_mass_count = group.masses().size();
        record.group_starting_scan = group.group_starting_scan;
        for (std::vector<double> &column : columns)
            column.resize(std::size_t(width), MsMissingDouble);
        record.group_masses = columns[0].data();
        record.group_sampling_times = columns[1].data();
        record.group_delay_times = columns[2].data();
        if (!file.write(record))
            return false;
    }
    return true;
}

bool CdfWriter::add(const MsScanRecord &source, const MsLibraryRecord *entry)
{
    if (!failure_.isNull())
        return false;
    MsScanRecord scan = source;
    const MsFileLayout &layout = head_.layout;
    GrowingRange scanMasses;
    GrowingRange scanTimes;
    addAll({scan.mass_values, layout.mass_format, scan.point_count}, &scanMasses);
    addAll({scan.time_values, layout.time_format, scan.point_count}, &scanTimes);
    addAll({scan.intensity_values, layout.intensity_format, scan.point_count}, &intensities);
    widen(scanMasses, &scan.mass_range_min, &scan.mass_range_max);
    widen(scanTimes, &scan.time_range_min, &scan.time_range_max);
    masses.add(scanMasses.min());
    masses.add(scanMasses.max());
    times.add(scan.scan_acquisition_time);
    if (entry && file)
        warnOfLongTexts(ms_library_table, entry);
    if (firstNumber == MsMissingLong)
        firstNumber = scan.actual_scan_number;
    return check(entry ? file.write(scan, *entry) : file.write(scan));
}

bool CdfWriter::finish()
{
    return failure_.isNull() && check(writeGlobals()) && check(file.finish());
}
