#include "msspectrum.h"

#include "numbers_p.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace {

// No fill value is below this, nor are infinities and NaN, nor what a scale makes infinite.
constexpr float leastSuspect = NC_FILL_FLOAT * (1.0f - 1e-5f);

template <class Number> bool isFillOfWhole(Number number)
{
    if constexpr (std::is_same_v<Number, qint16>) {
        return number == NC_FILL_SHORT;
    } else {
        static_assert(std::is_same_v<Number, qint32>, "A whole number without a fill value.");
        return number == NC_FILL_INT;
    }
}

// Whether some of the numbers may be no data: a plain loop, as hardly ever one is.
bool mayLackData(const MsNumbers &numbers)
{
    bool may = false;
    numbers.visit([&may](const auto *first, qint32 count) {
        using Number = std::decay_t<decltype(*first)>;
        int found = 0;
        for (qint32 i = 0; i < count; ++i) {
            if constexpr (std::is_floating_point_v<Number>)
                found |= int(!(std::abs(first[i]) < Number(leastSuspect)));
            else
                found |= int(isFillOfWhole(first[i]));
        }
        may = found != 0;
    });
    return may;
}

void mark(const MsNumbers &numbers, double factor, double offset, std::vector<char> *dropped)
{
    numbers.visit([&](const auto *first, qint32 count) {
        using Number = std::decay_t<decltype(*first)>;
        for (qint32 i = 0; i < count; ++i) {
            bool isNoData = false;
            if constexpr (std::is_floating_point_v<Number>)
                isNoData = ms_is_fill(NC_DOUBLE, double(first[i]))
                    || !std::isfinite(double(first[i]) * factor + offset);
            else
                isNoData = isFillOfWhole(first[i]);
            (*dropped)[std::size_t(i)] |= isNoData;
        }
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

void scale(const MsNumbers &numbers, double factor, double offset, double *target)
{
    numbers.visit([&](const auto *first, qint32 count) {
        for (qint32 i = 0; i < count; ++i)
            target[i] = double(first[i]) * factor + offset;
    });
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
    mark(masses, scales_.mass, 0.0, &dropped);
    mark(intensities, scales_.intensity, scales_.offset, &dropped);
    compact(masses, scan_.mass_values, dropped);
    compact(scan_.times(), scan_.time_values, dropped);
    compact(intensities, scan_.intensity_values, dropped);
    scan_.point_count = qint32(std::count(dropped.begin(), dropped.end(), char(0)));
}

qint32 MsSpectrum::number() const
{
    return ms_is_given(scan_.actual_scan_number) ? scan_.actual_scan_number : index();
}

const double *MsSpectrum::numbers() const
{
    if (!numbers_) {
        numbers_.reset(new double[2 * std::size_t(size_)]); // uncleared
        if (size_ > 0) { // of a library without masses there are intensities all the same
            scale(scan_.masses(), scales_.mass, 0.0, numbers_.get());
            scale(scan_.intensities(), scales_.intensity, scales_.offset, numbers_.get() + size_);
        }
    }
    return numbers_.get();
}

const double *MsSpectrum::masses() const
{
    return numbers();
}

const double *MsSpectrum::intensities() const
{
    return numbers() + size_;
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
        for (qint32 i = 0; i < std::min(count, size_); ++i)
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
