// Rounding, as the host does it everywhere.
#ifndef TMATH_H
#define TMATH_H

class TMath
{
public:
    // The nearest whole number: halves go away from zero, NaN gives 0, and what lies beyond 32 bits
    // gives the nearest end of the range.
    static int round(double value);
};

#endif // TMATH_H
