// Rounding, as the host does it everywhere.
#ifndef TMATH_H
#define TMATH_H

#include <limits>

class TMath
{
public:
    // Returns the nearest whole number. Halves are rounded away from zero; NaN becomes 0, and a number
    // beyond 32 bits the nearest one within. It is in the header, and does without the library's rounding
    // routines, because it runs once for each point of a run.
    static int round(double value)
    {
        // Add the largest number below a half, and let the cast cut toward zero. This is exact, and it
        // has no branch on the fraction, which no processor could predict.
        constexpr double half = 0.49999999999999994;
        if (value >= 0.0) {
            return value < 2147483647.5 ? static_cast<int>(value + half)
                                        : std::numeric_limits<int>::max();
        }
        if (value > -2147483648.5)
            return static_cast<int>(value - half);
        return value < 0.0 ? std::numeric_limits<int>::min() : 0; // 0 for NaN
    }
};

#endif // TMATH_H
