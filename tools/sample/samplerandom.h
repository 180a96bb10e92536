// Random numbers and peak shapes that come out the same on every machine: made with the basic
// operations and the square root, which are rounded alike everywhere, and without the distributions
// and functions of the standard library, which aren't.
#ifndef SAMPLERANDOM_H
#define SAMPLERANDOM_H

#include <QtGlobal>

#include <cmath>
#include <random>

class SampleRandom
{
public:
    explicit SampleRandom(quint64 seed) : engine(seed) { }

    quint64 bits() { return engine(); }
    double uniform() { return double(engine() >> 11) * 0x1p-53; } // from 0 up to, without, 1

private:
    std::mt19937_64 engine;
};

// About exp(-d*d/2) for a distance `d` from the apex in standard deviations, with the slightly wider
// foot of a real peak.
inline double peakShape(double d)
{
    double base = 1.0 + d * d / 64.0;
    for (int power = 1; power < 32; power *= 2)
        base *= base;
    return 1.0 / base;
}

// The nearest whole number, for a `value` not below 0. Faster than the library's, where the processor
// has no instruction of its own for that.
inline double nearest(double value)
{
    return double(qint64(value + 0.5));
}

// `value`, not below 0, on a grid of `perUnit` steps a unit.
inline double onGrid(double value, double perUnit)
{
    return nearest(value * perUnit) / perUnit;
}

#endif // SAMPLERANDOM_H
