// Private: numbers and texts of the toolkit's records as plain values.
#ifndef NUMBERS_P_H
#define NUMBERS_P_H

#include "msattribute.h"

#include <QString>

#include <limits>

constexpr double unknownNumber = std::numeric_limits<double>::quiet_NaN();

inline double knownOr(double number, double otherwise)
{
    return ms_is_given(number) ? number : otherwise;
}

inline double known(double number)
{
    return knownOr(number, unknownNumber);
}

// A text of a record, without blanks around it; null for a blank one.
inline QString textOf(const char *bytes)
{
    const QString text = textFromFile(bytes).trimmed();
    return text.isEmpty() ? QString() : text;
}

#endif // NUMBERS_P_H
