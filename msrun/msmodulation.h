// The modulation length of a GCxGC run, guessed from its trace.
#ifndef MSMODULATION_H
#define MSMODULATION_H

#include <limits>
#include <vector>

struct MsModulation {
    double seconds = std::numeric_limits<double>::quiet_NaN(); // NaN: the trace shows none
    double confidence = 0.0;                                   // 0 to 1
    bool isConfident = false; // whether a program may take it without asking
};

// The longest modulation, in seconds, that programs take from a user: that of the dialog for GCxGC runs.
constexpr double MsLongestModulation = 100.0;

// Guesses the modulation length from the total intensities of a run's scans and their times in seconds;
// NaN for what isn't known. Lengths of 1 to 20 s are looked for. In a modulated trace the same peaks come
// again and again at that distance, each narrow against it; a trace without such a pattern has none. The
// scans have to follow each other so closely that ten of them fit into a modulation.
MsModulation ms_guess_modulation(const std::vector<double> &times, const std::vector<double> &totals);

#endif // MSMODULATION_H
