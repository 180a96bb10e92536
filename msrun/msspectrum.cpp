#include "msspectrum.h"

#include "numbers_p.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

// Beyond all numbers that can be data; infinities and NaN aren't below it either.
constexpr float leastFill = NC_FILL_FLOAT * (1.0f - 1e-5f);

template <class Number> constexpr qint32 typeOf()
{
    if constexpr (std::is_same_v<Number, qint16>)
        return NC_SHORT;
    else if constexpr (std::is_same_v<Number, qint32>)
        return NC_INT;
    else
        return NC_DOUBLE;
}

template <class Number> bool isNoData(Number number)
{
    if constexpr (std::is_floating_point_v<Number>)
        return !std::isfinite(number) || ms_is_fill(NC_DOUBLE, double(number));
    else
        return ms_is_fill(typeOf<Number>(), double(number));
}

// Whether some of the numbers may be no data: a plain loop, as hardly ever one is.
bool mayLackData(const MsNumbers &numbers)
{
    int suspects = 0;
    numbers.visit([&suspects](const auto *first, qint32 count) {
        using Number = std::decay_t<decltype(*first)>;
        int found = 0;
        for (qint32 i = 0; i < count; ++i) {
            if constexpr (std::is_floating_point_v<Number>)
                found |= !(std::abs(first[i]) < Number(leastFill));
            else
                found |= first[i] == Number(typeOf<Number>() == NC_SHORT ? NC_FILL_SHORT : NC_FILL_INT);
        }
        suspects = found;
    });
    return suspects != 0;
}

void mark(const MsNumbers &numbers, std::vector<char> *dropped)
{
    numbers.visit([dropped](const auto *first, qint32 count) {
        for (qint32 i = 0; i < count; ++i)
            (*dropped)[std::size_t(i)] |= isNoData(first[i]);
    });
}

// Moves the numbers that stay to the front. `block` is the one that `numbers` shows.
void compact(const MsNumbers &numbers, void *block, const std::vector<char> &dropped)
{
    numbers.visit([&](const auto *first, qint32 count) {
        auto *target = static_cast<std::decay_t<decltype(*first)> *>(block);
        for (qint32 i = 0; i < count; ++i) {
            if (!dropped[std::size_t(i)])
                *target++ = first[i];
        }
    });
}

std::vector<double> scaled(const MsNumbers &numbers, double factor, double offset)
{
    std::vector<double> result(std::size_t(numbers.size()));
    numbers.visit([&](const auto *first, qint32 count) {
        for (qint32 i = 0; i < count; ++i)
            result[std::size_t(i)] = double(first[i]) * factor + offset;
    });
    return result;
}

const float *floatsOf(const MsNumbers &numbers)
{
    const float *floats = nullptr;
    numbers.visit([&floats](const auto *first, qint32) {
        if constexpr (std::is_same_v<decltype(first), const float *>)
            floats = first;
    });
    return floats;
}

} // namespace

MsSpectrum::MsSpectrum(MsScan &&record, const MsScales &scales, double time, const QString &failure)
    : scan_(std::move(record)), scales_(scales), time_(time), failure_(failure)
{
    dropPointsWithoutData();
    size_ = isRead() ? scan_.masses().size() : 0;
}

void MsSpectrum::dropPointsWithoutData()
{
    const MsNumbers masses = scan_.masses();
    const MsNumbers intensities = scan_.intensities();
    if (!mayLackData(masses) && !mayLackData(intensities))
        return;
    std::vector<char> dropped(std::size_t(std::max(scan_.point_count, 0)), 0);
    mark(masses, &dropped);
    mark(intensities, &dropped);
    compact(masses, scan_.mass_values, dropped);
    compact(scan_.times(), scan_.time_values, dropped);
    compact(intensities, scan_.intensity_values, dropped);
    scan_.point_count = qint32(std::count(dropped.begin(), dropped.end(), char(0)));
}

qint32 MsSpectrum::number() const
{
    return isKnown(scan_.actual_scan_number) ? scan_.actual_scan_number : index();
}

const double *MsSpectrum::masses() const
{
    if (!masses_)
        masses_ = scaled(scan_.masses(), scales_.mass, 0.0);
    return masses_->data();
}

const double *MsSpectrum::intensities() const
{
    if (!intensities_)
        intensities_ = scaled(scan_.intensities(), scales_.intensity, scales_.offset);
    return intensities_->data();
}

const float *MsSpectrum::storedMasses() const
{
    return scales_.mass == 1.0 ? floatsOf(scan_.masses()) : nullptr;
}

const float *MsSpectrum::storedIntensities() const
{
    return scales_.intensity == 1.0 && scales_.offset == 0.0 ? floatsOf(scan_.intensities()) : nullptr;
}

double MsSpectrum::storedTotal() const
{
    return known(scan_.total_intensity);
}

double MsSpectrum::summedTotal() const
{
    double sum = 0.0;
    scan_.intensities().visit([&](const auto *first, qint32 count) {
        double total = 0.0;
        for (qint32 i = 0; i < count; ++i)
            total += double(first[i]) * scales_.intensity + scales_.offset;
        sum = total;
    });
    return isRead() ? sum : unknownNumber;
}

MsInterval MsSpectrum::massRange() const
{
    return {known(scan_.mass_range_min), known(scan_.mass_range_max)};
}

MsInterval MsSpectrum::timeRange() const
{
    return {known(scan_.time_range_min), known(scan_.time_range_max)};
}
