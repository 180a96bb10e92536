#include "inforanges.h"

#include <algorithm>

void Range::add(const MsNumbers &numbers)
{
    const int type = numbers.type();
    numbers.visit([this, type](const auto *first, qint32 count) {
        for (const auto *number = first; number < first + count; ++number) {
            if (!ms_is_fill(type, double(*number)))
                add(double(*number));
        }
    });
}

void Range::add(double number)
{
    if (!ms_is_given(number))
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
