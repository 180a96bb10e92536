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
    // With `pointsWanted` 0 a spectrum has the peaks that stand out of the noise, else always that many.
    explicit SampleSpectrumBuilder(int pointsWanted);

    // A new spectrum begins with what leaves the column, `bleed` counts at its main peak.
    void start(double bleed);
    // Adds compound `compound`, by its place in the table, with `height` counts at its base peak.
    void add(int compound, double height);
    // The counts at one whole mass, so far.
    double countsAt(int mass) const { return counts[std::size_t(mass - sampleMassMin)]; }
    // Ends the spectrum.
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

// Where the peak of a whole mass lies.
double samplePeakMass(int mass);

// A count with the noise of counting ions, whole and within the detector's limit. `randomBits` are used
// up to the 32nd.
double noisyCount(double count, quint64 randomBits);

#endif // SAMPLESPECTRUM_H
