#include "commonnumbers.h"

#include <QString>

#include <algorithm>
#include <limits>

void CommonNumbers::add(const MsScanRecord &scan)
{
    const double numbers[] = {scan.scan_duration, scan.inter_scan_time, scan.resolution,
                              scan.a_d_sampling_rate, double(scan.a_d_coaddition_factor)};
    static_assert(std::size(numbers) == std::size(commonScanNumbers));
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        isSame[i] = isSame[i] && (isFirst || numbers[i] == values[i]);
        values[i] = numbers[i];
    }
    isFirst = false;
}

bool CommonNumbers::isGiven(double value) const
{
    return !isFirst && ms_is_given(value) && value != NC_FILL_SHORT;
}

double CommonNumbers::valueOf(std::size_t place) const
{
    return isSame[place] ? values[place] : std::numeric_limits<double>::quiet_NaN();
}

void takeCommonNumbers(const pwiz::data::ParamContainer &run, MsScanRecord *scan)
{
    double numbers[std::size(commonScanNumbers)];
    for (std::size_t i = 0; i < std::size(commonScanNumbers); ++i) {
        bool isNumber = false;
        numbers[i] =
            QString::fromStdString(run.userParam(commonScanNumbers[i]).value).toDouble(&isNumber);
        numbers[i] = isNumber ? numbers[i] : MsMissingDouble;
    }
    scan->scan_duration = numbers[0];
    scan->inter_scan_time = numbers[1];
    scan->resolution = numbers[2];
    scan->a_d_sampling_rate = numbers[3];
    scan->a_d_coaddition_factor = qint16(std::clamp(numbers[4], -32768.0, 32767.0));
}
