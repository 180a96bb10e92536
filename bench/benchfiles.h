// The runs that the benchmarks read: made once, kept in the build folder.
#ifndef BENCHFILES_H
#define BENCHFILES_H

#include <string>
#include <vector>

struct BenchRun {
    const char *name;
    bool unlimited; // the layout with unlimited point_number, else the fixed one
    int scans;
    int points;   // of each scan
    int masses;   // distinct ones
    int massType; // nc types
    int intensityType;
};

// The variables with a double for each scan.
constexpr const char *benchNumbers[] = {
    "a_d_sampling_rate", "scan_acquisition_time", "scan_duration",  "inter_scan_time", "resolution",
    "total_intensity",   "mass_range_min",        "mass_range_max", "time_range_min",  "time_range_max"};

// All runs, in the order of the report.
const std::vector<BenchRun> &benchRuns();

// The file of a run, made if it isn't there. Empty if it can't be made.
std::string benchFile(const BenchRun &run);

#endif // BENCHFILES_H
