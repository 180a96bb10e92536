#include "rundata.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <utility>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double secondsOfMinute = 60.0;

// Beyond this, plots can't draw a number.
constexpr double largestDrawn = 1e200;

// Masses of centroids that differ by less are one mass in an average, as scans scatter.
constexpr double centroidWidth = 0.5;

double drawable(double number)
{
    return std::abs(number) <= largestDrawn ? number : unknown;
}

bool isSome(const std::vector<double> &numbers)
{
    return std::any_of(numbers.begin(), numbers.end(),
                       [](double number) { return std::isfinite(number); });
}

// Takes `background` off the peaks; what falls to zero or below is left out. Masses nearer than `width`
// are the same.
void subtract(MsPeaks background, double width, MsPeaks *peaks)
{
    MsPeaks left;
    std::size_t first = 0;
    for (std::size_t i = 0; i < peaks->masses.size(); ++i) {
        const double mass = peaks->masses[i];
        while (first < background.masses.size() && background.masses[first] < mass - width)
            ++first;
        double intensity = peaks->intensities[i];
        for (std::size_t j = first; j < background.masses.size() && background.masses[j] <= mass + width;
             ++j) {
            const double taken = std::min(intensity, background.intensities[j]);
            background.intensities[j] -= taken;
            intensity -= taken;
        }
        if (intensity > 0.0) {
            left.masses.push_back(mass);
            left.intensities.push_back(intensity);
        }
    }
    *peaks = std::move(left);
}

QString rangeText(const MsInterval &times, const RunSummary &summary)
{
    return QStringLiteral("%1 to %2")
        .arg(QString::number(times.from, 'f', 3), timeText(times.to, summary));
}

} // namespace

QString sourceName(TraceSource source)
{
    switch (source) {
    case TraceSource::Stored:
        return QStringLiteral("Total, stored");
    case TraceSource::Summed:
        return QStringLiteral("Total, summed");
    default:
        return QStringLiteral("Base peak");
    }
}

bool RunSummary::has(TraceSource source) const
{
    if (source == TraceSource::Stored)
        return hasStored || kind == MsRun::Kind::Trace;
    return kind == MsRun::Kind::Spectra;
}

double RunSummary::shownTime(qint32 scan) const
{
    if (scan < 0 || scan >= size)
        return unknown;
    return hasTimes ? times[std::size_t(scan)] : double(scan);
}

QString timeText(double time, const RunSummary &summary)
{
    if (!summary.hasTimes)
        return QStringLiteral("scan %1").arg(std::round(time));
    const QString number = QString::number(time, 'f', 3);
    return summary.timeUnit == secondsOfMinute ? number + QStringLiteral(" min") : number;
}

std::vector<double> SpectrumData::largestMasses(std::size_t count) const
{
    std::vector<std::size_t> places(masses.size());
    std::iota(places.begin(), places.end(), std::size_t(0));
    count = std::min(places.size(), count);
    std::partial_sort(
        places.begin(), places.begin() + std::ptrdiff_t(count), places.end(),
        [&](std::size_t one, std::size_t other) { return intensities[one] > intensities[other]; });
    std::vector<double> largest;
    for (std::size_t i = 0; i < count; ++i)
        largest.push_back(masses[places[i]]);
    return largest;
}

RunSummary summaryOf(const MsRun &run)
{
    RunSummary summary;
    summary.kind = run.kind();
    summary.size = run.size();
    summary.isProfile = run.facts().spectra == MsRunFacts::Spectra::Profile;
    summary.title = run.facts().title;
    if (run.kind() == MsRun::Kind::Library)
        return summary;
    summary.timeUnit = run.hasSeconds() ? secondsOfMinute : 1.0;
    summary.times = run.times();
    for (double &time : summary.times)
        time = drawable(time / summary.timeUnit);
    summary.storedTotals = run.storedTotals();
    std::transform(summary.storedTotals.begin(), summary.storedTotals.end(), summary.storedTotals.begin(),
                   drawable);
    summary.hasTimes = isSome(summary.times);
    summary.hasStored = isSome(summary.storedTotals);
    if (summary.hasStored && run.hasSeconds())
        summary.modulation = run.modulation();
    summary.timeLabel = QStringLiteral("Scan");
    if (summary.hasTimes && run.hasSeconds())
        summary.timeLabel = QStringLiteral("Time (min)");
    else if (summary.hasTimes)
        summary.timeLabel = QStringLiteral("Time as stored (%1)").arg(run.facts().timeUnits.text);
    return summary;
}

ScanSums sumsOf(const MsRun &run, const MsRun::Progress &progress)
{
    ScanSums sums;
    sums.totals.reserve(std::size_t(run.size()));
    sums.basePeaks.reserve(std::size_t(run.size()));
    for (const MsSpectrum &scan : run) {
        constexpr std::size_t often = 256;
        if (sums.totals.size() % often == 0 && !progress(double(sums.totals.size()) / run.size()))
            return {};
        sums.totals.push_back(drawable(scan.summedTotal()));
        const double *first = scan.intensities();
        const double largest = scan.size() > 0 ? *std::max_element(first, first + scan.size())
            : scan.isRead()                    ? 0.0
                                               : unknown;
        sums.basePeaks.push_back(drawable(largest));
    }
    if (run.hasSeconds())
        sums.modulation = ms_guess_modulation(run.times(), sums.totals);
    return sums;
}

SpectrumData spectrumOf(const MsRun &run, qint32 scan, const RunSummary &summary)
{
    SpectrumData data;
    data.scan = scan;
    data.time = summary.shownTime(scan);
    data.isProfile = summary.isProfile;
    data.title = QStringLiteral("Scan %1").arg(scan);
    if (summary.hasTimes && std::isfinite(data.time))
        data.title += QStringLiteral(" at %1").arg(timeText(data.time, summary));
    if (summary.kind == MsRun::Kind::Library) {
        const QString name = run.compound(scan).name;
        data.title = name.isEmpty() ? QStringLiteral("Entry %1").arg(scan) : name;
    }
    const MsSpectrum spectrum = run.spectrum(scan);
    if (!spectrum.isRead())
        data.failure =
            QStringLiteral("Scan %1 can't be read: %2.").arg(QString::number(scan), spectrum.failure());
    const double *masses = spectrum.masses();
    const double *intensities = spectrum.intensities();
    for (qint32 i = 0; i < spectrum.size(); ++i) {
        if (std::abs(masses[i]) > largestDrawn || std::abs(intensities[i]) > largestDrawn)
            continue;
        data.masses.push_back(masses[i]);
        data.intensities.push_back(intensities[i]);
    }
    return data;
}

SpectrumData averageOf(const MsRun &run, const MsInterval &times,
                       const std::optional<MsInterval> &background, const RunSummary &summary,
                       const MsRun::Progress &progress)
{
    const auto inRun = [unit = summary.timeUnit](const MsInterval &shown) {
        return MsInterval{shown.from * unit, shown.to * unit};
    };
    const double width = summary.isProfile ? 0.0 : centroidWidth;
    SpectrumData data;
    data.isProfile = summary.isProfile;
    data.title = QStringLiteral("Average of %1").arg(rangeText(times, summary));
    MsPeaks peaks = run.averaged(inRun(times), width, progress);
    if (background) {
        subtract(run.averaged(inRun(*background), width, progress), width / 2.0, &peaks);
        data.title += QStringLiteral(" less background, %1; what fell below zero is dropped")
                          .arg(rangeText(*background, summary));
    }
    data.masses = std::move(peaks.masses);
    data.intensities = std::move(peaks.intensities);
    return data;
}
