// Private: the peaks of several scans as one spectrum, and of one scan in windows of masses.
#ifndef PEAKSUM_P_H
#define PEAKSUM_P_H

#include "msrun.h"

#include <utility>
#include <vector>

class PeakSum
{
public:
    // Adds up all scans of a run whose times lie in the interval; nothing where `progress` stops it.
    static PeakSum of(const MsRun &run, const MsInterval &times, const MsRun::Progress &progress);

    // Scans that were added and could be read.
    int scans() const { return scans_; }

    // Returns the sum of the peaks, divided by `divisor`. Those less than `width` above the first one of
    // them are one.
    MsPeaks peaks(double width, double divisor) const;

private:
    using Peak = std::pair<double, double>; // mass, intensity

    void add(const MsSpectrum &spectrum);
    void merge();

    std::vector<Peak> peaks_; // the first `merged_` ascend, each mass once
    std::size_t merged_ = 0;
    int scans_ = 0;
};

// The intensities of one scan in windows of masses.
class WindowSums
{
public:
    explicit WindowSums(const MsSpectrum &spectrum);

    // Returns the sum of the intensities whose masses lie in the window; NaN for a scan that can't be
    // read. The spectrum has to be there still.
    double of(const MsInterval &window) const;

private:
    const MsSpectrum &spectrum_;
    bool ascends_;
};

#endif // PEAKSUM_P_H
