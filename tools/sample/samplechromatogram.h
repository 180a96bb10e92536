// When and how much of each compound leaves the column.
#ifndef SAMPLECHROMATOGRAM_H
#define SAMPLECHROMATOGRAM_H

#include "samplerandom.h"

#include <vector>

// One compound's peak.
struct SampleElution {
    int compound; // place in the table
    double time;  // of the apex, seconds since injection
    double height;
};

// Times in milliseconds, so that they add up without rounding.
struct SampleClock {
    qint64 start; // of the first scan
    qint64 interval;
    int scans;

    double time(int scan) const { return double(start + scan * interval) / 1000.0; }
    double length() const { return double(scans * interval) / 1000.0; }
    // Returns which part of the run is over at the beginning of a scan, from 0 to 1.
    double progress(int scan) const { return double(scan) / double(scans); }
};

// Returns when the compound elutes in a run, in seconds since injection. The column is heated evenly, so
// that is linear in the retention index.
double sampleRetentionTime(const SampleClock &clock, int compound);

class SampleChromatogram
{
public:
    SampleChromatogram(const SampleClock &clock, SampleRandom *random);

    const SampleClock &clock() const { return runClock; }
    const std::vector<SampleElution> &elutions() const { return peaks; } // by time
    std::vector<SampleElution> &elutions() { return peaks; }

    // Returns the counts of the compound's base peak at a time, in seconds like `sigma`, the standard
    // deviation of the chromatographic peak.
    static double heightAt(const SampleElution &elution, double time, double sigma);

private:
    SampleClock runClock;
    std::vector<SampleElution> peaks;
};

#endif // SAMPLECHROMATOGRAM_H
