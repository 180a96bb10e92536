// Private: a trace at even times, and how it resembles itself some time later.
#ifndef EVENSERIES_P_H
#define EVENSERIES_P_H

#include <cstddef>
#include <vector>

struct EvenSeries {
    double step = 0.0;         // seconds
    std::vector<float> values; // empty where the times don't allow it
};

// Returns a trace at even times, as it was measured or averaged to `finest` seconds. Scans without a time
// or a total, and those that aren't behind the one before, are left out. Returns no values where those
// are many, and where the pauses between scans are longer than the scans.
EvenSeries evenSeriesOf(const std::vector<double> &times, const std::vector<double> &totals,
                        double finest);

// Makes peaks of all heights count, and takes off what changes more slowly than in `window` values.
void flatten(std::vector<float> *values, std::size_t window);

// Returns the autocorrelation of a series of mean 0 for lags 0 to `most`, which are fewer than its
// values; 1 for lag 0. Empty for a series that doesn't change.
std::vector<float> autocorrelationOf(const std::vector<float> &values, std::size_t most);

#endif // EVENSERIES_P_H
