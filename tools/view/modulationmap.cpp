#include "modulationmap.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int leastRows = 2;
constexpr double mostRows = 100000.0;

// Scans that are missing leave cells empty. A map with more cells than this for a scan has times that
// can't be right.
constexpr double mostCellsOfScan = 8.0;
constexpr double alwaysCells = 1 << 20;

// Times are rounded, so a scan at the edge of a cell could fall to either side of it.
constexpr double edge = 0.25;

// The middle one of the steps from scan to scan; 0 where there is none.
double stepOf(const std::vector<double> &times)
{
    std::vector<double> steps;
    for (std::size_t scan = 1; scan < times.size(); ++scan) {
        const double step = times[scan] - times[scan - 1];
        if (step > 0.0) // false for NaN
            steps.push_back(step);
    }
    if (steps.empty())
        return 0.0;
    const auto middle = steps.begin() + std::ptrdiff_t(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

} // namespace

int ModulationMap::columnOf(double time) const
{
    return int(std::floor((time - start + edge * step) / length));
}

int ModulationMap::rowOf(double time) const
{
    const double inColumn = time - start + edge * step - columnOf(time) * length;
    return std::clamp(int(inColumn / step), 0, rows - 1);
}

ModulationMap foldTrace(const std::vector<double> &times, const std::vector<double> &values,
                        double length, double shift, QString *fault)
{
    double first = std::numeric_limits<double>::infinity();
    double last = -first;
    for (const double time : times) {
        if (std::isfinite(time)) {
            first = std::min(first, time);
            last = std::max(last, time);
        }
    }
    ModulationMap map;
    map.step = stepOf(times);
    if (!(map.step > 0.0) || !(length > 0.0)) {
        *fault = QStringLiteral("The run has no times that a map could be made of.");
        return {};
    }
    const double rows = std::round(length / map.step);
    if (rows < leastRows || rows > mostRows) {
        *fault = QStringLiteral("A modulation of %1 s is too %2 for scans that are %3 s apart.")
                     .arg(length)
                     .arg(rows < leastRows ? QStringLiteral("short") : QStringLiteral("long"))
                     .arg(map.step);
        return {};
    }
    const double within = shift - std::floor(shift / length) * length;
    map.start = first - within;
    map.length = length;
    map.rows = int(rows);
    map.step = length / rows;
    const double columns = std::floor((last - map.start + edge * map.step) / length) + 1.0;
    if (columns * rows > alwaysCells + mostCellsOfScan * double(times.size())) {
        *fault = QStringLiteral("The times of the run have gaps that are too long for a map.");
        return {};
    }
    map.columns = int(columns);
    map.values.assign(std::size_t(columns * rows), std::numeric_limits<double>::quiet_NaN());
    map.scans.assign(map.values.size(), -1);
    for (std::size_t scan = 0; scan < times.size(); ++scan) {
        if (!std::isfinite(times[scan]))
            continue;
        const std::size_t cell = std::size_t(map.columnOf(times[scan])) * std::size_t(map.rows)
            + std::size_t(map.rowOf(times[scan]));
        const double value =
            scan < values.size() ? values[scan] : std::numeric_limits<double>::quiet_NaN();
        map.values[cell] = std::isnan(map.values[cell]) ? value : std::fmax(map.values[cell], value);
        map.scans[cell] = qint32(scan);
    }
    return map;
}
