// The groups of masses that a run of selected ion monitoring follows.

#include "samplegroups.h"

#include "samplecompounds.h"
#include "samplespectrum.h"

#include <algorithm>
#include <cstddef>
#include <set>

namespace {

constexpr int compoundsPerGroup = 3;
constexpr int massesPerCompound = 3;

std::vector<int> mainMasses(int first, int end, int massCount)
{
    const std::size_t limit = massCount == 0 ? sampleMassCount : std::size_t(massCount);
    std::set<int> masses;
    const auto pick = [&](int mass) {
        if (mass != 0 && masses.size() < limit)
            masses.insert(mass);
    };
    const int ranks = massCount == 0 ? massesPerCompound : maxSampleFragments;
    for (int rank = 0; rank < ranks; ++rank) {
        for (int compound = first; compound < end; ++compound)
            pick(sampleSpectra.first[compound].fragments[rank].mass);
    }
    for (int mass = sampleMassMin; massCount != 0 && mass <= sampleMassMax; ++mass)
        pick(mass);
    return {masses.begin(), masses.end()};
}

// Returns the scan halfway between two peaks.
int scanBetween(const SampleClock &clock, const SampleElution &before, const SampleElution &after)
{
    const double middle = (before.time + after.time) / 2.0 - clock.time(0);
    return int(middle * 1000.0 / double(clock.interval));
}

} // namespace

std::vector<SampleGroup> makeSampleGroups(const SampleChromatogram &chromatogram, int massCount)
{
    std::vector<SampleGroup> groups;
    const std::vector<SampleElution> &elutions = chromatogram.elutions();
    const int count = int(elutions.size());
    for (int first = 0; first < count; first += compoundsPerGroup) {
        const int start = first == 0 ? 0
                                     : scanBetween(chromatogram.clock(), elutions[std::size_t(first - 1)],
                                                   elutions[std::size_t(first)]);
        const int end = std::min(first + compoundsPerGroup, count);
        groups.push_back({start, mainMasses(first, end, massCount)});
    }
    return groups;
}
