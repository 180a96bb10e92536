// Private to the toolkit: types and blocks of memory.
#ifndef TYPES_P_H
#define TYPES_P_H

#include "mstoolkit.h"

#include <memory>

struct MsFree {
    void operator()(void *block) const { ms_free(block); }
};

// A block that the toolkit will hand out, or frees if it doesn't come to that.
template <class T> using MsBlock = std::unique_ptr<T, MsFree>;

// Returns an uncleared block of `size` bytes, to be freed with ms_free.
void *ms_alloc_bytes(std::size_t size);

// Makes a text null, after freeing it where `release` isn't 0.
void ms_clear_text(char release, char **text);

// Returns the bytes of an element of NC_SHORT to NC_DOUBLE; 0 for other types.
quint32 ms_type_width(qint32 type);

// Whether a data format of that type stores whole numbers.
bool ms_is_whole(qint32 type);

// Whether netCDF converts a type to other numbers.
bool ms_is_number(nc_type type);

#endif // TYPES_P_H
