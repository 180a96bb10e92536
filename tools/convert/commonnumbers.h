// The template's numbers of a scan that mzML has no terms for. A run in mzML has them as user parameters
// where they are the same in all scans.
#ifndef COMMONNUMBERS_H
#define COMMONNUMBERS_H

#include "mstoolkit.h"

#include <cstddef>
#include <iterator>

#include <pwiz/data/common/ParamTypes.hpp>

constexpr const char *commonScanNumbers[] = {"scan_duration", "inter_scan_time", "resolution",
                                             "a_d_sampling_rate", "a_d_coaddition_factor"};

class CommonNumbers
{
public:
    void add(const MsScanRecord &scan);

    // Calls `use` with the name of each number and its value, which is no number where it changes.
    template <class Use> void forEach(Use &&use) const
    {
        for (std::size_t i = 0; i < std::size(commonScanNumbers); ++i) {
            if (!isSame[i] || isGiven(values[i]))
                use(commonScanNumbers[i], valueOf(i));
        }
    }

private:
    bool isGiven(double value) const;
    double valueOf(std::size_t place) const;

    bool isFirst = true;
    double values[std::size(commonScanNumbers)] = {};
    bool isSame[std::size(commonScanNumbers)] = {true, true, true, true, true};
};

// Gives a scan the numbers that the run has as user parameters.
void takeCommonNumbers(const pwiz::data::ParamContainer &run, MsScanRecord *scan);

#endif // COMMONNUMBERS_H
