// What the numbers of all scans say about a run: where points lie, and when they were taken.

#include "columnwalk_p.h"
#include "filestate_p.h"
#include "tally_p.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

// How many scans are looked at. A file of the newer kinds may claim any number that was never written.
std::size_t scans_looked_at(const MsFileState &file)
{
    constexpr qint32 always = 1 << 22;
    constexpr quint64 bytes_each = 1100; // that a byte of the file can hold
    const MsDimension &scans = file.dimensions[MsDim_scan_number];
    const qint32 count = scans.id == -1 ? 0 : std::max(scans.size, 0);
    return std::size_t(file.data.can_hold(quint64(count) * bytes_each) ? count : std::min(count, always));
}

// What a file says of one scan.
struct ScanNumbers {
    qint64 scan = 0;
    MsColumnNumber index;
    MsColumnNumber points;
    MsColumnNumber flags;
    MsColumnNumber time;
};

// The numbers of all scans, from front to back. They are many: each is read once.
class Scans
{
public:
    explicit Scans(MsFileState &file)
        : index(file, MsVar_scan_index), points(file, MsVar_point_count), flags(file, MsVar_flag_count),
          time(file, MsVar_scan_acquisition_time)
    {
    }

    ScanNumbers at(std::size_t scan)
    {
        return {qint64(scan), index.get(scan), points.get(scan), flags.get(scan), time.get(scan)};
    }

    MsColumnWalk index;
    MsColumnWalk points;
    MsColumnWalk flags;
    MsColumnWalk time;
};

// The positions of the points of a scan, and of the flags behind them.
struct Extent {
    qint32 start;
    quint32 length;
    qint32 scan;

    qint64 end() const { return qint64(start) + length; }
};

// Counts that can't be, and numbers of scans that were never written.
class CountsOfScans
{
public:
    CountsOfScans(const Scans &scans, MsFindings &found) : columns(scans), findings(found) { }

    void take(const ScanNumbers &scan)
    {
        if ((scan.points.is_known && columns.points.is_fill(scan.points.value))
            || (scan.time.is_known && columns.time.is_fill(scan.time.value)))
            findings[MsDoubtKind::UnwrittenScans].add(scan.scan);
        else if (scan.points.is_known && !(scan.points.value >= 0.0))
            findings[MsDoubtKind::BadCounts].add(scan.scan);
        if (scan.flags.is_known && !(scan.flags.value >= 0.0) && !columns.flags.is_fill(scan.flags.value))
            findings[MsDoubtKind::BadFlagCounts].add(scan.scan);
    }

    void finish(std::size_t scan_count)
    {
        // Some writers leave them out altogether.
        if (findings[MsDoubtKind::BadFlagCounts].count == qint64(scan_count))
            findings[MsDoubtKind::BadFlagCounts] = MsFinding();
    }

private:
    const Scans &columns;
    MsFindings &findings;
};

// Where the points of scans lie, and what lies between them.
class PointsOfScans
{
public:
    PointsOfScans(MsFileState &state, const Scans &scans, std::size_t scan_count)
        : file(state), count(scan_count), tally(state.tally), findings(tally.found),
          has_index(scans.index.is_usable()), has_counts(scans.points.is_usable())
    {
        const std::optional<qint64> shortest = ms_shortest_axis(file);
        has_points = shortest.has_value();
        points = shortest.value_or(points);
        left_to_look_at = std::max<qint64>(1 << 20, points / 20);
    }

    void take(const ScanNumbers &scan)
    {
        if (!has_points || !has_counts)
            return;
        if (scan.points.is_known && !has_index) // then the counts may still say how points are shared out
            unfound += std::max(scan.points.value, 0.0) + std::max(scan.flags.value, 0.0);
        Extent extent;
        if (!find(scan, &extent))
            return;
        if (extent.start < last_start)
            findings[MsDoubtKind::FallingScanIndex].add(extent.scan);
        is_in_order = is_in_order && extent.start >= last_end;
        last_start = extent.start;
        last_end = extent.end();
        tally.points_of_scans += extent.length;
    }

    void finish()
    {
        if (!has_points || !has_counts)
            return;
        if (!has_index) {
            if (count > 0 && points > 0 && unfound == double(points))
                findings[MsDoubtKind::NoScanIndex] = {qint64(count), 0};
            return;
        }
        if (!is_in_order || (tally.points_of_scans != points && is_whole))
            look_between();
    }

private:
    // Whether a scan has points, all of them along the axis.
    bool find(const ScanNumbers &scan, Extent *extent)
    {
        if (!scan.points.is_known || !scan.index.is_known) {
            is_whole = false; // nothing is known of the rest
            return false;
        }
        if (!(scan.points.value >= 1.0))
            return false;
        constexpr double largest = std::numeric_limits<qint32>::max();
        const double flags = scan.flags.is_known && scan.flags.value > 0.0 ? scan.flags.value : 0.0;
        const double length = std::trunc(scan.points.value) + std::trunc(flags);
        const double index = scan.index.value;
        if (!(index >= 0.0 && index <= largest && length <= largest
              && std::trunc(index) + length <= double(points))) {
            findings[MsDoubtKind::ScansBeyondEnd].add(scan.scan);
            return false;
        }
        *extent = {qint32(index), quint32(length), qint32(scan.scan)};
        return true;
    }

    // Scans that share points, and points that no scan has.
    void look_between()
    {
        findings[MsDoubtKind::ScansBeyondEnd] = {};
        std::vector<Extent> extents;
        Scans scans(file);
        Extent found;
        for (std::size_t i = 0; i < count; ++i) {
            if (find(scans.at(i), &found))
                extents.push_back(found);
        }
        std::sort(extents.begin(), extents.end(), [](const Extent &one, const Extent &other) {
            return one.start != other.start ? one.start < other.start : one.scan < other.scan;
        });
        MsFinding &overlapping = findings[MsDoubtKind::OverlappingScans];
        qint64 end = 0;
        for (const Extent &extent : extents) {
            if (extent.start < end) {
                const qint64 first = overlapping.count ? overlapping.first : extent.scan;
                overlapping.add(extent.scan);
                overlapping.first = std::min<qint64>(first, extent.scan);
            }
            look_at_gap(end, extent.start);
            end = std::max(end, extent.end());
        }
        if (is_whole)
            look_at_gap(end, points);
    }

    // Looks at the positions from `from` up to `to`, as far as the file has them; at a limited number of
    // them, as a file may claim any.
    void look_at_gap(qint64 from, qint64 to)
    {
        const qint64 end =
            std::min(to, qint64(std::max(masses.stored_length(), intensities.stored_length())));
        for (qint64 i = from; i < end && left_to_look_at > 0; ++i, --left_to_look_at) {
            if (holds_data(std::size_t(i)))
                findings[MsDoubtKind::UnownedPoints].add(i);
        }
    }

    bool holds_data(std::size_t position)
    {
        for (MsColumnWalk *numbers : {&masses, &intensities}) {
            const auto [value, is_known] = numbers->get(position);
            if (is_known && value != 0.0 && !numbers->is_fill(value) && !ms_is_missing(value))
                return true;
        }
        return false;
    }

    MsFileState &file;
    std::size_t count;
    MsTally &tally;
    MsFindings &findings;
    bool has_index;
    bool has_counts;
    bool has_points = false;
    bool is_whole = true;
    bool is_in_order = true;
    qint64 points = std::numeric_limits<qint64>::max();
    qint64 last_start = 0; // of the scan before
    qint64 last_end = 0;
    double unfound = 0.0;
    MsColumnWalk masses{file, MsVar_mass_values};
    MsColumnWalk intensities{file, MsVar_intensity_values};
    qint64 left_to_look_at = 0;
};

// When scans were taken.
class TimesOfScans
{
public:
    TimesOfScans(MsTally &all, Scans &scans, std::size_t scan_count)
        : tally(all), findings(all.found), times(scans.time), count(qint64(scan_count))
    {
        // The way in which a GCxGC run gets its times.
        const MsColumnNumber first = times.get(0);
        MsColumnWalk behind = times;
        const MsColumnNumber last = behind.get(scan_count - 1);
        first_time = first.value;
        interval = (last.value - first.value) / double(scan_count - 1);
        has_interval = can_be(first) && can_be(last) && std::isfinite(interval);
    }

    void take(const ScanNumbers &scan)
    {
        if (!scan.time.is_known)
            return; // a file that is cut off
        const double time = scan.time.value;
        if (!can_be(scan.time)) {
            if (ms_is_missing(time))
                findings[MsDoubtKind::MissingTimes].add(scan.scan);
            else if (!std::isfinite(time))
                findings[MsDoubtKind::BadTimes].add(scan.scan);
            return;
        }
        judge_fall(time);
        if (taken++ == 0)
            earliest = time;
        else
            compare(scan.scan, time);
        if (taken == 2)
            second = time;
        before = time;
        tally.times.add(time);
        if (has_interval
            && std::abs(time - first_time - double(scan.scan) * interval) > std::abs(interval) / 2.0)
            findings[MsDoubtKind::UnevenTimes].add(scan.scan);
    }

    void finish()
    {
        if (!times.is_usable() && count > 0)
            findings[MsDoubtKind::MissingTimes] = {count, 0};
        judge_fall(std::numeric_limits<double>::max());
        constexpr qint64 enough = 10;
        const bool rises = findings[MsDoubtKind::FallingTimes].count == 0
            && findings[MsDoubtKind::RestartingTimes].count == 0;
        // A detector may be off for a while, but not at the end.
        constexpr double longest_pause = 10.0;
        const double others = before - earliest - longest_step;
        const double most = longest_at == count - 1 ? others : longest_pause * others;
        if (rises && taken >= enough && longest_step > most)
            findings[MsDoubtKind::TimeGap].add(longest_at);
        constexpr double far = 3.0; // in steps between the others
        if (rises && taken >= enough && first_time == 0.0 && earliest == 0.0 && longest_at == 1
            && second * double(taken - 2) > far * (before - second))
            tally.second_time = second;
    }

private:
    bool can_be(const MsColumnNumber &time) const
    {
        return time.is_known && std::isfinite(time.value) && !ms_is_missing(time.value)
            && !times.is_fill(time.value);
    }

    void compare(qint64 scan, double time)
    {
        if (time < before) {
            fallen_scan = scan;
            fallen_from = before;
            fallen_to = time;
        } else if (time == before) {
            findings[MsDoubtKind::EqualTimes].add(scan);
        } else if (time - before > longest_step) {
            longest_step = time - before;
            longest_at = scan;
        }
    }

    // With the time behind it: one that is low by itself doesn't begin a run anew.
    void judge_fall(double next)
    {
        if (fallen_scan == -1)
            return;
        const bool begins_anew = next < fallen_from && fallen_to <= earliest;
        findings[begins_anew ? MsDoubtKind::RestartingTimes : MsDoubtKind::FallingTimes].add(fallen_scan);
        fallen_scan = -1;
    }

    MsTally &tally;
    MsFindings &findings;
    MsColumnWalk &times;
    qint64 count;
    bool has_interval = false;
    double first_time = 0.0;
    double interval = 0.0;
    qint64 taken = 0;
    double earliest = 0.0;
    double second = 0.0;
    double before = 0.0;
    double longest_step = 0.0;
    qint64 longest_at = -1;
    qint64 fallen_scan = -1; // not judged yet
    double fallen_from = 0.0;
    double fallen_to = 0.0;
};

} // namespace

void ms_look_at_scans(MsFileState &file)
{
    if (file.tally.knows_scans)
        return;
    file.tally.knows_scans = true;
    const std::size_t count = scans_looked_at(file);
    if (count == 0)
        return;
    Scans scans(file);
    CountsOfScans counts(scans, file.tally.found);
    PointsOfScans points(file, scans, count);
    TimesOfScans times(file.tally, scans, count);
    // The spectra of a library come in any order.
    const bool has_order = file.experiment_type != MsLibrarySpectrum;
    for (std::size_t i = 0; i < count; ++i) {
        const ScanNumbers scan = scans.at(i);
        counts.take(scan);
        points.take(scan);
        if (has_order)
            times.take(scan);
    }
    counts.finish(count);
    points.finish();
    if (has_order)
        times.finish();
}

void ms_look_at_totals(MsFileState &file)
{
    if (file.tally.knows_totals)
        return;
    file.tally.knows_totals = true;
    MsFindings &findings = file.tally.found;
    const std::size_t scans = scans_looked_at(file);
    if (file.variables[MsVar_total_intensity] == -1 && scans > 0) {
        findings[MsDoubtKind::NoIntensities] = {qint64(scans), 0};
        return;
    }
    MsColumnWalk totals(file, MsVar_total_intensity);
    for (std::size_t i = 0; i < scans; ++i) {
        const auto [total, is_known] = totals.get(i);
        if (!is_known)
            break;
        if (!std::isfinite(total) || ms_is_missing(total) || totals.is_fill(total))
            findings[MsDoubtKind::BadTotals].add(qint64(i));
    }
}

std::pair<MsFinding, qint32> ms_look_at_groups(MsFileState &file)
{
    MsFinding finding;
    qint32 groups = 0;
    qint32 width = 0;
    const MsFileRecord before = file;
    if (ms_inquire_groups(file.ncid, &groups, &width) == -1 || groups == 0)
        return {};
    MsColumnWalk counts(file, MsVar_group_mass_count);
    MsColumnWalk starts(file, MsVar_group_starting_scan);
    const qint32 scans = file.dimensions[MsDim_scan_number].size;
    const auto is_odd = [](double number, double most) {
        return !ms_is_missing(number) && !(number >= 0.0 && number <= most);
    };
    for (std::size_t i = 0; i < std::max(counts.length(), starts.length()); ++i) {
        const MsColumnNumber count = counts.get(i);
        const MsColumnNumber start = starts.get(i);
        if (!count.is_known && !start.is_known)
            break;
        if (is_odd(count.value, width) || is_odd(start.value, scans))
            finding.add(qint64(i));
    }
    // Who reads groups looks their variables up first; until then they stay unknown.
    for (const MsVariableRow &row : ms_group_table)
        file.variables[row.slot] = before.variables[row.slot];
    return {finding, groups};
}
