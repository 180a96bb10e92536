// Mass spectra out of compounds, background and noise.

#include "samplespectrum.h"

#include "samplecompounds.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// The background of a whole run: air, the column's siloxanes, the pump's oil.
// clang-format off
constexpr SampleFragment background[] = {
    {40, 22}, {44, 60}, {55, 6}, {57, 5}, {73, 35}, {96, 8}, {133, 12}, {147, 15}, {191, 14},
    {193, 9}, {207, 100}, {208, 20}, {209, 13}, {221, 8}, {253, 10}, {281, 45}, {282, 12}, {355, 14},
};
// clang-format on

constexpr double threshold = 150.0;
constexpr double noiseFloor = 40.0;
constexpr double perMass = 20.0; // the grid of masses, fine enough for short numbers

} // namespace

double samplePeakMass(int mass)
{
    return onGrid(mass + 0.0007 * mass, perMass);
}

double noisyCount(double count, quint64 randomBits)
{
    // The sum of two uniform numbers, scaled to the variance of counting, which is the count.
    const double spread =
        (double(randomBits & 0xffff) + double((randomBits >> 16) & 0xffff)) / 65536.0 - 1.0;
    const double noisy = count + 2.45 * std::sqrt(count) * spread;
    return nearest(std::clamp(noisy, 0.0, sampleCountLimit));
}

SampleSpectrumBuilder::SampleSpectrumBuilder(int pointsWanted)
    : pointCount(pointsWanted),
      parts(std::size_t(std::max(1, (pointsWanted + sampleMassCount - 1) / sampleMassCount))),
      counts(sampleMassCount), channels(pointsWanted == 0 ? 0 : sampleMassCount * parts),
      channelMasses(channels.size())
{
    const double grid = double(parts) > perMass ? 10000.0 : perMass;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const double part = double(i % parts) / double(parts);
        channelMasses[i] = onGrid(samplePeakMass(int(i / parts) + sampleMassMin) + part, grid);
    }
}

void SampleSpectrumBuilder::start(double bleed)
{
    std::fill(counts.begin(), counts.end(), 0.0);
    for (const SampleFragment &peak : background)
        counts[std::size_t(peak.mass - sampleMassMin)] = bleed * peak.percent / 100.0;
}

void SampleSpectrumBuilder::add(int compound, double height)
{
    for (const SampleFragment &peak : sampleSpectra.first[compound].fragments) {
        if (peak.mass == 0)
            break;
        counts[std::size_t(peak.mass - sampleMassMin)] += height * peak.percent / 100.0;
    }
}

void SampleSpectrumBuilder::finish(SampleRandom *random, SampleScan *scan)
{
    if (pointCount == 0)
        finishThreshold(random, scan);
    else
        finishExactly(random, scan);
}

void SampleSpectrumBuilder::finishThreshold(SampleRandom *random, SampleScan *scan) const
{
    for (int i = 0; i < sampleMassCount; ++i) {
        const quint64 bits = random->bits();
        const double count = noisyCount(counts[std::size_t(i)] + noiseFloor, bits);
        if (count < threshold)
            continue;
        // One peak in four lies a step of the grid beside its place.
        const double off = (bits >> 32) % 8 == 0 ? 1.0 : (bits >> 32) % 8 == 1 ? -1.0 : 0.0;
        scan->masses.push_back(onGrid(samplePeakMass(i + sampleMassMin) + off / perMass, perMass));
        scan->counts.push_back(count);
    }
}

// Appends the most abundant channels. If there are more points than whole masses, each whole mass has
// several channels, and its peak lies in the first.
void SampleSpectrumBuilder::finishExactly(SampleRandom *random, SampleScan *scan)
{
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const double peak = i % parts == 0 ? counts[i / parts] : 0.0;
        channels[i] = std::max(1.0, noisyCount(peak + noiseFloor, random->bits()));
    }

    const auto last = std::size_t(pointCount) - 1;
    ranked = channels;
    std::nth_element(ranked.begin(), ranked.begin() + qint64(last), ranked.end(), std::greater<double>());
    const double least = ranked[last];
    // How many channels with the least count are still needed: the first ones are taken.
    auto spare = qint64(last) + 1
        - std::count_if(ranked.begin(), ranked.begin() + qint64(last),
                        [least](double count) { return count > least; });

    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (channels[i] < least || (channels[i] == least && spare-- <= 0))
            continue;
        scan->masses.push_back(channelMasses[i]);
        scan->counts.push_back(channels[i]);
    }
}
