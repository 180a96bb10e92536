// Rounding, as the host does it everywhere.
#ifndef TMATH_H
#define TMATH_H

#include <cmath>
#include <limits>

class TMath
{
public:
    // The nearest whole number: halves go away from zero, NaN gives 0, and what lies beyond 32 bits
    // gives the nearest end of the range. In the header, and without the library's rounding routines,
    // because it runs once for each point of a run.
    static int round(double value)
    {
        if (!(value > -2147483648.5))
            return value < 0.0 ? std::numeric_limits<int>::min() : 0; // NaN is neither
        if (value >= 2147483647.5)
            return std::numeric_limits<int>::max();
        // The largest number below a half, and the cast that cuts toward zero: exact, and without a
        // branch on the fraction, which no processor could foresee.
        return static_cast<int>(value + std::copysign(0.49999999999999994, value));
    }
};

#endif // TMATH_H
