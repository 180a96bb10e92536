#include "tmath.h"

#include <limits>

// Without the library's rounding routines: this runs once for each point of a run. The cast cuts toward
// zero, and the part cut off is exact.
int TMath::round(double value)
{
    if (!(value > -2147483647.5))
        return value < 0.0 ? std::numeric_limits<int>::min() : 0; // NaN is neither
    if (value >= 2147483646.5)
        return std::numeric_limits<int>::max();
    const int whole = static_cast<int>(value);
    const double rest = value - whole;
    return whole + (rest >= 0.5) - (rest <= -0.5);
}
