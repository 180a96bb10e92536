// The groups of masses that a run of selected ion monitoring follows.
#ifndef SAMPLEGROUPS_H
#define SAMPLEGROUPS_H

#include "samplechromatogram.h"

#include <vector>

struct SampleGroup {
    int startingScan; // from 0
    std::vector<int> masses;
};

// Each group follows a few compounds that elute together, with `massCount` masses, or with the main ones
// of its compounds where that is 0.
std::vector<SampleGroup> makeSampleGroups(const SampleChromatogram &chromatogram, int massCount);

#endif // SAMPLEGROUPS_H
