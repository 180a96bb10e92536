#include "inforanges.h"

#include "fillvalue.h"

#include <algorithm>
#include <cmath>

void Range::add(const MsNumbers &numbers)
{
    numbers.visit([this](const auto *first, qint32 count) {
        for (const auto *number = first; number < first + count; ++number) {
            if (!isFillValue(*number))
                add(double(*number));
        }
    });
}

void Range::add(double number)
{
    if (!std::isfinite(number) || number == MsMissingDouble || isFillValue(number))
        return;
    least = std::min(least, number);
    most = std::max(most, number);
}

void Ranges::add(const MsScan &scan)
{
    masses.add(scan.masses());
    times.add(scan.times());
    intensities.add(scan.intensities());
    acquisitionTimes.add(scan.scan_acquisition_time);
}
