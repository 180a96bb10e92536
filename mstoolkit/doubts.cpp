// The list of doubts: what is known of a run, and which of it can't be right.

#include "msdoubts.h"

#include "columnwalk_p.h"
#include "countedtext_p.h"
#include "doubtfailure_p.h"
#include "doubtscans_p.h"
#include "doubttexts_p.h"
#include "filestate_p.h"
#include "msrecords.h"
#include "path_p.h"
#include "tally_p.h"
#include "variabletables_p.h"

#include <QByteArray>
#include <QDate>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

QString quoted(const char *text)
{
    return QLatin1Char('"') + QString::fromLatin1(text) + QLatin1Char('"');
}

bool is_bad_scale(double scale)
{
    return scale != MsMissingDouble && (!std::isfinite(scale) || scale <= 0.0);
}

// Whether digits of a text are a number from `least` to `most`.
bool is_number_between(const QByteArray &digits, int least, int most)
{
    const auto is_digit = [](char one) { return one >= '0' && one <= '9'; };
    const int number = digits.toInt();
    return std::all_of(digits.begin(), digits.end(), is_digit) && number >= least && number <= most;
}

QDate date_of(const QByteArray &stamp)
{
    return QDate(stamp.left(4).toInt(), stamp.mid(4, 2).toInt(), stamp.mid(6, 2).toInt());
}

// Whether the stamp of an acquisition has the form of the template, as far as its date is made of it.
bool is_date(const QByteArray &stamp)
{
    constexpr int farthest_zone = 14; // hours from UTC
    const auto part = [&stamp](int first, int length) { return stamp.mid(first, length); };
    const bool has_date = is_number_between(part(0, 4), 1, 9999) && is_number_between(part(4, 2), 1, 12)
        && date_of(stamp).isValid();
    const bool has_time = is_number_between(part(6, 2), 1, 31) && is_number_between(part(8, 2), 0, 23)
        && is_number_between(part(10, 2), 0, 59) && is_number_between(part(12, 2), 0, 60);
    const bool has_zone = part(14, 1) == "+" || part(14, 1) == "-";
    return stamp.size() >= 14 && has_date && has_time
        && (!has_zone || is_number_between(part(15, 2), 0, farthest_zone));
}

// The text of an attribute; null where it has none, or one that nobody would show.
QByteArray text_attribute(int ncid, int varid, const char *name)
{
    constexpr std::size_t longest = 200;
    nc_type type = NC_NAT;
    std::size_t length = 0;
    if (nc_inq_att(ncid, varid, name, &type, &length) != NC_NOERR || type != NC_CHAR || length > longest)
        return QByteArray();
    QByteArray text(int(length), '\0');
    if (nc_get_att_text(ncid, varid, name, text.data()) != NC_NOERR)
        return QByteArray();
    return text.constData(); // up to a zero byte
}

// A number in its place counts as absent.
bool is_given_text(int ncid, const QByteArray &name)
{
    nc_type type = NC_NAT;
    return nc_inq_atttype(ncid, NC_GLOBAL, name.constData(), &type) == NC_NOERR && type == NC_CHAR;
}

// Whether these are so few among all scans that they are the odd ones.
bool is_exception(qint64 count, qint64 of)
{
    constexpr qint64 enough = 5;
    constexpr qint64 rare = 20; // one of so many
    return of >= enough && count <= std::max<qint64>(of / rare, 1);
}

bool is_given(double number)
{
    return std::isfinite(number) && !ms_is_missing(number) && !ms_is_fill(NC_DOUBLE, number);
}

// What a writer may leave in the place of masses that it has none of.
constexpr MsDoubtKind kinds_without_mass[] = {MsDoubtKind::BadMasses, MsDoubtKind::FillMasses,
                                              MsDoubtKind::NegativeMasses, MsDoubtKind::ZeroMasses};

bool is_near(double one, double other)
{
    constexpr double tolerance = 1e-3;
    return std::abs(one - other) <= tolerance * std::max(std::abs(one), std::abs(other));
}

QString range_text(double least, double most)
{
    return QStringLiteral("%1 to %2").arg(least).arg(most);
}

class List
{
public:
    List(MsFileState &state, const QString &file_name, const MsDoubtOptions &wanted)
        : file(state), tally(state.tally), scans(state.dimensions[MsDim_scan_number].size),
          name(file_name), options(wanted)
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
                add(kind, finding.count, QString::number(scans), place_of(kind, finding.first));
        }
        if (tally.second_time > 0.0)
            add(MsDoubtKind::ZeroTime, 1, QString(), QString::number(tally.second_time));
        list_length();
        list_dashed_names();
        list_missing_masses();
        list_census();
        list_groups();
        if (tally.knows_globals)
            list_attributes(tally.raw);
        list_failed_reads(); // last, as the others read, too
        std::stable_sort(listed.begin(), listed.end(), [](const Listed &one, const Listed &other) {
            return one.row->kind < other.row->kind;
        });
        QList<MsDoubt> doubts;
        for (const Listed &each : listed)
            doubts.append(each.doubt);
        return doubts;
    }

private:
    struct Listed {
        const MsDoubtRow *row;
        MsDoubt doubt;
    };

    static QString place_of(MsDoubtKind kind, qint64 place)
    {
        const char *what = kind == MsDoubtKind::UnownedPoints ? "position %1" : "scan %1";
        return QString::fromLatin1(what).arg(place);
    }

    void add(MsDoubtKind kind, qint64 count, const QString &detail, const QString &example,
             bool is_system_error = false)
    {
        const MsDoubtRow &row = ms_doubt_row(kind);
        if (options.settledOnly && !row.is_settled)
            return;
        const QString text = ms_counted_text(
            row.sentence, count, {name, QString::number(count), detail, example, tally.first_failure});
        listed.append({&row, {row.code, count, example, text, row.is_loss, is_system_error}});
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
        if (tally.knows_globals && is_near(raw.global_intensity_max, tally.claimed_totals.most)
            && is_near(raw.global_intensity_min, tally.claimed_totals.least))
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
            && !text_attribute(file.ncid, file.variables[slot], "units").trimmed().isEmpty();
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
            add(MsDoubtKind::CutOff, qint64(missing), QString::number(layout->needed), QString());
            return;
        }
        // The library fills a small file up with zeros when it changes it.
        if (file.data.has_zeros_behind())
            return;
        constexpr quint64 padding = 3;
        const quint64 extra = layout->length - std::min(layout->length, layout->told());
        const quint64 records = layout->records_behind();
        if (records > 0 && lacks_records(*layout))
            add(MsDoubtKind::Unfinished, qint64(records), QString::number(layout->records), QString());
        else if (extra > padding)
            add(MsDoubtKind::TrailingBytes, qint64(extra), QString(), QString());
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
            add(MsDoubtKind::ReadFailed, qint64(refused), ms_system_text(file.data.first_error()),
                QString(), true);
        if (file.data.has_changed())
            add(MsDoubtKind::ChangedFile, 1, QString(), QString());
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
            add(MsDoubtKind::DashedNames, dashed.size(), QString(),
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
        if (!(point_time.is_known && is_given(point_time.value)))
            add(MsDoubtKind::MissingMasses, tally.points_of_scans, QString(), QString());
    }

    bool claims_masses() const
    {
        const MsColumnNumber most = MsColumnWalk(file, MsVar_mass_range_max).get(0);
        return tally.claims.masses.is_known()
            || (most.is_known && is_given(most.value) && most.value > 0.0);
    }

    void list_census()
    {
        const MsCensusTally &census = tally.census;
        if (census.odd_keys > 0)
            add(MsDoubtKind::OddMasses, census.odd_keys, QString::number(census.keys),
                QString::number(census.grid));
        if (!census.is_done || census.keys > 1)
            return;
        const bool has_points = has_points_of_a_run();
        if (!census.is_read || (file.has_mass_values && census.seen == 0 && tally.points_of_scans > 0)) {
            add(MsDoubtKind::UnreadableMasses, scans, QString(), QString());
            return;
        }
        if (census.masses.least < census.masses.most)
            add(MsDoubtKind::MergedMasses, 1, range_text(census.masses.least, census.masses.most),
                QString::number(tally.claims.mass_scale));
        else if (census.masses.is_known() && has_points && is_mass(census.masses.least))
            add(MsDoubtKind::SingleMass, tally.points_of_scans, QString::number(scans),
                QString::number(census.masses.least));
        // Masses that no scan has, or the points of a trace, needn't be any.
        for (const MsDoubtKind kind : kinds_without_mass) {
            const MsFinding &finding = census.found[kind];
            if (finding.count > 0 && has_points && found[kind].count == 0)
                add(kind, finding.count, QString(), QStringLiteral("position %1").arg(finding.first));
        }
    }

    static bool is_mass(double mass) { return is_given(mass) && mass > 0.0; }

    void list_groups()
    {
        const auto [finding, groups] = ms_look_at_groups(file);
        if (finding.count > 0)
            add(MsDoubtKind::GroupCounts, finding.count, QString::number(groups),
                QStringLiteral("group %1").arg(finding.first));
    }

    void list_attributes(const MsRawGlobalRecord &raw)
    {
        // Or one with which nearly all scans' ranges are those of the masses as they are stored.
        if (is_bad_scale(raw.mass_scale_factor) || tally.stored_masses.holds_where(tally.most_masses))
            add(MsDoubtKind::MassScale, 1, QString(), QString::number(raw.mass_scale_factor));
        if (is_bad_scale(raw.intensity_scale_factor))
            add(MsDoubtKind::IntensityScale, 1, QString(), QString::number(raw.intensity_scale_factor));
        if (!std::isfinite(raw.intensity_add_offset))
            add(MsDoubtKind::IntensityOffset, 1, QString(), QString::number(raw.intensity_add_offset));
        list_format(MsDoubtKind::MassFormat, "raw_data_mass_format", raw.raw_data_mass_format,
                    MsVar_mass_values);
        list_format(MsDoubtKind::IntensityFormat, "raw_data_intensity_format",
                    raw.raw_data_intensity_format, MsVar_intensity_values);
        list_time_unit(raw.time_units);
        list_date();
        list_times();
        list_first_scan(raw.starting_scan_number);
    }

    void list_format(MsDoubtKind kind, const char *attribute, qint32 claimed, int slot)
    {
        const char *text = ms_enum_text(claimed);
        const MsShape *shape = file.column(slot).shape();
        if (!text || !shape
            || (!is_given_text(file.ncid, attribute)
                && !is_given_text(file.ncid, ms_dash_name(attribute))))
            return;
        const char *stored = ms_enum_text(ms_format_of_nc_type(shape->type, -1));
        if (stored && qstrcmp(text, stored) != 0)
            add(kind, 1, quoted(stored), quoted(text));
    }

    // Minutes are no unit of the template, but that of all times that an import hands over.
    void list_time_unit(qint32 unit)
    {
        constexpr qint32 last_known = MsSeconds + 2; // of the units of time in the vocabulary
        const bool is_known = unit >= MsSeconds && unit <= last_known;
        const int slot = file.variables[MsVar_time_values];
        const QByteArray text = text_attribute(file.ncid, slot == -1 ? NC_GLOBAL : slot, "units");
        if (!is_known && !text.isNull() && !text.trimmed().toLower().startsWith("min"))
            add(MsDoubtKind::TimeUnit, 1, QString(), quoted(text.trimmed()));
    }

    void list_date()
    {
        constexpr int clocks = 2;        // days by which two may differ, with their time zones
        constexpr int first_year = 1970; // of the dates that a host takes
        if (tally.stamp.isNull())
            return;
        const bool is_form = is_date(tally.stamp);
        const QDate date = date_of(tally.stamp);
        QString fault;
        if (!is_form)
            fault = QStringLiteral("isn't a date in the form YYYYMMDDhhmmss+hhmm");
        else if (date.year() < first_year)
            fault = QStringLiteral("lies before %1").arg(first_year);
        else if (is_date(tally.file_stamp) && date_of(tally.file_stamp).daysTo(date) > clocks)
            fault = QStringLiteral("is later than netcdf_file_date_time_stamp, %1")
                        .arg(quoted(tally.file_stamp));
        if (!fault.isNull())
            add(MsDoubtKind::AcquisitionDate, 1, fault, quoted(tally.stamp));
    }

    // The template leaves open whether the range is that of the points' times, where they are in use
    // and not those of the scans.
    void list_times()
    {
        constexpr double slack = 0.01; // of the range
        if (!tally.claims.times.is_known() || !tally.times.is_known())
            return;
        const auto [claimed_least, claimed_most] = tally.claims.times;
        const MsColumnNumber point_time = MsColumnWalk(file, MsVar_time_values).get(0);
        const MsColumnNumber scan_time = MsColumnWalk(file, MsVar_scan_acquisition_time).get(0);
        const bool has_point_times = tally.points_of_scans > scans && point_time.is_known
            && is_given(point_time.value) && !is_near(point_time.value, scan_time.value);
        if (has_point_times)
            return;
        constexpr double minute = 60.0; // some state the range in minutes
        const double room = slack * (claimed_most - claimed_least) + 1.0;
        const bool is_in_minutes = std::abs(tally.times.least / minute - claimed_least) <= room / minute
            && std::abs(tally.times.most / minute - claimed_most) <= room / minute;
        if (!is_in_minutes
            && (tally.times.least < claimed_least - room || tally.times.most > claimed_most + room))
            add(MsDoubtKind::TimeRange, 1, range_text(tally.times.least, tally.times.most),
                range_text(claimed_least, claimed_most));
    }

    // Some count from 0, others from 1.
    void list_first_scan(qint32 claimed)
    {
        MsColumnWalk numbers(file, MsVar_actual_scan_number);
        const auto [number, is_known] = numbers.get(0);
        if (claimed != MsMissingLong && is_known && !ms_is_missing(number) && !numbers.is_fill(number)
            && std::abs(number - claimed) > 1.0)
            add(MsDoubtKind::StartingScan, 1, QString::number(number), QString::number(claimed));
    }

    MsFileState &file;
    const MsTally &tally;
    const qint32 scans;
    const QString name;
    const MsDoubtOptions options;
    MsFindings found;
    QList<Listed> listed;
};

} // namespace

QList<MsDoubt> ms_list_doubts(int ncid, const QString &name, const MsDoubtOptions &options)
{
    MsFileState *file = ms_file_state(ncid);
    return file ? List(*file, name, options).make() : QList<MsDoubt>();
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
