// The codes and sentences of the doubts.

#include "doubttexts_p.h"

#include <cstddef>
#include <iterator>

namespace {

// clang-format off
constexpr MsDoubtRow doubt_rows[] = {
    {MsDoubtKind::CutOff, "cut-off", true, true,
     "\"%1\" is cut off: %2 of %3 bytes are missing at its end."},
    {MsDoubtKind::Unfinished, "unfinished", true, true,
     "\"%1\" is longer than its header says, which counts %3 [record|records] and leaves out %2 behind them: its writer was interrupted."},
    {MsDoubtKind::TrailingBytes, "trailing-bytes", false, true,
     "\"%1\" has %2 [byte|bytes] behind the end that its header gives."},
    {MsDoubtKind::ReadFailed, "read-failed", true, false,
     "The system couldn't read \"%1\" %2 [time|times]: %3."},
    {MsDoubtKind::ChangedFile, "changed-file", true, false,
     "\"%1\" was changed while it was open: what was read may be of two versions of it."},
    {MsDoubtKind::DashedNames, "dashed-names", true, true,
     "In \"%1\", %4 [is|are] spelt with dashes in place of underscores and so [isn't|aren't] read."},
    {MsDoubtKind::UnwrittenScans, "unwritten-scans", true, true,
     "In \"%1\", %2 of %3 scans [was|were] never written: [its|their] point_count or time is the fill value; the first is %4."},
    {MsDoubtKind::BadCounts, "bad-counts", true, true,
     "In \"%1\", %2 of %3 scans [has|have] a point_count below 0 or none; the first is %4."},
    {MsDoubtKind::BadFlagCounts, "bad-flag-counts", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a flag_count below 0 or none; the first is %4."},
    {MsDoubtKind::NoScanIndex, "no-scan-index", true, true,
     "In \"%1\", the points of %2 [scan|scans] can't be found: scan_index is missing or unusable, though point_count adds up to all points."},
    {MsDoubtKind::FallingScanIndex, "falling-scan-index", false, true,
     "In \"%1\", %2 of %3 scans [has|have] [its|their] points before those of the scan before: they were stored in another order, or scan_index is wrong; the first is %4."},
    {MsDoubtKind::OverlappingScans, "overlapping-scans", false, true,
     "In \"%1\", %2 of %3 scans [begins|begin] among the points of another; the first is %4."},
    {MsDoubtKind::ScansBeyondEnd, "scans-beyond-end", true, true,
     "In \"%1\", %2 of %3 scans [begins|begin] before the first point or [ends|end] behind the last one; the first is %4."},
    {MsDoubtKind::UnownedPoints, "unowned-points", false, true,
     "In \"%1\", %2 [position|positions] of the point axis [holds|hold] data that no scan has; the first is %4."},
    {MsDoubtKind::UnreadableScans, "unreadable-scans", true, false,
     "In \"%1\", %2 of %3 scans can't be read; the first is %4: %5."},
    {MsDoubtKind::UnreadableMasses, "unreadable-masses", true, true,
     "In \"%1\", the masses can't be read, so that only the total intensity of %2 [scan|scans] is left."},
    {MsDoubtKind::MissingMasses, "missing-masses", true, true,
     "\"%1\" has %2 [point|points] in its scans, and neither masses nor times for them."},
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
    {MsDoubtKind::MergedMasses, "merged-masses", false, true,
     "In \"%1\", the scale_factor of mass_values, %4, leaves fewer than two masses, though those stored go from %3."},
    {MsDoubtKind::SingleMass, "single-mass", false, true,
     "In \"%1\", all %2 points have the same mass, %4, so that only the total intensity of %3 scans is left."},
    {MsDoubtKind::WrongTotals, "wrong-totals", false, false,
     "In \"%1\", the total intensity of %2 of %3 scans isn't the sum of [its|their] intensities; the first is %4."},
    {MsDoubtKind::BadMasses, "bad-masses", false, false,
     "In \"%1\", %2 [mass is|masses are] infinite or no number; the first is in %4."},
    {MsDoubtKind::FillMasses, "fill-masses", false, false,
     "In \"%1\", %2 [mass was|masses were] never written: they are the fill value; the first is in %4."},
    {MsDoubtKind::NegativeMasses, "negative-masses", false, false,
     "In \"%1\", %2 [mass is|masses are] below 0; the first is in %4."},
    {MsDoubtKind::ZeroMasses, "zero-masses", false, false,
     "In \"%1\", %2 [mass is|masses are] 0; the first is in %4."},
    {MsDoubtKind::OddMasses, "odd-masses", false, true,
     "In \"%1\", %2 of %3 different masses [isn't a multiple|aren't multiples] of %4, as all others are."},
    {MsDoubtKind::EqualMasses, "equal-masses", false, false,
     "In \"%1\", the masses of %2 of %3 scans are all the same; the first is %4."},
    {MsDoubtKind::UnorderedMasses, "unordered-masses", false, false,
     "In \"%1\", the masses of %2 of %3 scans don't rise, as those of the others do; the first is %4."},
    {MsDoubtKind::BadIntensities, "bad-intensities", false, false,
     "In \"%1\", %2 [intensity is|intensities are] infinite or no number; the first is in %4."},
    {MsDoubtKind::FillIntensities, "fill-intensities", false, false,
     "In \"%1\", %2 [intensity was|intensities were] never written: they are the fill value; the first is in %4."},
    {MsDoubtKind::UnplacedPoints, "unplaced-points", false, false,
     "In \"%1\", %2 [point has a mass|points have masses] without a place in the table of masses; the first is in %4."},
    {MsDoubtKind::MissingTimes, "missing-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] no time; the first is %4."},
    {MsDoubtKind::BadTimes, "bad-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a time that is infinite or no number; the first is %4."},
    {MsDoubtKind::NegativeTimes, "negative-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a time below 0; the first is %4."},
    {MsDoubtKind::ZeroTime, "zero-time", false, true,
     "In \"%1\", the first scan has the time 0, though the others follow each other closely from %4 on."},
    {MsDoubtKind::RestartingTimes, "restarting-times", false, true,
     "In \"%1\", the times of the scans begin anew %2 [time|times], first at %4."},
    {MsDoubtKind::FallingTimes, "falling-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] a time before that of the scan before; the first is %4."},
    {MsDoubtKind::EqualTimes, "equal-times", false, true,
     "In \"%1\", %2 of %3 scans [has|have] the time of the scan before; the first is %4."},
    {MsDoubtKind::TimeGap, "time-gap", false, true,
     "In \"%1\", the step in time to %4 is longer than all others together."},
    {MsDoubtKind::OddTimes, "odd-times", false, true,
     "In \"%1\", the step in time to %2 of %3 scans isn't that of nearly all others, and no pause explains it; the first is %4."},
    {MsDoubtKind::UnevenTimes, "uneven-times", false, true,
     "In \"%1\", the scans aren't evenly spaced in time, as those of a GCxGC run have to be: %2 of %3 [is|are] more than a step out of place; the first is %4."},
    {MsDoubtKind::MassFormat, "mass-format", false, true,
     "In \"%1\", raw_data_mass_format says %4, though the masses are stored as %3."},
    {MsDoubtKind::IntensityFormat, "intensity-format", false, true,
     "In \"%1\", raw_data_intensity_format says %4, though the intensities are stored as %3."},
    {MsDoubtKind::TimeUnit, "time-units", false, true,
     "In \"%1\", the unit of time is %4, which isn't known: times are handed over as they are stored."},
    {MsDoubtKind::TimeRange, "time-range", false, true,
     "In \"%1\", the times of the scans go from %3, beyond global_time_min and global_time_max, which say %4."},
    {MsDoubtKind::AcquisitionDate, "acquisition-date", false, true,
     "In \"%1\", experiment_date_time_stamp says %4, which %3: the date that is handed over is wrong."},
    {MsDoubtKind::StartingScan, "starting-scan", false, true,
     "In \"%1\", starting_scan_number says %4, though the actual_scan_number of the first scan is %3."},
    {MsDoubtKind::GroupCounts, "group-counts", false, true,
     "In \"%1\", %2 of %3 groups [has|have] more masses than there is room for, or [begins|begin] at a scan that isn't there; the first is %4."},
    {MsDoubtKind::MassRange, "mass-range", false, false,
     "In \"%1\", %2 of %3 scans [has|have] masses beyond global_mass_min and global_mass_max; the first is %4."},
    {MsDoubtKind::IntensityRange, "intensity-range", false, false,
     "In \"%1\", %2 of %3 scans [has|have] intensities beyond global_intensity_min and global_intensity_max; the first is %4."},
    {MsDoubtKind::ScanMassRange, "scan-mass-range", false, false,
     "In \"%1\", the masses of %2 of %3 scans aren't those that mass_range_min and mass_range_max say; the first is %4."},
    {MsDoubtKind::ScanTimeRange, "scan-time-range", false, false,
     "In \"%1\", the point times of %2 of %3 scans aren't those that time_range_min and time_range_max say; the first is %4."},
};
// clang-format on
static_assert(std::size(doubt_rows) == std::size_t(MsDoubtKind::Count), "a row for each kind");

} // namespace

const MsDoubtRow &ms_doubt_row(MsDoubtKind kind)
{
    return doubt_rows[std::size_t(kind)];
}

QString ms_doubt_text(const MsDoubtRow &row, qint64 count, const QStringList &arguments)
{
    QString result;
    bool is_taken = true; // the part of [one|many] that is being read
    for (const char *at = row.sentence; *at; ++at) {
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
