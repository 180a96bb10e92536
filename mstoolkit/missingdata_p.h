// Private to the toolkit: what lies beyond the end of a file that is shorter than its header says. The
// library reads zeros there; to the toolkit it is unreadable.
#ifndef MISSINGDATA_P_H
#define MISSINGDATA_P_H

#include "filestate_p.h"

// Takes note of a file that was cut since it was opened.
void ms_look_at_length(MsFileState *state);

// Bytes that the file lacks at its end.
quint64 ms_lacking(const MsFileState &state);

// Whether the file reaches to the last element of a request, given like those of netCDF, with `rank`
// (1 or 2) elements in each vector, the count of lines not 0. `state` may be null: an unknown file counts
// as whole.
bool ms_is_stored(const MsFileState *state, int varid, int rank, const std::size_t *start,
                  const std::size_t *count);

// The opposite, for elements that were just read, after a look at the length.
bool ms_lies_beyond(MsFileState *state, int varid, int rank, const std::size_t *start,
                    const std::size_t *count);

// How many of the first `count` elements of a variable of one dimension the file holds.
std::size_t ms_stored_elements(const MsFileState &state, int varid, std::size_t count);

#endif // MISSINGDATA_P_H
