// The list of doubts: codes, sentences and what they are made of.

#include "msdoubts.h"

#include "doubts_p.h"
#include "filestate_p.h"

#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct DoubtRow {
    MsDoubtKind kind;
    const char *code;
    bool is_loss;
    bool is_settled; // whether further reading of points leaves it as it is
    // %1 is the file's name, %2 the count, %3 a total or another detail, %4 the example. Of [one|many]
    // the count takes its part.
    const char *sentence;
};

// clang-format off
constexpr DoubtRow doubt_rows[] = {
    {MsDoubtKind::CutOff, "cut-off", true, true,
     "\"%1\" is cut off: %2 of %3 bytes are missing at its end."},
    {MsDoubtKind::Unfinished, "unfinished", true, true,
     "\"%1\" is longer than its header says, which counts %3 records and leaves out the last %2: its writer was interrupted."},
    {MsDoubtKind::TrailingBytes, "trailing-bytes", false, true,
     "\"%1\" has %2 [byte|bytes] behind the end that its header gives."},
    {MsDoubtKind::UnwrittenScans, "unwritten-scans", true, true,
     "In \"%1\", %2 of %3 scans [was|were] never written: [its|their] point_count or time is the fill value; the first is %4."},
    {MsDoubtKind::BadCounts, "bad-counts", true, true,
     "In \"%1\", %2 of %3 scans [has|have] a point_count below 0 or none; the first is %4."},
    {MsDoubtKind::BadFlagCounts, "bad-flag-counts", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a flag_count below 0; the first is %4."},
    {MsDoubtKind::NoScanIndex, "no-scan-index", true, true,
     "In \"%1\", the points of %2 [scan|scans] can't be found: scan_index is missing or unusable, though point_count adds up to all points."},
    {MsDoubtKind::FallingScanIndex, "falling-scan-index", false, true,
     "In \"%1\", %2 of %3 scans [begins|begin] before the scan before [it|them]: scan_index doesn't rise; the first is %4."},
    {MsDoubtKind::OverlappingScans, "overlapping-scans", false, true,
     "In \"%1\", %2 of %3 scans [begins|begin] among the points of another; the first is %4."},
    {MsDoubtKind::ScansBeyondEnd, "scans-beyond-end", true, true,
     "In \"%1\", %2 of %3 scans [begins|begin] before the first point or [ends|end] behind the last one; the first is %4."},
    {MsDoubtKind::UnownedPoints, "unowned-points", false, true,
     "In \"%1\", %2 [position|positions] of the point axis [holds|hold] data that no scan has; the first is %4."},
    {MsDoubtKind::NoIntensities, "no-intensities", true, true,
     "\"%1\" has neither masses nor a total intensity for its %2 [scan|scans]."},
    {MsDoubtKind::BadTotals, "bad-totals", true, true,
     "In \"%1\", the total intensity of %2 of %3 scans is missing, infinite or no number; the first is %4."},
    {MsDoubtKind::MassScale, "mass-scale", false, true,
     "In \"%1\", the scale_factor of mass_values is %4, which can't be right."},
    {MsDoubtKind::IntensityScale, "intensity-scale", false, true,
     "In \"%1\", the scale_factor of intensity_values is %4, which can't be right."},
    {MsDoubtKind::IntensityOffset, "intensity-offset", false, true,
     "In \"%1\", the add_offset of intensity_values is %4, which can't be right."},
    {MsDoubtKind::MissingTimes, "missing-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] no time; the first is %4."},
    {MsDoubtKind::BadTimes, "bad-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a time that is infinite or no number; the first is %4."},
    {MsDoubtKind::RestartingTimes, "restarting-times", false, true,
     "In \"%1\", the times of the scans begin anew %2 [time|times], first at %4."},
    {MsDoubtKind::FallingTimes, "falling-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a time before that of the scan before; the first is %4."},
    {MsDoubtKind::EqualTimes, "equal-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] the time of the scan before; the first is %4."},
    {MsDoubtKind::TimeGap, "time-gap", false, true,
     "In \"%1\", the step in time to %4 is longer than all others together."},
    {MsDoubtKind::UnevenTimes, "uneven-times", false, true,
     "In \"%1\", the scans aren't evenly spaced in time, as those of a GCxGC run have to be: %2 of %3 [is|are] more than half a step out of place; the first is %4."},
    {MsDoubtKind::MassFormat, "mass-format", false, true,
     "In \"%1\", raw_data_mass_format says %4, though the masses are stored as %3."},
    {MsDoubtKind::IntensityFormat, "intensity-format", false, true,
     "In \"%1\", raw_data_intensity_format says %4, though the intensities are stored as %3."},
};
// clang-format on
static_assert(std::size(doubt_rows) == std::size_t(MsDoubtKind::Count), "a row for each kind");

// Fills a sentence. Not with QString::arg, which takes the markers that are there for the first few.
QString fill(const char *sentence, qint64 count, const QStringList &arguments)
{
    QString result;
    bool is_taken = true; // the part of [one|many] that is being read
    for (const char *at = sentence; *at; ++at) {
        if (*at == '[')
            is_taken = count == 1;
        else if (*at == '|')
            is_taken = count != 1;
        else if (*at == ']')
            is_taken = true;
        else if (is_taken && *at == '%')
            result += arguments[*++at - '1'];
        else if (is_taken)
            result += QLatin1Char(*at);
    }
    return result;
}

QString quoted(const char *text)
{
    return QStringLiteral("\"%1\"").arg(QLatin1String(text));
}

bool is_bad_scale(double scale)
{
    return scale != MsMissingDouble && (!std::isfinite(scale) || scale <= 0.0);
}

// A number in its place counts as absent.
bool is_given_text(int ncid, const QByteArray &name)
{
    nc_type type = NC_NAT;
    return nc_inq_atttype(ncid, NC_GLOBAL, name.constData(), &type) == NC_NOERR && type == NC_CHAR;
}

class List
{
public:
    List(MsFileState &state, const QString &file_name, const MsDoubtOptions &wanted)
        : file(state), name(file_name), options(wanted)
    {
    }

    QList<MsDoubt> make()
    {
        list_length();
        list_scans();
        if (file.tally.knows_globals)
            list_attributes(file.tally.raw);
        std::stable_sort(found.begin(), found.end(), [](const Found &one, const Found &other) {
            return one.row->kind < other.row->kind;
        });
        QList<MsDoubt> doubts;
        for (const Found &each : found)
            doubts.append(each.doubt);
        return doubts;
    }

private:
    struct Found {
        const DoubtRow *row;
        MsDoubt doubt;
    };

    void add(MsDoubtKind kind, qint64 count, const QString &detail, const QString &example)
    {
        const DoubtRow &row = doubt_rows[std::size_t(kind)];
        if (options.settledOnly && !row.is_settled)
            return;
        const QString text = fill(row.sentence, count, {name, QString::number(count), detail, example});
        found.append({&row, {row.code, count, example, text, row.is_loss, false}});
    }

    void list_length()
    {
        const MsClassicLayout *layout = file.data.classic_layout();
        if (!layout)
            return;
        if (const quint64 lacking = file.data.missing_bytes()) {
            add(MsDoubtKind::CutOff, qint64(lacking), QString::number(layout->needed), QString());
            return;
        }
        constexpr quint64 padding = 3;
        const quint64 extra = layout->length - std::min(layout->length, layout->told());
        const quint64 records = layout->records_behind();
        if (records > 0)
            add(MsDoubtKind::Unfinished, qint64(records), QString::number(layout->records), QString());
        else if (extra > padding)
            add(MsDoubtKind::TrailingBytes, qint64(extra), QString(), QString());
    }

    void list_scans()
    {
        ms_look_at_scans(file);
        const qint32 scans = file.dimensions[MsDim_scan_number].size;
        for (const DoubtRow &row : doubt_rows) {
            const MsFinding &finding = file.tally.scans[row.kind];
            if (finding.count == 0
                || (row.kind == MsDoubtKind::UnevenTimes && !(options.modulation > 0.0)))
                continue;
            const char *what = row.kind == MsDoubtKind::UnownedPoints ? "position %1" : "scan %1";
            add(row.kind, finding.count, QString::number(scans),
                QString::fromLatin1(what).arg(finding.first));
        }
    }

    void list_attributes(const MsRawGlobalRecord &raw)
    {
        if (is_bad_scale(raw.mass_scale_factor))
            add(MsDoubtKind::MassScale, 1, QString(), QString::number(raw.mass_scale_factor));
        if (is_bad_scale(raw.intensity_scale_factor))
            add(MsDoubtKind::IntensityScale, 1, QString(), QString::number(raw.intensity_scale_factor));
        if (!std::isfinite(raw.intensity_add_offset))
            add(MsDoubtKind::IntensityOffset, 1, QString(), QString::number(raw.intensity_add_offset));
        list_format(MsDoubtKind::MassFormat, "raw_data_mass_format", raw.raw_data_mass_format,
                    MsVar_mass_values);
        list_format(MsDoubtKind::IntensityFormat, "raw_data_intensity_format",
                    raw.raw_data_intensity_format, MsVar_intensity_values);
    }

    void list_format(MsDoubtKind kind, const char *attribute, qint32 claimed, int slot)
    {
        const MsShape *shape = file.column(slot).shape();
        const char *text = ms_enum_text(claimed);
        if (!text || !shape
            || (!is_given_text(file.ncid, attribute)
                && !is_given_text(file.ncid, ms_dash_name(attribute))))
            return;
        const char *stored = ms_enum_text(ms_format_of_nc_type(shape->type, -1));
        if (stored && qstrcmp(text, stored) != 0)
            add(kind, 1, quoted(stored), quoted(text));
    }

    MsFileState &file;
    const QString name;
    const MsDoubtOptions options;
    QList<Found> found;
};

} // namespace

QList<MsDoubt> ms_list_doubts(int ncid, const QString &name, const MsDoubtOptions &options)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return {};
    file->data.look_at_length();
    return List(*file, name, options).make();
}
