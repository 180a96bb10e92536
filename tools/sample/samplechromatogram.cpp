// When and how much of each compound leaves the column.

#include "samplechromatogram.h"

#include "samplecompounds.h"

#include <algorithm>

namespace {

constexpr double first_index = 700.0;
constexpr double last_index = 2620.0;
constexpr double smallest_height = 2.0e5;

} // namespace

double sample_retention_time(const SampleClock &clock, int compound)
{
    const double index = sample_compounds.first[compound].retention_index;
    const double part = (index - first_index) / (last_index - first_index);
    return on_grid(double(clock.start) / 1000.0 + part * clock.length(), 1000.0);
}

SampleChromatogram::SampleChromatogram(const SampleClock &clock, SampleRandom *random) : clock_(clock)
{
    for (int i = 0; i < sample_compounds.count; ++i) {
        const double amount = 1.0 + random->uniform();
        const double height = smallest_height * amount * amount * amount * amount;
        elutions_.push_back({i, sample_retention_time(clock, i), height});
    }
}

double SampleChromatogram::height_at(const SampleElution &elution, double time, double sigma)
{
    const double distance = (time - elution.time) / sigma;
    // Less than a count is left of the largest peak.
    constexpr double foot = 12.0;
    return distance < -foot || distance > foot ? 0.0 : elution.height * peak_shape(distance);
}
