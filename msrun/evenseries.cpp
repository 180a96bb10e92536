#include "evenseries_p.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

#include <kiss_fftr.h>

namespace {

using Values = std::vector<float>;

float medianOf(Values values)
{
    if (values.empty())
        return 0.0f;
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The noise of a series, from the differences of neighbours.
float noiseOf(const Values &values)
{
    Values steps;
    steps.reserve(values.size());
    for (std::size_t i = 1; i < values.size(); ++i)
        steps.push_back(std::abs(values[i] - values[i - 1]));
    return medianOf(std::move(steps)) * 1.05f; // 1.4826 / sqrt(2): of a normal distribution
}

// The smallest value within `window` values around each.
Values floorOf(const Values &values, std::size_t window)
{
    const std::size_t half = window / 2;
    Values floor(values.size());
    std::deque<std::size_t> rising; // places of values, each larger than the one before
    std::size_t taken = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (; taken < std::min(values.size(), i + half + 1); ++taken) {
            while (!rising.empty() && values[rising.back()] >= values[taken])
                rising.pop_back();
            rising.push_back(taken);
        }
        while (rising.front() + half < i)
            rising.pop_front();
        floor[i] = values[rising.front()];
    }
    return floor;
}

void subtractMovingMean(Values *values, std::size_t window)
{
    const std::size_t half = window / 2;
    std::vector<double> sums(values->size() + 1, 0.0);
    std::partial_sum(values->begin(), values->end(), sums.begin() + 1, std::plus<double>());
    for (std::size_t i = 0; i < values->size(); ++i) {
        const std::size_t from = i < half ? 0 : i - half;
        const std::size_t to = std::min(values->size(), i + half + 1);
        (*values)[i] -= float((sums[to] - sums[from]) / double(to - from));
    }
}

struct FreeKiss {
    void operator()(kiss_fftr_cfg plan) const { kiss_fftr_free(plan); }
};
using Plan = std::unique_ptr<std::remove_pointer_t<kiss_fftr_cfg>, FreeKiss>;

Plan planOf(std::size_t size, bool isInverse)
{
    Plan plan(kiss_fftr_alloc(int(size), isInverse, nullptr, nullptr));
    if (!plan)
        throw std::bad_alloc();
    return plan;
}

struct Trace {
    std::vector<double> times;
    std::vector<double> totals;
};

// The scans that have a time and a total, each behind the one before.
Trace usableScans(const std::vector<double> &times, const std::vector<double> &totals)
{
    constexpr std::size_t most = 1 << 22;
    Trace trace;
    for (std::size_t i = 0; i < std::min({times.size(), totals.size(), most}); ++i) {
        const bool isBehind = trace.times.empty() || times[i] > trace.times.back();
        if (std::isfinite(times[i]) && std::isfinite(totals[i]) && isBehind) {
            trace.times.push_back(times[i]);
            trace.totals.push_back(totals[i]);
        }
    }
    return trace;
}

double stepOf(const std::vector<double> &times)
{
    std::vector<double> steps;
    for (std::size_t i = 1; i < times.size(); ++i)
        steps.push_back(times[i] - times[i - 1]);
    const auto middle = steps.begin() + std::ptrdiff_t(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

// Means of `by` neighbours.
void thinOut(EvenSeries *series, std::size_t by)
{
    Values means;
    for (std::size_t i = 0; i + by <= series->values.size(); i += by) {
        const auto first = series->values.begin() + std::ptrdiff_t(i);
        means.push_back(std::accumulate(first, first + std::ptrdiff_t(by), 0.0f) / float(by));
    }
    series->values = std::move(means);
    series->step *= double(by);
}

} // namespace

EvenSeries evenSeriesOf(const std::vector<double> &times, const std::vector<double> &totals,
                        double finest)
{
    constexpr std::size_t fewest = 100;
    const Trace trace = usableScans(times, totals);
    const std::size_t count = trace.times.size();
    if (count < fewest || count < times.size() / 10 * 9)
        return {};
    EvenSeries series;
    series.step = stepOf(trace.times);
    const double span = trace.times.back() - trace.times.front();
    if (!(span / series.step < 2.0 * double(count)))
        return {};
    const auto [least, largest] = std::minmax_element(trace.totals.begin(), trace.totals.end());
    const double range = *largest - *least;
    if (!(range > 0.0) || !std::isfinite(range))
        return {};
    const auto size = std::size_t(span / series.step) + 1;
    const double by = finest / series.step;
    if (!(by < double(size)))
        return {};
    std::size_t behind = 1;
    for (std::size_t i = 0; i < size; ++i) {
        const double time = trace.times.front() + double(i) * series.step;
        while (behind + 1 < count && trace.times[behind] < time)
            ++behind;
        const double before = trace.times[behind - 1];
        const double part = std::min((time - before) / (trace.times[behind] - before), 1.0);
        const double total =
            trace.totals[behind - 1] + part * (trace.totals[behind] - trace.totals[behind - 1]);
        series.values.push_back(float((total - *least) / range));
    }
    if (by >= 2.0)
        thinOut(&series, std::size_t(by));
    return series;
}

void flatten(std::vector<float> *values, std::size_t window)
{
    // As a logarithm, but for heights below the noise.
    constexpr float leastUnit = 1e-6f; // of the whole range
    const float unit = std::max(3.0f * noiseOf(*values), leastUnit);
    const Values floor = floorOf(*values, window);
    for (std::size_t i = 0; i < values->size(); ++i)
        (*values)[i] = std::asinh(((*values)[i] - floor[i]) / unit);
    subtractMovingMean(values, window);
}

std::vector<float> autocorrelationOf(const std::vector<float> &values, std::size_t most)
{
    const auto size = std::size_t(kiss_fftr_next_fast_size_real(int(values.size() + most)));
    Values padded(values);
    padded.resize(size, 0.0f);
    std::vector<kiss_fft_cpx> spectrum(size / 2 + 1);
    kiss_fftr(planOf(size, false).get(), padded.data(), spectrum.data());
    for (kiss_fft_cpx &each : spectrum)
        each = {each.r * each.r + each.i * each.i, 0.0f};
    kiss_fftri(planOf(size, true).get(), spectrum.data(), padded.data());
    if (!(padded[0] > 0.0f))
        return {};
    Values result(most + 1);
    for (std::size_t lag = 0; lag <= most; ++lag) {
        const double share = double(values.size() - lag) / double(values.size());
        result[lag] = float(double(padded[lag]) / double(padded[0]) / share);
    }
    return result;
}
