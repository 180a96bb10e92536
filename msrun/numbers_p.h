// Private: numbers and texts of the toolkit's records as plain values.
#ifndef NUMBERS_P_H
#define NUMBERS_P_H

#include "msattribute.h"

#include <QString>

#include <cmath>
#include <limits>

constexpr double unknownNumber = std::numeric_limits<double>::quiet_NaN();

// Whether a number of a record is there: not missing, never written or infinite.
inline bool isKnown(double number)
{
    constexpr double belowFill = 9e36; // nearly all numbers are
    if (std::abs(number) < belowFill)
        return number != MsMissingDouble;
    return std::isfinite(number) && !ms_is_fill(NC_DOUBLE, number);
}

inline double knownOr(double number, double otherwise)
{
    return isKnown(number) ? number : otherwise;
}

inline double known(double number)
{
    return knownOr(number, unknownNumber);
}

inline bool isKnown(qint32 number)
{
    return number != MsMissingLong && !ms_is_fill(NC_LONG, number);
}

// A text of a record, without blanks around it; null for a blank one.
inline QString textOf(const char *bytes)
{
    const QString text = textFromFile(bytes).trimmed();
    return text.isEmpty() ? QString() : text;
}

#endif // NUMBERS_P_H
