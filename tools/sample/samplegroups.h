// The groups of masses that a run of selected ion monitoring follows.
#ifndef SAMPLEGROUPS_H
#define SAMPLEGROUPS_H

#include "samplechromatogram.h"

#include <vector>

struct SampleGroup {
    int startingScan; // from 0
    std::vector<int> masses;
};

// Returns groups that each follow a few neighbouring compounds, with `massCount` masses a group. 0 stands
// for the main masses of the compounds.
std::vector<SampleGroup> makeSampleGroups(const SampleChromatogram &chromatogram, int massCount);

#endif // SAMPLEGROUPS_H
