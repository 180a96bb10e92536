// What the numbers of all scans say about a run: where their points lie, and what they come to.

#include "doubtscans_p.h"

#include "columnwalk_p.h"
#include "doubttimes_p.h"
#include "filestate_p.h"
#include "wholerun_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace {

// How many scans are looked at. A file of the newer kinds may claim any number that was never written.
std::size_t scans_looked_at(const MsFileState &file)
{
    constexpr qint32 always = 1 << 22;
    const MsDimension &scans = file.dimensions[MsDim_scan_number];
    const qint32 count = scans.id == -1 ? 0 : std::max(scans.size, 0);
    return std::size_t(file.data.can_hold(quint64(count) * MsTightestPacking) ? count
                                                                              : std::min(count, always));
}

// What a file says about one scan.
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

    // Scans up to the last one of which the file has a number. Of those behind it nothing is known.
    std::size_t stored() const
    {
        return std::max(
            {index.stored_length(), points.stored_length(), flags.stored_length(), time.stored_length()});
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
        for (std::size_t i = 0; i < std::min(count, scans.stored()); ++i) {
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

// The intensities of the scans of a trace, which nobody reads otherwise. A trace has a point for each
// scan; to add up many more would cost more than the import.
class SumsOfScans
{
public:
    SumsOfScans(MsFileState &file, std::size_t scans)
        : tally(file.tally), index(file, MsVar_scan_index), counts(file, MsVar_point_count),
          intensities(file, MsVar_intensity_values)
    {
        constexpr qint64 most_points = 8; // of a scan
        is_usable = tally.points_of_scans > 0 && tally.points_of_scans <= qint64(scans) * most_points;
    }

    void compare(std::size_t scan, double total)
    {
        if (!is_usable)
            return;
        const MsColumnNumber start = index.get(scan);
        const MsColumnNumber count = counts.get(scan);
        const auto length = double(intensities.length());
        if (!start.is_known || !count.is_known || !(start.value >= 0.0 && count.value >= 1.0)
            || start.value + count.value > length)
            return;
        double sum = 0.0;
        const auto first = std::size_t(start.value);
        for (std::size_t i = first; i < first + std::size_t(count.value); ++i) {
            const MsColumnNumber intensity = intensities.get(i);
            if (!intensity.is_known || intensities.is_fill(intensity.value))
                return;
            sum += intensity.value;
        }
        const MsClaims &claims = tally.claims;
        sum = sum * claims.intensity_scale + std::trunc(count.value) * claims.intensity_offset;
        if (std::isfinite(sum))
            tally.trace_totals.compare(qint64(scan), total, sum);
    }

private:
    MsTally &tally;
    MsColumnWalk index;
    MsColumnWalk counts;
    MsColumnWalk intensities;
    bool is_usable;
};

} // namespace

void ms_look_at_scans(MsFileState &file)
{
    if (file.tally.knows_scans)
        return;
    file.tally.knows_scans = true;
    if (file.dimensions[MsDim_scan_number].id == -1)
        return;
    const std::size_t count = scans_looked_at(file); // if none, points may still be there
    Scans scans(file);
    CountsOfScans counts(scans, file.tally.found);
    PointsOfScans points(file, scans, count);
    // One scan behind the stored ones stands for all of them: a file may claim any number.
    const std::size_t known = std::min(count, scans.stored() + 1);
    for (std::size_t i = 0; i < known; ++i) {
        const ScanNumbers scan = scans.at(i);
        counts.take(scan);
        points.take(scan);
    }
    counts.finish(count);
    points.finish();
    if (count > 0)
        ms_look_at_times(file, count);
}

void ms_look_at_totals(MsFileState &file)
{
    if (file.tally.knows_totals)
        return;
    file.tally.knows_totals = true;
    MsFindings &findings = file.tally.found;
    const std::size_t scans = scans_looked_at(file);
    if (scans == 0)
        return;
    if (file.variables[MsVar_total_intensity] == -1) {
        findings[MsDoubtKind::NoIntensities] = {qint64(scans), 0};
        return;
    }
    // Totals and times come together or not at all.
    const qint32 count = file.dimensions[MsDim_scan_number].size;
    if (!ms_is_trace(file, MsVar_total_intensity, count)
        || !ms_is_trace(file, MsVar_scan_acquisition_time, count)) {
        findings[MsDoubtKind::BadTotals] = {qint64(scans), 0};
        return;
    }
    SumsOfScans sums(file, scans);
    MsColumnWalk totals(file, MsVar_total_intensity);
    for (std::size_t i = 0; i < std::min(scans, totals.stored_length()); ++i) {
        const auto [total, is_known] = totals.get(i);
        if (!is_known)
            continue;
        if (!ms_is_given(total) || totals.is_fill(total))
            findings[MsDoubtKind::BadTotals].add(qint64(i));
        else
            sums.compare(i, total);
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
    for (std::size_t i = 0; i < std::max(counts.stored_length(), starts.stored_length()); ++i) {
        const MsColumnNumber count = counts.get(i);
        const MsColumnNumber start = starts.get(i);
        if (is_odd(count.value, width) || is_odd(start.value, scans))
            finding.add(qint64(i));
    }
    // Who reads groups looks their variables up first; until then they stay unknown.
    for (const MsVariableRow &row : ms_group_table)
        file.variables[row.slot] = before.variables[row.slot];
    return {finding, groups};
}
