// When and how much of each compound leaves the column.

#include "samplechromatogram.h"

#include "samplecompounds.h"

#include <algorithm>

namespace {

constexpr double firstIndex = 700.0;
constexpr double lastIndex = 2620.0;
constexpr double smallestHeight = 2.0e5;

} // namespace

double sampleRetentionTime(const SampleClock &clock, int compound)
{
    const double index = sampleCompounds.first[compound].retentionIndex;
    const double part = (index - firstIndex) / (lastIndex - firstIndex);
    return onGrid(double(clock.start) / 1000.0 + part * clock.length(), 1000.0);
}

SampleChromatogram::SampleChromatogram(const SampleClock &clock, SampleRandom *random) : runClock(clock)
{
    for (int i = 0; i < sampleCompounds.count; ++i) {
        const double amount = 1.0 + random->uniform();
        const double height = smallestHeight * amount * amount * amount * amount;
        peaks.push_back({i, sampleRetentionTime(clock, i), height});
    }
}

double SampleChromatogram::heightAt(const SampleElution &elution, double time, double sigma)
{
    const double distance = (time - elution.time) / sigma;
    constexpr double foot = 12.0; // where less than a count is left of the largest peak
    return distance < -foot || distance > foot ? 0.0 : elution.height * peakShape(distance);
}
