#include "infogather.h"

#include "countedtext_p.h"
#include "infolayout.h"
#include "inforanges.h"
#include "interruption.h"
#include "messageredirection.h"
#include "msdoubts.h"
#include "msrunlimit.h"
#include "namecodec.h"

#include <QFileInfo>
#include <QList>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace {

using Kind = InfoNode::Kind;

// How many items of a list and rows of a table are shown at most. A file may claim any number of either.
constexpr qint64 shortList = 20;
constexpr qint64 longList = 10000;
// How many numbers are read for all groups together. The width that they share is a claim of the file,
// too.
constexpr qint64 groupNumbers = 1 << 24;

// A column of a table. One without numbers is left out.
struct Column {
    const char *name;
    MsNumbers numbers;
};

// The table of ranges: those that the file claims beside those of its data.
class RangeTable
{
public:
    void add(const char *quantity, double claimedMin, double claimedMax, const Range &measured)
    {
        const QVariant min = claimed(claimedMin);
        const QVariant max = claimed(claimedMax);
        if (!min.isValid() && !max.isValid() && measured.isEmpty())
            return;
        const auto end = [&](double number) { return measured.isEmpty() ? QVariant() : number; };
        rows.push_back(
            {QString::fromLatin1(quantity), min, max, end(measured.min()), end(measured.max())});
    }

    // Adds the table to a section, unless it is empty.
    void addTo(InfoNode *section)
    {
        if (rows.empty())
            return;
        InfoNode &table = section->add(Kind::Table, QStringLiteral("ranges"));
        table.columns =
            QStringList{"quantity", "claimed_min", "claimed_max", "measured_min", "measured_max"};
        table.rows = std::move(rows);
    }

private:
    // Not ms_is_given: a claim of infinity is shown.
    static QVariant claimed(double number)
    {
        return number == MsMissingDouble || ms_is_fill(NC_DOUBLE, number) ? QVariant() : number;
    }

    std::vector<std::vector<QVariant>> rows;
};

class Gatherer
{
public:
    Gatherer(const MsFile &openFile, const InfoOptions &wanted)
        : file(openFile), options(wanted), record(*openFile.record())
    {
    }

    InfoResult gather(const QString &path);

private:
    void problem(const QString &text);
    void readScans(const QString &path);
    qint64 listed(qint64 count, InfoNode *list) const;
    void addTable(InfoNode *section, const char *name, const std::vector<Column> &columns) const;

    void addGlobals(InfoNode *report);
    Ranges meant(const Ranges &stored) const;
    void addRanges(InfoNode *report) const;
    void addInstruments(InfoNode *report);
    void addGroups(InfoNode *report);
    void addGroup(const MsGroup &group, InfoNode *groups) const;
    void addLibrary(InfoNode *report);
    void addCount(const char *name, int slot, qint32 count, InfoNode *section) const;
    void addScan(qint32 number, InfoNode *report);

    qint32 size(int slot) const { return record.dimensions[slot].size; }
    bool hasDimension(int slot) const { return record.dimensions[slot].id != -1; }

    const MsFile &file;
    InfoOptions options;
    MsFileRecord record;
    MsGlobals globals;
    Ranges ranges;
    std::vector<QString> problems;
};

void Gatherer::problem(const QString &text)
{
    problems.push_back(text);
}

// Reads all scans, for their ranges and for the doubts. What is wrong with them is said as a doubt.
void Gatherer::readScans(const QString &path)
{
    const Silence silence;
    RunLimit limit;
    limit.start(file, QFileInfo(path).size());
    for (qint32 i = 0; i < file.scanCount(); ++i) {
        const MsScan scan = file.scan(i);
        const QString complaint = isInterrupted()
            ? QStringLiteral("the program was interrupted")
            : limit.add(scan.isRead() ? std::max(scan.point_count, 0) : 0, 0.0);
        if (!complaint.isNull())
            return problem(
                ms_counted_text("Only the first %1 of %2 scans [was|were] read: %3.", i,
                                {QString::number(i), QString::number(file.scanCount()), complaint}));
        ranges.add(scan);
    }
}

// Returns how many of `count` items the list gets. The others are counted in it.
qint64 Gatherer::listed(qint64 count, InfoNode *list) const
{
    const qint64 shown = std::min(count, options.everything ? longList : shortList);
    list->omitted = count - shown;
    return shown;
}

void Gatherer::addTable(InfoNode *section, const char *name, const std::vector<Column> &columns) const
{
    std::vector<Column> there;
    std::copy_if(columns.begin(), columns.end(), std::back_inserter(there),
                 [](const Column &column) { return !column.numbers.isEmpty(); });
    if (there.empty())
        return;

    InfoNode &table = section->add(Kind::Table, QString::fromLatin1(name));
    table.rows.resize(std::size_t(listed(there.front().numbers.size(), &table)));
    for (const Column &column : there) {
        table.columns += QString::fromLatin1(column.name);
        const std::vector<QVariant> values = numberValues(column.numbers, qint64(table.rows.size()));
        for (std::size_t i = 0; i < values.size(); ++i)
            table.rows[i].push_back(values[i]);
    }
}

void Gatherer::addGlobals(InfoNode *report)
{
    globals = file.globals();
    if (!globals.isRead() && (hasDimension(MsDim_scan_number) || hasDimension(MsDim_point_number)))
        problem(QStringLiteral("The global information can't be read whole."));

    InfoNode &admin = report->add(Kind::Section, QStringLiteral("administration"));
    addAttributes(file.id(), ms_admin_table, &globals.admin, options.lacking, &admin);
    if (globals.admin.error_log)
        admin.addValue(QStringLiteral("error_log"), textValue(globals.admin.error_log));
    addAttributes(file.id(), ms_sample_table, &globals.sample, options.lacking,
                  &report->add(Kind::Section, QStringLiteral("sample")));
    addAttributes(file.id(), ms_test_table, &globals.test, options.lacking,
                  &report->add(Kind::Section, QStringLiteral("test")));
    addAttributes(file.id(), ms_raw_table, &globals.raw, options.lacking,
                  &report->add(Kind::Section, QStringLiteral("raw_data")));
}

void Gatherer::addInstruments(InfoNode *report)
{
    if (!hasDimension(MsDim_instrument_number))
        return;
    InfoNode &list = report->add(Kind::List, QStringLiteral("instruments"));
    const qint64 shown = listed(size(MsDim_instrument_number), &list);
    for (qint32 i = 0; i < shown; ++i) {
        const MsInstrument instrument = file.instrument(i);
        if (!instrument.isRead())
            return problem(QStringLiteral("Component %1 of the instrument can't be read.").arg(i));
        addVariables(file.id(), ms_instrument_table, &instrument, options.lacking,
                     &list.add(Kind::Section, QString::number(i)));
    }
}

void Gatherer::addGroup(const MsGroup &group, InfoNode *groups) const
{
    InfoNode &section = groups->add(Kind::Section, QString::number(group.group_number));
    addVariables(file.id(), ms_group_table, &group, options.lacking, &section);
    addTable(&section, "masses",
             {{"mass", group.masses()},
              {"sampling_time", group.samplingTimes()},
              {"delay_time", group.delayTimes()}});
}

void Gatherer::addGroups(InfoNode *report)
{
    qint32 count = 0;
    qint32 width = 0;
    if (ms_inquire_groups(file.id(), &count, &width) == -1 || count < 1)
        return;

    InfoNode &list = report->add(Kind::List, QStringLiteral("groups"));
    const qint64 affordable = std::max<qint64>(1, groupNumbers / std::max(width, 1));
    const qint64 shown = std::min(listed(count, &list), affordable);
    list.omitted = count - shown;
    for (qint32 i = 0; i < shown; ++i) {
        const MsGroup group(file.id(), i);
        if (!group.isRead())
            return problem(QStringLiteral("Group %1 can't be read.").arg(i));
        addGroup(group, &list);
    }
}

void Gatherer::addLibrary(InfoNode *report)
{
    if (!file.isLibrary())
        return;
    InfoNode &list = report->add(Kind::List, QStringLiteral("library"));
    const qint64 shown = listed(size(MsDim_scan_number), &list);
    for (qint32 i = 0; i < shown; ++i) {
        const MsLibraryEntry entry = file.entry(i);
        if (!entry.isRead())
            return problem(QStringLiteral("Library entry %1 can't be read.").arg(i));
        addVariables(file.id(), ms_library_table, &entry, options.lacking,
                     &list.add(Kind::Section, QString::number(i)));
    }
}

// Adds a count of a scan, unless it wasn't read or never written.
void Gatherer::addCount(const char *name, int slot, qint32 count, InfoNode *section) const
{
    nc_type stored = NC_LONG;
    nc_inq_vartype(file.id(), record.variables[slot], &stored);         // stays for an absent variable
    const bool isFillByte = stored == NC_BYTE && count == NC_FILL_BYTE; // which is data elsewhere
    if (ms_is_given(count) && !ms_is_fill(stored, count) && !isFillByte)
        section->addValue(QString::fromLatin1(name), count);
}

void Gatherer::addScan(qint32 number, InfoNode *report)
{
    const qint32 count = size(MsDim_scan_number);
    if (number >= count) {
        const QString there =
            count < 1 ? QStringLiteral("no scans") : QStringLiteral("scans 0 to %1").arg(count - 1);
        return problem(QStringLiteral("There is no scan %1: the file has %2.").arg(number).arg(there));
    }

    const MsScan scan = file.scan(number);
    const MsLibraryEntry entry = file.isLibrary() ? file.entry(number) : MsLibraryEntry();
    if (!scan.isRead() || (file.isLibrary() && !entry.isRead()))
        problem(QStringLiteral("Scan %1 can't be read whole.").arg(number));

    InfoNode &section = report->add(Kind::Section, QStringLiteral("scan"));
    section.addValue(QStringLiteral("scan"), number);
    addVariables(file.id(), ms_per_scan_table, &scan, options.lacking, &section);
    addCount("point_count", MsVar_point_count, scan.point_count, &section);
    addCount("flag_count", MsVar_flag_count, scan.flag_count, &section);
    Ranges stored;
    stored.add(scan);
    const Ranges measured = meant(stored);
    RangeTable table;
    table.add("mass", scan.mass_range_min, scan.mass_range_max, measured.masses);
    table.add("time", scan.time_range_min, scan.time_range_max, measured.times);
    table.add("intensity", MsMissingDouble, MsMissingDouble, measured.intensities);
    table.addTo(&section);
    if (file.isLibrary())
        addVariables(file.id(), ms_library_table, &entry, options.lacking,
                     &section.add(Kind::Section, QStringLiteral("entry")));
    addTable(&section, "points",
             {{"mass", scan.masses()}, {"time", scan.times()}, {"intensity", scan.intensities()}});
    addTable(&section, "flags", {{"peak", scan.flaggedPeaks()}, {"flag", scan.flagValues()}});
}

// Returns the ranges as the numbers that the stored ones stand for.
Ranges Gatherer::meant(const Ranges &stored) const
{
    Ranges result = stored;
    result.masses =
        stored.masses.as([&](double mass) { return globals.mass(shortest(mass, record.mass_format)); });
    result.times =
        stored.times.as([&](double time) { return globals.time(shortest(time, record.time_format)); });
    result.intensities = stored.intensities.as([&](double intensity) {
        return globals.intensity(shortest(intensity, record.intensity_format));
    });
    return result;
}

void Gatherer::addRanges(InfoNode *report) const
{
    const MsRawGlobalRecord &raw = globals.raw;
    const Ranges measured = meant(ranges);
    RangeTable table;
    table.add("mass", raw.global_mass_min, raw.global_mass_max, measured.masses);
    table.add("time", MsMissingDouble, MsMissingDouble, measured.times);
    table.add("intensity", raw.global_intensity_min, raw.global_intensity_max, measured.intensities);
    table.add("scan_acquisition_time", raw.global_time_min, raw.global_time_max,
              measured.acquisitionTimes);
    table.addTo(report);
}

void addDoubts(const QList<MsDoubt> &doubts, InfoNode *report)
{
    InfoNode &list = report->add(Kind::Remarks, QStringLiteral("doubts"));
    list.columns = QStringList{"code", "count", "example", "text", "loss"};
    for (const MsDoubt &doubt : doubts)
        list.rows.push_back(
            {QString::fromLatin1(doubt.code), doubt.count, doubt.example, doubt.text, doubt.isLoss});
}

void addModulation(const MsModulation &modulation, InfoNode *report)
{
    if (std::isnan(modulation.seconds))
        return;
    InfoNode &section = report->add(Kind::Section, QStringLiteral("guessed_modulation"));
    section.addValue(QStringLiteral("seconds"), modulation.seconds);
    section.addValue(QStringLiteral("confidence"), modulation.confidence);
    section.addValue(QStringLiteral("is_confident"), modulation.isConfident);
}

InfoResult Gatherer::gather(const QString &path)
{
    InfoNode content;
    addGlobals(&content);
    if (options.readsScans)
        readScans(path);
    addRanges(&content);
    addModulation(options.modulation, &content);
    addInstruments(&content);
    addGroups(&content);
    addLibrary(&content);
    if (options.scan)
        addScan(*options.scan, &content);

    // What is wrong is shown first, though it is known last.
    const QList<MsDoubt> doubts = ms_list_doubts(file.id(), shownName(path));
    const bool lacksNothing =
        std::none_of(doubts.begin(), doubts.end(), [](const MsDoubt &doubt) { return doubt.isLoss; });
    InfoResult result;
    result.complete = problems.empty() && lacksNothing;
    InfoNode &report = result.report;
    report.addValue(QStringLiteral("file"), shownName(path));
    report.addValue(QStringLiteral("complete"), result.complete);
    if (!doubts.isEmpty())
        addDoubts(doubts, &report);
    if (!problems.empty()) {
        InfoNode &list = report.add(Kind::List, QStringLiteral("problems"));
        for (const QString &text : problems)
            list.addValue(QString::number(list.children.size()), text);
    }
    addLayout(file, options.lacking, &report);
    std::move(content.children.begin(), content.children.end(), std::back_inserter(report.children));
    return result;
}

} // namespace

InfoResult gatherInfo(const MsFile &file, const QString &path, const InfoOptions &options)
{
    return Gatherer(file, options).gather(path);
}
