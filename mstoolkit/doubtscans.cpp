// What the numbers of all scans say about a run: where points lie, and when they were taken.

#include "doubts_p.h"
#include "filestate_p.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr std::size_t numbers_at_once = 1024;

// A variable of one dimension, number by number, read in stretches.
class Numbers
{
public:
    Numbers(MsFileState &state, int slot_) : file(state), slot(slot_)
    {
        const MsShape *shape = file.column(slot).shape();
        if (!shape || shape->rank() != 1 || !ms_is_number(shape->type))
            return;
        kind = shape->type;
        claimed = shape->length[0];
        stored = file.data.count_stored(file.variables[slot], claimed);
    }

    bool exists() const { return kind != NC_NAT; }
    std::size_t length() const { return claimed; }
    bool is_fill(double number) const { return ms_is_fill(kind, number); }

    // False for a number that the file lacks or that can't be read.
    bool get(std::size_t place, double *number)
    {
        if (place >= stored)
            return false;
        if (place < first || place - first >= numbers.size()) {
            first = place / numbers_at_once * numbers_at_once;
            const std::size_t count = std::min(numbers_at_once, stored - first);
            numbers.resize(count);
            if (file.data.read({file.variables[slot], 1, &first, &count}, NC_DOUBLE, numbers.data())
                != MsFetch::Read) {
                stored = 0;
                return false;
            }
        }
        *number = numbers[place - first];
        return true;
    }

private:
    MsFileState &file;
    int slot;
    nc_type kind = NC_NAT;
    std::size_t claimed = 0;
    std::size_t stored = 0;
    std::size_t first = 0;
    std::vector<double> numbers;
};

bool is_missing(double number)
{
    return number == MsMissingDouble;
}

// How many scans are looked at. A file of the newer kinds may claim any number that was never written.
std::size_t scans_looked_at(const MsFileState &file)
{
    constexpr quint64 always = 1 << 22;
    const MsDimension &scans = file.dimensions[MsDim_scan_number];
    const quint64 count = scans.id == -1 ? 0 : quint64(std::max(scans.size, 0));
    return std::size_t(std::min(count, std::max(always, file.data.most_bytes() / 1000)));
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
    PointsOfScans(MsFileState &state, std::size_t scan_count, MsFindings *found)
        : file(state), scans(scan_count), findings(*found)
    {
        points = std::numeric_limits<qint64>::max();
        for (const int slot : {MsVar_mass_values, MsVar_time_values, MsVar_intensity_values}) {
            const Numbers numbers(file, slot);
            if (numbers.exists())
                points = std::min(points, qint64(numbers.length()));
            has_points = has_points || numbers.exists();
        }
    }

    void look()
    {
        const bool has_counts = Numbers(file, MsVar_point_count).exists();
        if (!has_counts || !has_points)
            return;
        if (!Numbers(file, MsVar_scan_index).exists()) {
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
        if (!in_order || (covered != points && is_whole))
            look_between();
    }

private:
    // Calls `use` with the extent of each scan that has points, all of them within the axis.
    template <class Use> void walk(Use &&use)
    {
        Numbers indices(file, MsVar_scan_index);
        Numbers counts(file, MsVar_point_count);
        Numbers flags(file, MsVar_flag_count);
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
        Numbers counts(file, MsVar_point_count);
        Numbers flags(file, MsVar_flag_count);
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
        for (Numbers *numbers : {&masses, &intensities}) {
            double number = 0.0;
            if (numbers->get(position, &number) && number != 0.0 && !numbers->is_fill(number)
                && !is_missing(number))
                return true;
        }
        return false;
    }

    MsFileState &file;
    std::size_t scans;
    MsFindings &findings;
    bool has_points = false;
    bool is_whole = true;
    qint64 points = 0;
    Numbers masses{file, MsVar_mass_values};
    Numbers intensities{file, MsVar_intensity_values};
    qint64 left_to_look_at = std::max<qint64>(1 << 20, points / 20);
};

// Counts that can't be, and numbers of scans that were never written.
void look_at_counts(MsFileState &file, std::size_t scans, MsFindings &findings)
{
    Numbers counts(file, MsVar_point_count);
    Numbers flags(file, MsVar_flag_count);
    Numbers times(file, MsVar_scan_acquisition_time);
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
    TimesOfScans(MsFileState &state, std::size_t scan_count, MsFindings *found)
        : scans(scan_count), findings(*found), times(state, MsVar_scan_acquisition_time)
    {
    }

    void look()
    {
        if (scans == 0)
            return;
        if (!times.exists()) {
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
        return times.get(scan, time) && std::isfinite(*time) && !is_missing(*time)
            && !times.is_fill(*time);
    }

    void judge_missing(std::size_t scan)
    {
        double time = 0.0;
        if (!times.get(scan, &time))
            return; // a file that is cut off
        if (is_missing(time))
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
    MsFindings &findings;
    Numbers times;
    bool has_ends = false;
    double first_time = 0.0;
    double interval = 0.0;
    qint64 taken = 0;
    double earliest = 0.0;
    double before = 0.0;
    double longest_step = 0.0;
    qint64 longest_at = -1;
};

// The trace of a run without masses is all that a reader gets of it.
void look_at_totals(MsFileState &file, std::size_t scans, MsFindings &findings)
{
    if (file.has_mass_values || scans == 0)
        return;
    Numbers totals(file, MsVar_total_intensity);
    if (file.variables[MsVar_total_intensity] == -1) {
        findings[MsDoubtKind::NoIntensities] = {qint64(scans), 0};
        return;
    }
    double total = 0.0;
    for (std::size_t i = 0; i < scans && totals.get(i, &total); ++i) {
        if (!std::isfinite(total) || is_missing(total) || totals.is_fill(total))
            findings[MsDoubtKind::BadTotals].add(qint64(i));
    }
}

} // namespace

bool ms_is_fill(nc_type type, double number)
{
    constexpr double tolerance = 1e-5; // for the rounded number of the manuals
    switch (type) {
    case NC_SHORT:
        return number == NC_FILL_SHORT;
    case NC_INT:
        return number == NC_FILL_INT;
    case NC_FLOAT:
    case NC_DOUBLE:
        return std::abs(number - NC_FILL_DOUBLE) <= tolerance * NC_FILL_DOUBLE;
    default:
        return false;
    }
}

void ms_look_at_scans(MsFileState &file)
{
    if (file.tally.knows_scans)
        return;
    file.tally.knows_scans = true;
    const std::size_t scans = scans_looked_at(file);
    MsFindings &findings = file.tally.scans;
    look_at_counts(file, scans, findings);
    PointsOfScans(file, scans, &findings).look();
    // The spectra of a library come in any order.
    if (file.experiment_type != MsLibrarySpectrum)
        TimesOfScans(file, scans, &findings).look();
    look_at_totals(file, scans, findings);
}
