// The groups of masses that a run of selected ion monitoring follows.
#ifndef SAMPLEGROUPS_H
#define SAMPLEGROUPS_H

#include "samplechromatogram.h"

#include <vector>

struct SampleGroup {
    int starting_scan; // from 0
    std::vector<int> masses;
};

// Each group follows a few compounds that elute together, with `mass_count` masses, or with the main ones
// of its compounds where that is 0.
std::vector<SampleGroup> make_sample_groups(const SampleChromatogram &chromatogram, int mass_count);

#endif // SAMPLEGROUPS_H
