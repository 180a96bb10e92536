// From a data format, which is known at run time, to the C++ type of its numbers. This is the one place
// that tells the four formats apart; whoever has to treat numbers by their stored type calls it.
#ifndef MSFORMAT_H
#define MSFORMAT_H

#include "mstoolkit.h"

#include <type_traits>

// Calls `use` with a null pointer to the type of the format's numbers (qint16, qint32, float or double)
// and returns what it returns, which has to be one type for all four. A format outside MsDataFormat
// makes no call; the result is then a value-initialised one.
template <class Use> auto ms_with_format(qint32 format, Use &&use)
{
    using Result = decltype(use(static_cast<double *>(nullptr)));
    switch (format) {
    case MsShortFormat:
        return use(static_cast<qint16 *>(nullptr));
    case MsLongFormat:
        return use(static_cast<qint32 *>(nullptr));
    case MsFloatFormat:
        return use(static_cast<float *>(nullptr));
    case MsDoubleFormat:
        return use(static_cast<double *>(nullptr));
    default:
        return Result();
    }
}

// The same with a vector of that format: calls `use` with its first element, as a pointer of the
// format's type.
template <class Use> auto ms_with_format(qint32 format, const void *vector, Use &&use)
{
    return ms_with_format(format, [&](auto *type) {
        return use(static_cast<std::add_const_t<std::remove_pointer_t<decltype(type)>> *>(vector));
    });
}

#endif // MSFORMAT_H
