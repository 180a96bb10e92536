// Rounding, as the host does it everywhere.
#ifndef TMATH_H
#define TMATH_H

#include <limits>

class TMath
{
public:
    // The nearest whole number: halves go away from zero, NaN gives 0, and what lies beyond 32 bits
    // gives the nearest end of the range. In the header, and without the library's rounding routines,
    // because it runs once for each point of a run.
    static int round(double value)
    {
        // The largest number below a half, and the cast that cuts toward zero: exact, and without a
        // branch on the fraction, which no processor could foresee.
        constexpr double half = 0.49999999999999994;
        if (value >= 0.0) {
            return value < 2147483647.5 ? static_cast<int>(value + half)
                                        : std::numeric_limits<int>::max();
        }
        if (value > -2147483648.5)
            return static_cast<int>(value - half);
        return value < 0.0 ? std::numeric_limits<int>::min() : 0; // NaN isn't
    }
};

#endif // TMATH_H
