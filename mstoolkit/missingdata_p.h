// Private to the toolkit: what lies beyond the end of a file that is shorter than its header says. The
// library reads zeros there; to the toolkit it is unreadable.
#ifndef MISSINGDATA_P_H
#define MISSINGDATA_P_H

#include <cstddef>

struct MsClassicLayout;

// Remembers the layout of an open file that is cut off, and forgets it again.
void ms_note_short_file(int ncid, const MsClassicLayout &layout);
void ms_forget_short_file(int ncid);

// Whether the file reaches to the last element of a request, given like those of netCDF, with `rank`
// (1 or 2) elements in each vector and nothing in it empty.
bool ms_is_stored(int ncid, int varid, int rank, const std::size_t *start, const std::size_t *count);

// How many of the first `count` elements of a variable of one dimension the file holds.
std::size_t ms_stored_elements(int ncid, int varid, std::size_t count);

#endif // MISSINGDATA_P_H
