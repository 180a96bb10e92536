// Random numbers and peak shapes that come out the same on every machine. They use only basic operations
// and the square root, which are rounded alike everywhere. The standard library's distributions and other
// functions aren't.
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
    double uniform() { return double(engine() >> 11) * 0x1p-53; } // from 0 to 1, without 1

private:
    std::mt19937_64 engine;
};

// Returns about exp(-d*d/2) for a distance `d` from the apex in standard deviations. The foot is slightly
// wider, as that of a real peak.
inline double peakShape(double d)
{
    double base = 1.0 + d * d / 64.0;
    for (int power = 1; power < 32; power *= 2)
        base *= base;
    return 1.0 / base;
}

// Returns the nearest whole number of a `value` from 0 on. It is faster than the library's routine where
// the processor has no instruction for that.
inline double nearest(double value)
{
    return double(qint64(value + 0.5));
}

// Returns the nearest point to `value`, from 0 on, of a grid with `perUnit` steps a unit.
inline double onGrid(double value, double perUnit)
{
    return nearest(value * perUnit) / perUnit;
}

#endif // SAMPLERANDOM_H
