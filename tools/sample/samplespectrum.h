// Mass spectra out of compounds, background and noise.
#ifndef SAMPLESPECTRUM_H
#define SAMPLESPECTRUM_H

#include "samplerandom.h"
#include "samplescan.h"

#include <cstddef>
#include <vector>

constexpr int sample_mass_min = 33;
constexpr int sample_mass_max = 450;
constexpr int sample_mass_count = sample_mass_max - sample_mass_min + 1;

class SampleSpectrumBuilder
{
public:
    // With `point_count` 0 a spectrum has the peaks that stand out of the noise, else always that many.
    explicit SampleSpectrumBuilder(int point_count);

    // A new spectrum begins with what leaves the column, `bleed` counts at its main peak.
    void start(double bleed);
    // Adds compound `compound`, by its place in the table, with `height` counts at its base peak.
    void add(int compound, double height);
    // The counts at one whole mass, so far.
    double counts_at(int mass) const { return counts_[std::size_t(mass - sample_mass_min)]; }
    // Ends the spectrum.
    void finish(SampleRandom *random, SampleScan *scan);

private:
    void finish_threshold(SampleRandom *random, SampleScan *scan) const;
    void finish_exactly(SampleRandom *random, SampleScan *scan);

    int point_count_;
    std::size_t parts_; // channels of each whole mass
    std::vector<double> counts_;
    std::vector<double> channels_;
    std::vector<double> channel_masses_;
    std::vector<double> ranked_; // channels_, no longer in their order
};

// Where the peak of a whole mass lies.
double sample_peak_mass(int mass);

// A count with the noise of counting ions, whole and within the detector's limit. `random_bits` are used
// up to the 32nd.
double noisy_count(double count, quint64 random_bits);

#endif // SAMPLESPECTRUM_H
