// When the scans of a run were taken, and what of it can't be right.

#include "doubttimes_p.h"

#include "columnwalk_p.h"
#include "filestate_p.h"
#include "tally_p.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr qint64 enough = 10; // scans, to tell an odd one from the others

bool can_be(const MsColumnWalk &times, const MsColumnNumber &time)
{
    return time.is_known && ms_is_given(time.value) && !times.is_fill(time.value);
}

// The step from a scan to the next one that most scans have; 0 where none rises. A sample will do.
double usual_step(MsColumnWalk times, std::size_t count)
{
    constexpr std::size_t stretches = 8;
    constexpr std::size_t stretch = 512;
    std::vector<double> steps;
    const std::size_t gap = std::max(stretch, count / stretches);
    for (std::size_t first = 0; first < count; first += gap) {
        MsColumnNumber before = times.get(first);
        for (std::size_t i = first + 1; i < std::min(first + stretch, count); ++i) {
            const MsColumnNumber time = times.get(i);
            if (can_be(times, before) && can_be(times, time) && time.value > before.value)
                steps.push_back(time.value - before.value);
            before = time;
        }
    }
    if (steps.empty())
        return 0.0;
    const auto middle = steps.begin() + qint64(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

// Times that several scans share. Those that were rounded to a coarse step have such; the next time then
// follows at the usual step. Where a time was lost, the step behind it is as long as two.
class EqualTimes
{
public:
    EqualTimes(MsFindings &found, double step) : finding(found[MsDoubtKind::EqualTimes]), usual(step) { }

    void add(qint64 scan)
    {
        if (length++ == 0)
            first = scan;
    }

    // The next time is another one.
    void end(double step)
    {
        constexpr double slack = 1.5;
        if (length == 0)
            return;
        if (step > 0.0 && step <= slack * usual)
            round();
        else
            doubt();
    }

    void finish()
    {
        if (length > 0 && length <= longest + 1 && rounded.count > 0)
            round();
        else if (length > 0)
            doubt();
        constexpr qint64 few = 3;
        if (rounded.count >= few || rounded.count == 0)
            return;
        finding.add(rounded);
    }

private:
    void round()
    {
        rounded.add(first, length);
        longest = std::max(longest, length);
        length = 0;
    }

    void doubt()
    {
        finding.add(first, length);
        length = 0;
    }

    MsFinding &finding;
    const double usual;
    qint64 first = -1; // of those that aren't judged yet
    qint64 length = 0;
    MsFinding rounded;
    qint64 longest = 0;
};

class Times
{
public:
    Times(MsFileState &file, std::size_t scans)
        : tally(file.tally), findings(file.tally.found), times(file, MsVar_scan_acquisition_time),
          count(scans), stored(std::min(scans, times.stored_length())), usual(usual_step(times, scans)),
          equal(findings, usual)
    {
        // The way in which a GCxGC run gets its times.
        MsColumnWalk ends = times;
        const MsColumnNumber first = ends.get(0);
        const MsColumnNumber last = ends.get(scans - 1);
        first_time = first.value;
        interval = (last.value - first.value) / double(scans - 1);
        has_interval = can_be(times, first) && can_be(times, last) && std::isfinite(interval);
    }

    void look()
    {
        for (std::size_t i = 0; i < stored; ++i)
            take(qint64(i));
        finish();
    }

    // The spectra of a library come in any order, and needn't have a time.
    void look_for_bad_ones()
    {
        for (std::size_t i = 0; i < stored; ++i) {
            const MsColumnNumber time = times.get(i);
            if (time.is_known && !std::isfinite(time.value))
                findings[MsDoubtKind::BadTimes].add(qint64(i));
            else if (can_be(times, time) && time.value < 0.0)
                findings[MsDoubtKind::NegativeTimes].add(qint64(i));
            else if (can_be(times, time) && time.value > 0.0)
                tally.times.add(time.value);
        }
    }

private:
    void take(qint64 scan)
    {
        const MsColumnNumber number = times.get(std::size_t(scan));
        if (!number.is_known)
            return; // a file that is cut off
        const double time = number.value;
        if (!can_be(times, number)) {
            if (ms_is_missing(time))
                findings[MsDoubtKind::MissingTimes].add(scan);
            else if (!std::isfinite(time))
                findings[MsDoubtKind::BadTimes].add(scan);
            return;
        }
        if (time < 0.0)
            findings[MsDoubtKind::NegativeTimes].add(scan);
        judge_fall(time);
        if (taken++ == 0)
            earliest = time;
        else
            compare(scan, time);
        if (taken == 2)
            second = time;
        before = time;
        scan_before = scan;
        tally.times.add(time);
        if (has_interval
            && std::abs(time - first_time - double(scan) * interval)
                > std::max(std::abs(interval), usual))
            findings[MsDoubtKind::UnevenTimes].add(scan);
    }

    void compare(qint64 scan, double time)
    {
        const double step = time - before;
        if (step == 0.0) {
            equal.add(scan);
            return;
        }
        equal.end(step);
        if (step < 0.0) {
            fallen_scan = scan;
            fallen_from = before;
            fallen_to = time;
            return;
        }
        if (step > longest_step) {
            longest_step = step;
            longest_at = scan;
        }
        if (scan - scan_before == 1)
            compare_step(scan, step);
    }

    // A detector may be off for a while, but no scan begins before the end of the one before it.
    void compare_step(qint64 scan, double step)
    {
        constexpr double slack = 0.01;
        constexpr double rounding = 0.002; // thousandths of a second, for one
        constexpr double shortest = 0.75;
        constexpr double longest = 1.5;
        ++steps;
        const double off = std::abs(step - usual);
        even_steps += off <= slack * usual;
        exact_steps += off <= rounding * usual;
        const bool is_end = scan == 1 || scan == qint64(count) - 1;
        if (step < shortest * usual || (is_end && step > longest * usual))
            odd_steps.add(scan);
        else
            compare_place(scan, step, is_end);
        last_step = {scan, step};
    }

    // Where a clock is exact, a time between those of its neighbours may be out of its place by less.
    void compare_place(qint64 scan, double step, bool is_end)
    {
        constexpr double least = 0.05;
        constexpr double most = 0.25; // an odd step is judged by itself
        constexpr double rounding = 0.005;
        const double off = (step - usual) / usual;
        const double off_before = (last_step.scan == scan - 1 ? last_step.length : usual) / usual - 1.0;
        if (is_end && off > most)
            misplaced.add(scan);
        else if (std::abs(off) > least && std::abs(off) <= most && std::abs(off + off_before) <= rounding)
            misplaced.add(scan - 1);
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

    void finish()
    {
        if (!times.is_usable() && count > 0)
            findings[MsDoubtKind::MissingTimes] = {qint64(count), 0};
        judge_fall(std::numeric_limits<double>::max());
        equal.finish();
        if (taken < enough || findings[MsDoubtKind::FallingTimes].count > 0
            || findings[MsDoubtKind::RestartingTimes].count > 0)
            return;
        const bool is_gap =
            longest_at == qint64(count) - 1 && longest_step > before - earliest - longest_step;
        constexpr double far = 3.0; // in steps between the others
        if (is_gap)
            findings[MsDoubtKind::TimeGap].add(longest_at);
        else if (first_time == 0.0 && earliest == 0.0 && longest_at == 1
                 && second * double(taken - 2) > far * (before - second))
            tally.second_time = second;
        else if (findings[MsDoubtKind::NegativeTimes].count == 0)
            judge_steps();
    }

    // Where nearly all scans follow each other at the same step.
    void judge_steps()
    {
        if (!are_nearly_all(even_steps))
            return;
        findings[MsDoubtKind::OddTimes] = odd_steps;
        if (are_nearly_all(exact_steps))
            findings[MsDoubtKind::OddTimes].add(misplaced);
    }

    bool are_nearly_all(qint64 some) const
    {
        constexpr qint64 rare = 100; // one of so many
        return steps - some <= std::max<qint64>(steps / rare, 2);
    }

    MsTally &tally;
    MsFindings &findings;
    MsColumnWalk times;
    const std::size_t count;
    const std::size_t stored; // of these; behind them nothing is known
    const double usual;
    EqualTimes equal;
    bool has_interval = false;
    double first_time = 0.0;
    double interval = 0.0;
    qint64 taken = 0;
    double earliest = 0.0;
    double second = 0.0;
    double before = 0.0;
    qint64 scan_before = -1;
    double longest_step = 0.0;
    qint64 longest_at = -1;
    qint64 steps = 0; // that rise, between neighbours
    qint64 even_steps = 0;
    qint64 exact_steps = 0;
    MsFinding odd_steps;
    MsFinding misplaced; // by less than that
    struct {
        qint64 scan = -1;
        double length = 0.0;
    } last_step;             // between neighbours
    qint64 fallen_scan = -1; // not judged yet
    double fallen_from = 0.0;
    double fallen_to = 0.0;
};

} // namespace

void ms_look_at_times(MsFileState &file, std::size_t scans)
{
    Times times(file, scans);
    if (file.experiment_type == MsLibrarySpectrum)
        times.look_for_bad_ones();
    else
        times.look();
}
