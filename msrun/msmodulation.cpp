#include "msmodulation.h"

#include "evenseries_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace {

constexpr double shortest = 1.0; // seconds
constexpr double longest = 20.0;
constexpr double finest = 0.02;         // of peaks in the second dimension, a tenth of a second wide
constexpr double drift = 60.0;          // slower changes aren't modulation
constexpr std::size_t fewestScans = 10; // in a modulation
constexpr double fewestModulations = 10.0;

// The autocorrelation of a trace, and what of it is a comb of narrow teeth.
class Comb
{
public:
    explicit Comb(std::vector<float> autocorrelation) : values(std::move(autocorrelation)) { }

    struct Tooth {
        double lag = 0.0;      // of its top
        double height = 0.0;   // of its top
        double contrast = 0.0; // above what lies half a modulation before and behind it
    };

    // The tooth near a lag, for a modulation of that length.
    Tooth toothNear(double lag, double length) const
    {
        const double tolerance = std::max(1.5, 0.02 * length);
        std::size_t top = std::size_t(std::max(lag - tolerance, 1.0));
        const auto last = std::min(std::size_t(lag + tolerance), values.size() - 2);
        for (std::size_t i = top; i <= last; ++i) {
            if (values[i] > values[top])
                top = i;
        }
        Tooth tooth;
        if (top > last || values[top] < values[top - 1] || values[top] < values[top + 1])
            return tooth; // a slope
        tooth.lag = double(top) + shiftOf(top);
        tooth.height = double(values[top]);
        tooth.contrast = tooth.height
            - std::max(meanAround(lag - 0.5 * length, length), meanAround(lag + 0.5 * length, length));
        return tooth;
    }

    // How wide a tooth is at half its height above what lies between the teeth, in parts of the length.
    double widthOf(const Tooth &tooth) const
    {
        const double half = tooth.height - 0.5 * tooth.contrast;
        auto from = std::size_t(tooth.lag + 0.5);
        auto to = from;
        while (from > 0 && double(values[from]) > half)
            --from;
        while (to + 1 < values.size() && double(values[to]) > half)
            ++to;
        return double(to - from) / tooth.lag;
    }

    std::size_t size() const { return values.size(); }
    float operator[](std::size_t lag) const { return values[lag]; }

private:
    double meanAround(double lag, double length) const
    {
        const auto from = std::size_t(std::max(lag - 0.2 * length, 0.0));
        const auto to = std::min(std::size_t(lag + 0.2 * length) + 1, values.size());
        double sum = 0.0;
        for (std::size_t i = from; i < to; ++i)
            sum += double(values[i]);
        return to > from ? sum / double(to - from) : 0.0;
    }

    // From a place to the top of the parabola through it and its neighbours.
    double shiftOf(std::size_t top) const
    {
        const double before = double(values[top - 1]);
        const double behind = double(values[top + 1]);
        const double bend = before - 2.0 * double(values[top]) + behind;
        return bend < 0.0 ? 0.5 * (before - behind) / bend : 0.0;
    }

    std::vector<float> values;
};

// How well a length explains the trace: by the first two teeth, which have to be there.
double scoreOf(const Comb &comb, double length)
{
    const Comb::Tooth first = comb.toothNear(length, length);
    const Comb::Tooth second = comb.toothNear(2.0 * length, length);
    if (!(first.contrast > 0.0) || !(second.contrast > 0.0))
        return 0.0;
    return std::sqrt(first.contrast * second.contrast);
}

// The length between two lags that explains the trace best, the shortest of those that are about as good:
// twice a modulation is one as well.
double bestLength(const Comb &comb, std::size_t from, std::size_t to)
{
    constexpr double nearly = 0.85;
    std::vector<std::pair<double, double>> found; // length, score
    double best = 0.0;
    for (std::size_t lag = from; lag <= to; ++lag) {
        if (comb[lag] < comb[lag - 1] || comb[lag] < comb[lag + 1])
            continue;
        const double score = scoreOf(comb, double(lag));
        found.emplace_back(double(lag), score);
        best = std::max(best, score);
    }
    for (const auto &[length, score] : found) {
        if (score > 0.0 && score >= nearly * best)
            return length;
    }
    return 0.0;
}

// Measures a length by teeth that are farther and farther away, as long as they stand out.
double refined(const Comb &comb, double length, double step)
{
    constexpr double clear = 0.5; // of the first one's contrast
    const Comb::Tooth first = comb.toothNear(length, length);
    double result = first.lag;
    int number = 2;
    for (; double(number + 1) * result < double(comb.size()); number *= 2) {
        const Comb::Tooth tooth = comb.toothNear(number * result, result);
        if (!(tooth.contrast >= clear * first.contrast))
            break;
        result = tooth.lag / number;
    }
    // The oven makes the same peak come a little earlier each time. Teeth that are so near that they come
    // of the same peaks can't tell that from a shorter length, but lengths are set in tenths of a second.
    constexpr int far = 16;
    constexpr double earlier = 0.0025;
    const double seconds = result * step;
    const double tenths = std::round(10.0 * seconds) / 10.0;
    return number < far && std::abs(seconds - tenths) < earlier * seconds ? tenths : seconds;
}

} // namespace

MsModulation ms_guess_modulation(const std::vector<double> &times, const std::vector<double> &totals)
{
    EvenSeries series = evenSeriesOf(times, totals, finest);
    if (series.values.empty())
        return {};
    const double span = double(series.values.size()) * series.step;
    const auto from = std::size_t(std::max(shortest / series.step, double(fewestScans)));
    const auto to = std::size_t(std::min(longest, span / fewestModulations) / series.step);
    if (from >= to)
        return {};
    flatten(&series.values, std::size_t(drift / series.step));
    const std::size_t most = std::min(series.values.size() / 2, std::size_t(60) * to);
    const Comb comb(autocorrelationOf(series.values, most));
    if (comb.size() < 3)
        return {};

    const double length = bestLength(comb, from, to);
    constexpr double widest = 0.35; // a wave has 0.5
    if (length == 0.0 || comb.widthOf(comb.toothNear(length, length)) > widest)
        return {};
    constexpr double noScore = 0.05; // what chance makes
    constexpr double fullScore = 0.35;
    MsModulation modulation;
    modulation.confidence =
        std::clamp((scoreOf(comb, length) - noScore) / (fullScore - noScore), 0.0, 1.0);
    modulation.isConfident = modulation.confidence >= 0.5;
    if (modulation.confidence > 0.0)
        modulation.seconds = refined(comb, length, series.step);
    return modulation;
}
