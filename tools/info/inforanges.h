// The ranges of a run's numbers, as its data has them.
#ifndef INFORANGES_H
#define INFORANGES_H

#include "msfile.h"

#include <limits>

// The least and the largest of some numbers. Those that are NaN, infinite, missing or never written don't
// count.
class Range
{
public:
    void add(const MsNumbers &numbers);
    void add(double number);

    bool isEmpty() const { return least > most; }
    double min() const { return least; }
    double max() const { return most; }

    // Returns the range of what the numbers stand for, by a function that rises or falls all the way.
    template <class Meaning> Range as(Meaning &&meaning) const;

private:
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
};

template <class Meaning> Range Range::as(Meaning &&meaning) const
{
    Range range;
    if (!isEmpty()) {
        range.add(meaning(least));
        range.add(meaning(most));
    }
    return range;
}

// As stored, but for the time of a scan, which needs no factor.
struct Ranges {
    Range masses;
    Range times;
    Range intensities;
    Range acquisitionTimes;

    void add(const MsScan &scan);
};

#endif // INFORANGES_H
