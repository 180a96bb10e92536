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

// The positions of the points of a scan, and of the flags behind them.
struct Extent {
    qint32 start;
    quint32 length;
    qint32 scan;

    qint64 end() const { return qint64(start) + length; }
};

class PointsOfScans
{
public:
    PointsOfScans(MsFileState &state, std::size_t scan_count)
        : file(state), scans(scan_count), tally(state.tally), findings(tally.found)
    {
        points = std::numeric_limits<qint64>::max();
        for (const int slot : {MsVar_mass_values, MsVar_time_values, MsVar_intensity_values}) {
            const MsColumnWalk numbers(file, slot);
            if (numbers.is_usable())
                points = std::min(points, qint64(numbers.length()));
            has_points = has_points || numbers.is_usable();
        }
    }

    void look()
    {
        const bool has_counts = MsColumnWalk(file, MsVar_point_count).is_usable();
        if (!has_counts || !has_points)
            return;
        if (!MsColumnWalk(file, MsVar_scan_index).is_usable()) {
            look_without_index();
            return;
        }
        qint64 start = 0;
        qint64 end = 0;
        qint64 covered = 0;
        bool in_order = true;
        walk([&](const Extent &extent) {
            if (extent.start < start)
                findings[MsDoubtKind::FallingScanIndex].add(extent.scan);
            in_order = in_order && extent.start >= end;
            start = extent.start;
            end = extent.end();
            covered += extent.length;
        });
        tally.points_of_scans = covered;
        if (!in_order || (covered != points && is_whole))
            look_between();
    }

private:
    // Calls `use` with the extent of each scan that has points, all of them within the axis.
    template <class Use> void walk(Use &&use)
    {
        MsColumnWalk indices(file, MsVar_scan_index);
        MsColumnWalk counts(file, MsVar_point_count);
        MsColumnWalk flags(file, MsVar_flag_count);
        MsFinding beyond;
        is_whole = true;
        for (std::size_t i = 0; i < scans; ++i) {
            double count = 0.0;
            double index = 0.0;
            double flag_count = 0.0;
            if (!counts.get(i, &count) || !indices.get(i, &index)) {
                is_whole = false; // nothing is known of the rest
                break;
            }
            if (!(count >= 1.0))
                continue;
            if (!flags.get(i, &flag_count) || !(flag_count > 0.0))
                flag_count = 0.0;
            constexpr double largest = std::numeric_limits<qint32>::max();
            const double length = std::floor(count) + std::floor(flag_count);
            if (!(index >= 0.0 && index <= largest && length <= largest
                  && std::floor(index) + length <= double(points))) {
                beyond.add(qint64(i));
                continue;
            }
            use(Extent{qint32(index), quint32(length), qint32(i)});
        }
        findings[MsDoubtKind::ScansBeyondEnd] = beyond;
    }

    // Without an index no scan can be found, though the counts may say how the points are shared out.
    void look_without_index()
    {
        MsColumnWalk counts(file, MsVar_point_count);
        MsColumnWalk flags(file, MsVar_flag_count);
        double sum = 0.0;
        for (std::size_t i = 0; i < scans; ++i) {
            double count = 0.0;
            double flag_count = 0.0;
            if (!counts.get(i, &count))
                return;
            flags.get(i, &flag_count);
            sum += std::max(count, 0.0) + std::max(flag_count, 0.0);
        }
        if (scans > 0 && points > 0 && sum == double(points))
            findings[MsDoubtKind::NoScanIndex] = {qint64(scans), 0};
    }

    // Scans that share points, and points that no scan has.
    void look_between()
    {
        std::vector<Extent> extents;
        walk([&](const Extent &extent) { extents.push_back(extent); });
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

    // Positions from `from` up to `to`. Of a file with endless room between its scans some have to do.
    void look_at_gap(qint64 from, qint64 to)
    {
        for (qint64 i = from; i < to && left_to_look_at > 0; ++i, --left_to_look_at) {
            if (holds_data(std::size_t(i)))
                findings[MsDoubtKind::UnownedPoints].add(i);
        }
    }

    bool holds_data(std::size_t position)
    {
        for (MsColumnWalk *numbers : {&masses, &intensities}) {
            double number = 0.0;
            if (numbers->get(position, &number) && number != 0.0 && !numbers->is_fill(number)
                && !ms_is_missing(number))
                return true;
        }
        return false;
    }

    MsFileState &file;
    std::size_t scans;
    MsTally &tally;
    MsFindings &findings;
    bool has_points = false;
    bool is_whole = true;
    qint64 points = 0;
    MsColumnWalk masses{file, MsVar_mass_values};
    MsColumnWalk intensities{file, MsVar_intensity_values};
    qint64 left_to_look_at = std::max<qint64>(1 << 20, points / 20);
};

// Counts that can't be, and numbers of scans that were never written.
void look_at_counts(MsFileState &file, std::size_t scans, MsFindings &findings)
{
    MsColumnWalk counts(file, MsVar_point_count);
    MsColumnWalk flags(file, MsVar_flag_count);
    MsColumnWalk times(file, MsVar_scan_acquisition_time);
    for (std::size_t i = 0; i < scans; ++i) {
        double count = 0.0;
        double flag_count = 0.0;
        double time = 0.0;
        const bool has_count = counts.get(i, &count);
        if ((has_count && counts.is_fill(count)) || (times.get(i, &time) && times.is_fill(time)))
            findings[MsDoubtKind::UnwrittenScans].add(qint64(i));
        else if (has_count && !(count >= 0.0))
            findings[MsDoubtKind::BadCounts].add(qint64(i));
        if (flags.get(i, &flag_count) && !(flag_count >= 0.0) && !flags.is_fill(flag_count))
            findings[MsDoubtKind::BadFlagCounts].add(qint64(i));
    }
    // Some writers leave them out altogether.
    if (findings[MsDoubtKind::BadFlagCounts].count == qint64(scans))
        findings[MsDoubtKind::BadFlagCounts] = MsFinding();
}

class TimesOfScans
{
public:
    TimesOfScans(MsFileState &state, std::size_t scan_count)
        : scans(scan_count), tally(state.tally), findings(tally.found),
          times(state, MsVar_scan_acquisition_time)
    {
    }

    void look()
    {
        if (scans == 0)
            return;
        if (!times.is_usable()) {
            findings[MsDoubtKind::MissingTimes] = {qint64(scans), 0};
            return;
        }
        double last_time = 0.0;
        has_ends = get(scans - 1, &last_time) && get(0, &first_time);
        interval = (last_time - first_time) / double(scans - 1);

        double time = 0.0;
        bool known = get(0, &time);
        for (std::size_t i = 0; i < scans; ++i) {
            double next = 0.0;
            const bool knows_next = i + 1 < scans && get(i + 1, &next);
            if (known)
                take(i, time, knows_next ? next : std::numeric_limits<double>::max());
            else
                judge_missing(i);
            time = next;
            known = knows_next;
        }
        finish();
    }

private:
    // Only times that can be.
    bool get(std::size_t scan, double *time)
    {
        return times.get(scan, time) && std::isfinite(*time) && !ms_is_missing(*time)
            && !times.is_fill(*time);
    }

    void judge_missing(std::size_t scan)
    {
        double time = 0.0;
        if (!times.get(scan, &time))
            return; // a file that is cut off
        if (ms_is_missing(time))
            findings[MsDoubtKind::MissingTimes].add(qint64(scan));
        else if (!std::isfinite(time))
            findings[MsDoubtKind::BadTimes].add(qint64(scan));
    }

    void take(std::size_t scan, double time, double next)
    {
        if (taken++ > 0)
            compare(scan, time, next);
        else
            earliest = time;
        before = time;
        tally.least_time = std::min(tally.least_time, time);
        tally.most_time = std::max(tally.most_time, time);
        if (has_ends && std::isfinite(interval)
            && std::abs(time - first_time - double(scan) * interval) > std::abs(interval) / 2.0)
            findings[MsDoubtKind::UnevenTimes].add(qint64(scan));
    }

    void compare(std::size_t scan, double time, double next)
    {
        if (time < before) {
            const bool goes_on = next < before && time <= earliest;
            findings[goes_on ? MsDoubtKind::RestartingTimes : MsDoubtKind::FallingTimes].add(
                qint64(scan));
        } else if (time == before) {
            findings[MsDoubtKind::EqualTimes].add(qint64(scan));
        } else if (time - before > longest_step) {
            longest_step = time - before;
            longest_at = qint64(scan);
        }
    }

    void finish()
    {
        constexpr qint64 enough = 10;
        const bool rises = findings[MsDoubtKind::FallingTimes].count == 0
            && findings[MsDoubtKind::RestartingTimes].count == 0;
        if (rises && taken >= enough && longest_step > (before - earliest) / 2.0)
            findings[MsDoubtKind::TimeGap].add(longest_at);
    }

    std::size_t scans;
    MsTally &tally;
    MsFindings &findings;
    MsColumnWalk times;
    bool has_ends = false;
    double first_time = 0.0;
    double interval = 0.0;
    qint64 taken = 0;
    double earliest = 0.0;
    double before = 0.0;
    double longest_step = 0.0;
    qint64 longest_at = -1;
};

} // namespace

void ms_look_at_scans(MsFileState &file)
{
    if (file.tally.knows_scans)
        return;
    file.tally.knows_scans = true;
    const std::size_t scans = scans_looked_at(file);
    look_at_counts(file, scans, file.tally.found);
    PointsOfScans(file, scans).look();
    // The spectra of a library come in any order.
    if (file.experiment_type != MsLibrarySpectrum)
        TimesOfScans(file, scans).look();
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
    double total = 0.0;
    for (std::size_t i = 0; i < scans && totals.get(i, &total); ++i) {
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
        double count = 0.0;
        double start = 0.0;
        const bool is_known = counts.get(i, &count);
        if (!starts.get(i, &start) && !is_known)
            break;
        if (is_odd(count, width) || is_odd(start, scans))
            finding.add(qint64(i));
    }
    // Who reads groups looks their variables up first; until then they stay unknown.
    for (const MsVariableRow &row : ms_group_table)
        file.variables[row.slot] = before.variables[row.slot];
    return {finding, groups};
}
