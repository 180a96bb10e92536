// The groups of masses that a run of selected ion monitoring follows.

#include "samplegroups.h"

#include "samplecompounds.h"
#include "samplespectrum.h"

#include <algorithm>
#include <cstddef>
#include <set>

namespace {

constexpr int compounds_per_group = 3;
constexpr int masses_per_compound = 3;

std::vector<int> main_masses(int first, int end, int mass_count)
{
    const std::size_t limit = mass_count == 0 ? sample_mass_count : std::size_t(mass_count);
    std::set<int> masses;
    const auto pick = [&](int mass) {
        if (mass != 0 && masses.size() < limit)
            masses.insert(mass);
    };
    const int ranks = mass_count == 0 ? masses_per_compound : max_sample_fragments;
    for (int rank = 0; rank < ranks; ++rank) {
        for (int compound = first; compound < end; ++compound)
            pick(sample_spectra.first[compound].fragments[rank].mass);
    }
    for (int mass = sample_mass_min; mass_count != 0 && mass <= sample_mass_max; ++mass)
        pick(mass);
    return {masses.begin(), masses.end()};
}

// The scan halfway between two peaks.
int scan_between(const SampleClock &clock, const SampleElution &before, const SampleElution &after)
{
    const double middle = (before.time + after.time) / 2.0 - clock.time(0);
    return int(middle * 1000.0 / double(clock.interval));
}

} // namespace

std::vector<SampleGroup> make_sample_groups(const SampleChromatogram &chromatogram, int mass_count)
{
    std::vector<SampleGroup> groups;
    const std::vector<SampleElution> &elutions = chromatogram.elutions();
    const int count = int(elutions.size());
    for (int first = 0; first < count; first += compounds_per_group) {
        const int start = first == 0
            ? 0
            : scan_between(chromatogram.clock(), elutions[std::size_t(first - 1)],
                           elutions[std::size_t(first)]);
        const int end = std::min(first + compounds_per_group, count);
        groups.push_back({start, main_masses(first, end, mass_count)});
    }
    return groups;
}
