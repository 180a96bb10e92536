// One scan of a sample, before it is stored in the file's data formats.
#ifndef SAMPLESCAN_H
#define SAMPLESCAN_H

#include <QtGlobal>

#include <vector>

struct SampleScan {
    double time = 0.0;             // seconds since injection
    std::vector<double> masses;    // rising; empty in a run without mass axis
    std::vector<double> times;     // empty in a run without time axis
    std::vector<double> counts;    // whole ion counts, one for each mass or time
    std::vector<qint32> saturated; // the points whose count is the detector's limit

    void clear()
    {
        masses.clear();
        times.clear();
        counts.clear();
        saturated.clear();
    }
};

// The most that the detector counts.
constexpr double sampleCountLimit = 4190000.0;

#endif // SAMPLESCAN_H
