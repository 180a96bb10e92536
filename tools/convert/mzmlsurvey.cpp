#include "mzmlsurvey.h"

#include "scanwalk.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr double secondsPerMinute = 60.0;

// Beyond this share, a stored total isn't the rounded sum of its scan.
constexpr double totalTolerance = 1e-6;

// Whether there are times of points; most writers never write them. One for each scan is its own time.
bool hasTimes(const MsNumbers &times)
{
    return times.size() > 1
        && std::any_of(times.begin(), times.end(), [](double time) { return ms_is_given(time); });
}

class Survey
{
public:
    Survey(const MsRun &source, const ConversionOptions &wanted, ProgressBar *bar, MzMlSurvey *target,
           ConversionLog *messages)
        : run(source), options(wanted), progress(bar), survey(target), log(messages)
    {
    }

    bool make()
    {
        std::vector<double> times = run.times();
        std::vector<double> totals(times.size()); // of the scans that are read
        std::vector<qint32> numbers(times.size());
        qint32 differing = 0;
        const bool isWhole = forEachScan(run, ScanWalk::First, progress, [&](const MsSpectrum &spectrum) {
            const auto place = std::size_t(spectrum.index());
            const double stored = spectrum.storedTotal();
            const double summed = spectrum.summedTotal();
            totals[place] = std::isnan(stored) ? summed : stored;
            differing += run.kind() != MsRun::Kind::Trace
                && std::abs(stored - summed) > totalTolerance * std::abs(summed);
            numbers[place] = spectrum.number();
            if (spectrum.size() > 0) {
                survey->isFloatMasses = survey->isFloatMasses && spectrum.storedMasses();
                survey->isFloatIntensities = survey->isFloatIntensities && spectrum.storedIntensities();
            }
            survey->common.add(spectrum.record());
            survey->hasFlags = survey->hasFlags || !spectrum.flaggedPeaks().isEmpty();
            survey->hasPointTimes = survey->hasPointTimes || hasTimes(spectrum.pointTimes());
            const MsInterval window = spectrum.massRange();
            survey->hasHalfWindows =
                survey->hasHalfWindows || std::isnan(window.from) != std::isnan(window.to);
            const MsInterval range = spectrum.timeRange();
            survey->hasTimeRanges =
                survey->hasTimeRanges || !std::isnan(range.from) || !std::isnan(range.to);
            survey->facts.scans.push_back(spectrum.index());
            return true;
        });
        const QList<MsDoubt> doubts = run.doubts();
        const bool isSaid = std::any_of(doubts.begin(), doubts.end(), [](const MsDoubt &doubt) {
            return qstrcmp(doubt.code, "wrong-totals") == 0;
        });
        if (differing > 0 && !isSaid)
            log->warn(
                QStringLiteral("In %1 of %2 scans, the total ion current that the file gives isn't the "
                               "sum of the intensities.")
                    .arg(differing)
                    .arg(run.size()));
        sortByTime(times);
        const bool areMinutes = haveMinutes();
        const bool isDivided = options.inMinutes && !areMinutes;
        if (options.inMinutes || areMinutes)
            survey->facts.timeUnit = pwiz::cv::UO_minute;
        for (const qint32 scan : survey->facts.scans) {
            const auto place = std::size_t(scan);
            survey->facts.times.push_back(isDivided ? times[place] / secondsPerMinute : times[place]);
            survey->facts.totals.push_back(totals[place]);
            survey->facts.numbers.push_back(numbers[place]);
        }
        makeUnique();
        return isWhole;
    }

private:
    // Whether the file's own unit of time is the minute, which the template lacks.
    bool haveMinutes() const
    {
        const QString unit = run.facts().timeUnits.text;
        return !run.hasSeconds() && unit.startsWith(QLatin1String("min"), Qt::CaseInsensitive);
    }

    void sortByTime(const std::vector<double> &times)
    {
        const auto isEarlier = [&times](qint32 one, qint32 other) {
            return times[std::size_t(one)] < times[std::size_t(other)];
        };
        std::vector<qint32> &scans = survey->facts.scans;
        const bool hasAllTimes = std::none_of(scans.begin(), scans.end(), [&times](qint32 scan) {
            return std::isnan(times[std::size_t(scan)]);
        });
        if (run.kind() == MsRun::Kind::Library || !hasAllTimes
            || std::is_sorted(scans.begin(), scans.end(), isEarlier))
            return;
        std::stable_sort(scans.begin(), scans.end(), isEarlier);
        log->warn(QStringLiteral("The scans are put in the order of their times."));
    }

    // The numbers of scans become names, which mustn't be repeated.
    void makeUnique()
    {
        std::vector<qint32> sorted = survey->facts.numbers;
        std::sort(sorted.begin(), sorted.end());
        const bool isUnique = std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
        if (sorted.empty() || (isUnique && sorted.front() >= 0))
            return;
        survey->facts.numbers = survey->facts.scans;
        log->warn(QStringLiteral(
            "The numbers that the file gives its scans aren't different numbers from 0 on; "
            "the scans are counted from 0 in their place."));
    }

    const MsRun &run;
    const ConversionOptions &options;
    ProgressBar *progress;
    MzMlSurvey *survey;
    ConversionLog *log;
};

} // namespace

bool surveyRun(const MsRun &run, const ConversionOptions &options, ProgressBar *progress,
               MzMlSurvey *survey, ConversionLog *log)
{
    return Survey(run, options, progress, survey, log).make();
}
