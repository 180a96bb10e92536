// The fill values of netCDF, which stand where a file's writer wrote nothing.
#ifndef FILLVALUE_H
#define FILLVALUE_H

#include <netcdf.h>

#include <type_traits>

// Whether a number that a file stores as the netCDF type `type` was never written. A double may come from
// a float.
inline bool isFillValue(double number, nc_type type)
{
    switch (type) {
    case NC_SHORT:
        return number == NC_FILL_SHORT;
    case NC_INT:
        return number == NC_FILL_INT;
    default:
        return number == NC_FILL_DOUBLE || number == double(NC_FILL_FLOAT);
    }
}

// The same of a number that has the stored type.
template <class Number> bool isFillValue(Number number)
{
    if constexpr (std::is_floating_point_v<Number>)
        return isFillValue(double(number), NC_DOUBLE);
    else
        return isFillValue(double(number), sizeof(Number) == sizeof(short) ? NC_SHORT : NC_INT);
}

#endif // FILLVALUE_H
