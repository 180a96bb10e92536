// Private to the toolkit: from numbers as they stand in a classic file, with the largest byte first, to
// numbers in memory.
#ifndef STOREDNUMBERS_P_H
#define STOREDNUMBERS_P_H

#include "types_p.h"

#include <QtGlobal>

#include <cstddef>

// Returns the bytes that a number of a type takes in the file; 0 for NC_CHAR and what is no type.
std::size_t ms_stored_width(nc_type type);

// Turns `count` numbers of type `stored`, the first at `bytes` and each `stride` bytes behind the one
// before, into numbers of `type`, NC_SHORT to NC_DOUBLE, in `target`. Where both types are the same and
// the numbers lie side by side, `target` may be `bytes`. Returns false where one of them can't be held;
// the others are there.
bool ms_convert_stored(nc_type stored, const unsigned char *bytes, std::size_t stride, std::size_t count,
                       qint32 type, void *target);

#endif // STOREDNUMBERS_P_H
