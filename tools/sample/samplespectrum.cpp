// Mass spectra out of compounds, background and noise.

#include "samplespectrum.h"

#include "samplecompounds.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// What a run shows at all times: air, the column's siloxanes, the pump's oil.
// clang-format off
constexpr SampleFragment background[] = {
    {40, 22}, {44, 60}, {55, 6}, {57, 5}, {73, 35}, {96, 8}, {133, 12}, {147, 15}, {191, 14},
    {193, 9}, {207, 100}, {208, 20}, {209, 13}, {221, 8}, {253, 10}, {281, 45}, {282, 12}, {355, 14},
};
// clang-format on

constexpr double threshold = 150.0;
constexpr double noise_floor = 40.0;
constexpr double per_mass = 20.0; // the grid of masses, fine enough for short numbers

} // namespace

double sample_peak_mass(int mass)
{
    return on_grid(mass + 0.0007 * mass, per_mass);
}

double noisy_count(double count, quint64 random_bits)
{
    // The sum of two uniform numbers, with the variance that the count has as a mean.
    const double spread =
        (double(random_bits & 0xffff) + double((random_bits >> 16) & 0xffff)) / 65536.0 - 1.0;
    const double noisy = count + 2.45 * std::sqrt(count) * spread;
    return nearest(std::clamp(noisy, 0.0, sample_count_limit));
}

SampleSpectrumBuilder::SampleSpectrumBuilder(int point_count)
    : point_count_(point_count),
      parts_(std::size_t(std::max(1, (point_count + sample_mass_count - 1) / sample_mass_count))),
      counts_(sample_mass_count), channels_(point_count == 0 ? 0 : sample_mass_count * parts_),
      channel_masses_(channels_.size())
{
    const double grid = double(parts_) > per_mass ? 10000.0 : per_mass;
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        const double part = double(i % parts_) / double(parts_);
        channel_masses_[i] = on_grid(sample_peak_mass(int(i / parts_) + sample_mass_min) + part, grid);
    }
}

void SampleSpectrumBuilder::start(double bleed)
{
    std::fill(counts_.begin(), counts_.end(), 0.0);
    for (const SampleFragment &peak : background)
        counts_[std::size_t(peak.mass - sample_mass_min)] = bleed * peak.percent / 100.0;
}

void SampleSpectrumBuilder::add(int compound, double height)
{
    for (const SampleFragment &peak : sample_spectra.first[compound].fragments) {
        if (peak.mass == 0)
            break;
        counts_[std::size_t(peak.mass - sample_mass_min)] += height * peak.percent / 100.0;
    }
}

void SampleSpectrumBuilder::finish(SampleRandom *random, SampleScan *scan)
{
    if (point_count_ == 0)
        finish_threshold(random, scan);
    else
        finish_exactly(random, scan);
}

void SampleSpectrumBuilder::finish_threshold(SampleRandom *random, SampleScan *scan) const
{
    for (int i = 0; i < sample_mass_count; ++i) {
        const quint64 bits = random->bits();
        const double count = noisy_count(counts_[std::size_t(i)] + noise_floor, bits);
        if (count < threshold)
            continue;
        // One peak in four is found a step beside its place.
        const double off = (bits >> 32) % 8 == 0 ? 1.0 : (bits >> 32) % 8 == 1 ? -1.0 : 0.0;
        scan->masses.push_back(on_grid(sample_peak_mass(i + sample_mass_min) + off / per_mass, per_mass));
        scan->counts.push_back(count);
    }
}

// The most abundant channels. Where there are more points than whole masses, each of these has several
// channels, and the peak lies in its first.
void SampleSpectrumBuilder::finish_exactly(SampleRandom *random, SampleScan *scan)
{
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        const double peak = i % parts_ == 0 ? counts_[i / parts_] : 0.0;
        channels_[i] = std::max(1.0, noisy_count(peak + noise_floor, random->bits()));
    }

    const auto last = std::size_t(point_count_) - 1;
    ranked_ = channels_;
    std::nth_element(ranked_.begin(), ranked_.begin() + qint64(last), ranked_.end(),
                     std::greater<double>());
    const double least = ranked_[last];
    // Of the channels with the least count, the first ones.
    auto spare = qint64(last) + 1
        - std::count_if(ranked_.begin(), ranked_.begin() + qint64(last),
                        [least](double count) { return count > least; });

    for (std::size_t i = 0; i < channels_.size(); ++i) {
        if (channels_[i] < least || (channels_[i] == least && spare-- <= 0))
            continue;
        scan->masses.push_back(channel_masses_[i]);
        scan->counts.push_back(channels_[i]);
    }
}
