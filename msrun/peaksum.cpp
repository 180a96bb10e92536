#include "peaksum_p.h"

#include "numbers_p.h"

#include <algorithm>
#include <cstddef>
#include <vector>

PeakSum PeakSum::of(const MsRun &run, const MsInterval &times, const MsRun::Progress &progress)
{
    constexpr qint32 often = 256;
    PeakSum sum;
    const std::vector<double> all = run.times();
    for (qint32 scan = 0; scan < run.size(); ++scan) {
        if (scan % often == 0 && progress && !progress(double(scan) / run.size()))
            return PeakSum();
        const double time = all[std::size_t(scan)];
        if (time >= times.from && time <= times.to)
            sum.add(run.spectrum(scan));
    }
    sum.merge();
    return sum;
}

void PeakSum::add(const MsSpectrum &spectrum)
{
    if (!spectrum.isRead())
        return;
    ++scans_;
    const double *masses = spectrum.masses();
    const double *intensities = spectrum.intensities();
    for (qint32 i = 0; i < spectrum.size(); ++i)
        peaks_.emplace_back(masses[i], intensities[i]);
    constexpr std::size_t enough = 1 << 16; // to keep what is waiting small
    if (peaks_.size() - merged_ > std::max(enough, merged_))
        merge();
}

// Makes all peaks of one mass one.
void PeakSum::merge()
{
    std::stable_sort(peaks_.begin() + std::ptrdiff_t(merged_), peaks_.end(),
                     [](const Peak &one, const Peak &other) { return one.first < other.first; });
    std::inplace_merge(peaks_.begin(), peaks_.begin() + std::ptrdiff_t(merged_), peaks_.end(),
                       [](const Peak &one, const Peak &other) { return one.first < other.first; });
    std::size_t count = 0;
    for (const Peak &peak : peaks_) {
        if (count > 0 && peaks_[count - 1].first == peak.first)
            peaks_[count - 1].second += peak.second;
        else
            peaks_[count++] = peak;
    }
    peaks_.resize(count);
    merged_ = count;
}

MsPeaks PeakSum::peaks(double width, double divisor) const
{
    MsPeaks result;
    for (std::size_t first = 0; first < peaks_.size();) {
        std::size_t behind = first + 1;
        while (behind < peaks_.size() && peaks_[behind].first - peaks_[first].first < width)
            ++behind;
        double intensity = 0.0;
        double moment = 0.0;
        for (std::size_t i = first; i < behind; ++i) {
            intensity += peaks_[i].second;
            moment += (peaks_[i].first - peaks_[first].first) * peaks_[i].second;
        }
        const double shift = moment / intensity;
        const double room = peaks_[behind - 1].first - peaks_[first].first;
        // Intensities of 0 have no mean.
        result.masses.push_back(peaks_[first].first
                                + (shift >= 0.0 && shift <= room ? shift : room / 2.0));
        result.intensities.push_back(intensity / divisor);
        first = behind;
    }
    return result;
}

WindowSums::WindowSums(const MsSpectrum &spectrum)
    : spectrum_(spectrum),
      ascends_(std::is_sorted(spectrum.masses(), spectrum.masses() + spectrum.size()))
{
}

double WindowSums::of(const MsInterval &window) const
{
    if (!spectrum_.isRead())
        return unknownNumber;
    const double *masses = spectrum_.masses();
    const double *intensities = spectrum_.intensities();
    qint32 first = 0;
    qint32 last = spectrum_.size();
    if (ascends_) {
        first = qint32(std::lower_bound(masses, masses + last, window.from) - masses);
        last = qint32(std::upper_bound(masses + first, masses + last, window.to) - masses);
    }
    double sum = 0.0;
    for (qint32 i = first; i < last; ++i) {
        if (masses[i] >= window.from && masses[i] <= window.to)
            sum += intensities[i];
    }
    return sum;
}
