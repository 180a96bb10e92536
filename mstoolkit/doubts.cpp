// The list of doubts: what is known of a run, and which of it can't be right.

#include "msdoubts.h"

#include "columnwalk_p.h"
#include "doubtattributes_p.h"
#include "doubtfailure_p.h"
#include "doubtlist_p.h"
#include "doubtscans_p.h"
#include "filestate_p.h"
#include "msrecords.h"
#include "path_p.h"
#include "tally_p.h"
#include "variabletables_p.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

// Whether these are so few among all scans that they are the odd ones.
bool is_exception(qint64 count, qint64 of)
{
    constexpr qint64 enough = 5;
    constexpr qint64 rare = 20; // one of so many
    return of >= enough && count <= std::max<qint64>(of / rare, 1);
}

// What a writer may leave in the place of masses that it has none of.
constexpr MsDoubtKind kinds_without_mass[] = {MsDoubtKind::BadMasses, MsDoubtKind::FillMasses,
                                              MsDoubtKind::NegativeMasses, MsDoubtKind::ZeroMasses};

class DoubtFinder
{
public:
    DoubtFinder(MsFileState &state, const QString &file_name, const MsDoubtOptions &wanted)
        : file(state), tally(state.tally), scans(state.dimensions[MsDim_scan_number].size),
          options(wanted), list(file_name, wanted, state.tally)
    {
    }

    QList<MsDoubt> make()
    {
        ms_look_at_scans(file);
        if (is_trace())
            ms_look_at_totals(file);
        found = tally.found;
        judge();
        for (std::size_t i = 0; i < std::size_t(MsDoubtKind::Count); ++i) {
            const auto kind = MsDoubtKind(i);
            const MsFinding &finding = found[kind];
            if (finding.count > 0)
                list.add(kind, finding.count, QString::number(scans), place_of(kind, finding.first));
        }
        if (tally.second_time > 0.0)
            list.add(MsDoubtKind::ZeroTime, 1, QString(), QString::number(tally.second_time));
        list_length();
        list_dashed_names();
        list_missing_masses();
        list_census();
        list_groups();
        if (tally.knows_globals)
            ms_doubt_attributes(file, &list);
        list_failed_reads(); // last, as the others read, too
        return list.in_order();
    }

private:
    static QString place_of(MsDoubtKind kind, qint64 place)
    {
        const char *what = kind == MsDoubtKind::UnownedPoints ? "position %1" : "scan %1";
        return QString::fromLatin1(what).arg(place);
    }

    // Which findings are doubts, and what follows from several of them.
    void judge()
    {
        if (!(options.modulation > 0.0))
            found[MsDoubtKind::UnevenTimes] = {};
        if (options.unplacedPoints > 0)
            found[MsDoubtKind::UnplacedPoints] = {options.unplacedPoints, options.firstUnplacedScan};
        if (!is_exception(found[MsDoubtKind::UnorderedMasses].count, tally.scans_with_order))
            found[MsDoubtKind::UnorderedMasses] = {};
        judge_totals();
        if (is_trace())
            found[MsDoubtKind::EqualMasses] = {}; // that is said of all points
        for (const MsDoubtKind kind : kinds_without_mass) {
            if (!has_points_of_a_run() && found[kind].count == tally.points_of_scans)
                found[kind] = {}; // the points of a trace have none
        }
        // Of a trace the scans need no points.
        const auto is_absent = [this](int slot) { return file.variables[slot] == -1; };
        if (!file.has_mass_values
            && (is_absent(MsVar_scan_index) || is_absent(MsVar_point_count)
                || is_absent(MsVar_intensity_values)))
            found[MsDoubtKind::UnreadableScans] = {};

        MsFinding &mass_range = found[MsDoubtKind::ScanMassRange];
        for (const MsAgreement *each : {&tally.least_masses, &tally.most_masses}) {
            const MsFinding odd = each->odd_ones_out();
            if (odd.count > mass_range.count)
                mass_range = odd;
        }
        // Some writers take the range of the totals for that of the intensities.
        const MsRawGlobalRecord &raw = tally.raw;
        if (tally.knows_globals && ms_is_near(raw.global_intensity_max, tally.claimed_totals.most)
            && ms_is_near(raw.global_intensity_min, tally.claimed_totals.least))
            found[MsDoubtKind::IntensityRange] = {};
    }

    void judge_totals()
    {
        const bool has_sums = file.has_mass_values || tally.points_of_scans > 0;
        if (is_other_total() || !has_sums)
            return;
        const MsAgreement &totals = tally.totals.is_empty() ? tally.trace_totals
            : tally.totals.is_exact()                       ? tally.totals
                                                            : tally.rounded_totals;
        MsFinding &wrong = found[MsDoubtKind::WrongTotals];
        wrong = totals.disagreeing();
        if (wrong.count == 0)
            wrong = totals.odd_ones_out();
        if (wrong.count == 0)
            wrong = totals.far_off();
        if (wrong.count == 0) // a factor or an offset that the totals lack
            wrong = totals.disagreeing_unlike(tally.stored_totals);
    }

    // Whether the total intensity was left out, or has a unit of its own.
    bool is_other_total() const
    {
        const bool is_left_out = tally.claimed_totals.least == 0.0 && tally.claimed_totals.most == 0.0;
        return (is_left_out && !is_trace())
            || (tally.knows_globals && tally.raw.intensity_units != tally.raw.total_intensity_units
                && has_unit(MsVar_total_intensity) && has_unit(MsVar_intensity_values));
    }

    bool has_unit(int slot) const
    {
        return file.variables[slot] != -1
            && !ms_text_attribute(file.ncid, file.variables[slot], "units").trimmed().isEmpty();
    }

    // Whether the run comes without masses.
    bool is_trace() const
    {
        return !file.has_mass_values || (tally.census.is_done && tally.census.keys < 2);
    }

    // A trace has one for each scan.
    bool has_points_of_a_run() const { return tally.points_of_scans > scans; }

    void list_length()
    {
        const MsClassicLayout *layout = file.data.classic_layout();
        if (!layout)
            return;
        if (const quint64 missing = file.data.missing_bytes()) {
            list.add(MsDoubtKind::CutOff, qint64(missing), QString::number(layout->needed), QString());
            return;
        }
        // The library fills a small file up with zeros when it changes it.
        if (file.data.has_zeros_behind())
            return;
        constexpr quint64 padding = 3;
        const quint64 extra = layout->length - std::min(layout->length, layout->told());
        const quint64 records = layout->records_behind();
        if (records > 0 && lacks_records(*layout))
            list.add(MsDoubtKind::Unfinished, qint64(records), QString::number(layout->records),
                     QString());
        else if (extra > padding)
            list.add(MsDoubtKind::TrailingBytes, qint64(extra), QString(), QString());
    }

    // Whether what lies behind the counted records can belong to the run.
    bool lacks_records(const MsClassicLayout &layout) const
    {
        return layout.is_unlimited(file.dimensions[MsDim_scan_number].id)
            || found[MsDoubtKind::ScansBeyondEnd].count > 0;
    }

    void list_failed_reads()
    {
        if (const quint64 refused = file.data.refused_reads())
            list.add(MsDoubtKind::ReadFailed, qint64(refused), ms_system_text(file.data.first_error()),
                     QString(), true);
        if (file.data.has_changed())
            list.add(MsDoubtKind::ChangedFile, 1, QString(), QString());
    }

    // What is found with underscores only: counters, points, and that a file is a library.
    void list_dashed_names()
    {
        QByteArrayList dashed;
        for (const MsTable<MsVariableRow> &table : {ms_counter_table, ms_value_table}) {
            for (const MsVariableRow &row : table) {
                const QByteArray spelling = ms_dash_name(row.name);
                int variable = -1;
                if (file.variables[row.slot] == -1
                    && nc_inq_varid(file.ncid, spelling.constData(), &variable) == NC_NOERR)
                    dashed += spelling;
            }
        }
        const QByteArray type = ms_dash_name("experiment_type");
        if (file.experiment_type != MsLibrarySpectrum
            && ms_read_enum_attribute(file.ncid, NC_GLOBAL, type.constData()) == MsLibrarySpectrum)
            dashed += type;
        if (!dashed.isEmpty())
            list.add(MsDoubtKind::DashedNames, dashed.size(), QString(),
                     QString::fromLatin1(dashed.join(", ")));
    }

    // Of a run with points, a writer leaves out one of the axes, not both; but the points of a trace may
    // be its totals once more.
    void list_missing_masses()
    {
        if (file.has_mass_values || tally.points_of_scans <= 0
            || (tally.points_of_scans == scans && !claims_masses()))
            return;
        const MsColumnNumber point_time = MsColumnWalk(file, MsVar_time_values).get(0);
        if (!(point_time.is_known && ms_is_given(point_time.value)))
            list.add(MsDoubtKind::MissingMasses, tally.points_of_scans, QString(), QString());
    }

    bool claims_masses() const
    {
        const MsColumnNumber most = MsColumnWalk(file, MsVar_mass_range_max).get(0);
        return tally.claims.masses.is_known()
            || (most.is_known && ms_is_given(most.value) && most.value > 0.0);
    }

    void list_census()
    {
        const MsCensusTally &census = tally.census;
        if (census.odd_keys > 0)
            list.add(MsDoubtKind::OddMasses, census.odd_keys, QString::number(census.keys),
                     QString::number(census.grid));
        if (!census.is_done || census.keys > 1)
            return;
        const bool has_points = has_points_of_a_run();
        if (!census.is_read || (file.has_mass_values && census.seen == 0 && tally.points_of_scans > 0)) {
            list.add(MsDoubtKind::UnreadableMasses, scans, QString(), QString());
            return;
        }
        if (census.masses.least < census.masses.most)
            list.add(MsDoubtKind::MergedMasses, 1, ms_range_text(census.masses.least, census.masses.most),
                     QString::number(tally.claims.mass_scale));
        else if (census.masses.is_known() && has_points && is_mass(census.masses.least))
            list.add(MsDoubtKind::SingleMass, tally.points_of_scans, QString::number(scans),
                     QString::number(census.masses.least));
        // Masses that no scan has, or the points of a trace, needn't be any.
        for (const MsDoubtKind kind : kinds_without_mass) {
            const MsFinding &finding = census.found[kind];
            if (finding.count > 0 && has_points && found[kind].count == 0)
                list.add(kind, finding.count, QString(),
                         QStringLiteral("position %1").arg(finding.first));
        }
    }

    static bool is_mass(double mass) { return ms_is_given(mass) && mass > 0.0; }

    void list_groups()
    {
        const auto [finding, groups] = ms_look_at_groups(file);
        if (finding.count > 0)
            list.add(MsDoubtKind::GroupCounts, finding.count, QString::number(groups),
                     QStringLiteral("group %1").arg(finding.first));
    }

    MsFileState &file;
    const MsTally &tally;
    const qint32 scans;
    const MsDoubtOptions options;
    MsFindings found;
    MsDoubtList list;
};

} // namespace

QList<MsDoubt> ms_list_doubts(int ncid, const QString &name, const MsDoubtOptions &options)
{
    MsFileState *file = ms_file_state(ncid);
    return file ? DoubtFinder(*file, name, options).make() : QList<MsDoubt>();
}

QString ms_scan_failure(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file || !file->tally.has_failure)
        return QString();
    const std::optional<MsScanPlace> &place = file->tally.failed_place;
    return ms_describe_failure(*file, file->tally.failed_scan, place ? &*place : nullptr);
}

qint32 ms_count_unread_scans(int ncid)
{
    const MsFileState *file = ms_file_state(ncid);
    return file ? file->dimensions[MsDim_scan_number].size - file->tally.seen.size() : 0;
}

int ms_read_other_scans(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    // A file may claim scans without end, and they may share their points.
    constexpr qint32 most_unread = 1 << 20; // in a row
    qint32 unread = 0;
    quint64 points = 0;
    const qint32 scans = file->dimensions[MsDim_scan_number].size;
    for (qint32 i = 0; i < scans; ++i) {
        if (file->tally.seen.contains(i))
            continue;
        const MsScan scan(ncid, i);
        const qint32 count = scan.isRead() ? std::max(scan.point_count, 0) : 0;
        unread = count > 0 ? 0 : unread + 1;
        points += quint64(count);
        if (unread > most_unread || !file->data.can_hold(points))
            return -1;
    }
    return 0;
}
