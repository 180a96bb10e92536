// Mass spectra out of compounds, background and noise.
#ifndef SAMPLESPECTRUM_H
#define SAMPLESPECTRUM_H

#include "samplerandom.h"
#include "samplescan.h"

#include <cstddef>
#include <vector>

constexpr int sampleMassMin = 33;
constexpr int sampleMassMax = 450;
constexpr int sampleMassCount = sampleMassMax - sampleMassMin + 1;

class SampleSpectrumBuilder
{
public:
    // Spectra have `pointsWanted` points each, or, if that is 0, the peaks that stand out of the noise.
    explicit SampleSpectrumBuilder(int pointsWanted);

    // Begins a spectrum with the column's bleed, of `bleed` counts at its main peak.
    void start(double bleed);
    // Adds the compound in place `compound` of the table, with `height` counts at its base peak.
    void add(int compound, double height);
    // Returns the counts at a whole mass, so far.
    double countsAt(int mass) const { return counts[std::size_t(mass - sampleMassMin)]; }
    // Adds the noise and appends the points to the scan.
    void finish(SampleRandom *random, SampleScan *scan);

private:
    void finishThreshold(SampleRandom *random, SampleScan *scan) const;
    void finishExactly(SampleRandom *random, SampleScan *scan);

    int pointCount;
    std::size_t parts; // channels of each whole mass
    std::vector<double> counts;
    std::vector<double> channels;
    std::vector<double> channelMasses;
    std::vector<double> ranked; // channels, no longer in their order
};

// Returns where the peak of a whole mass lies.
double samplePeakMass(int mass);

// Returns a count with the noise of counting ions, whole and within the detector's limit. The noise comes
// from the lower 32 of `randomBits`.
double noisyCount(double count, quint64 randomBits);

#endif // SAMPLESPECTRUM_H
