// Private to the toolkit: what the times of the scans say that can't be right.
#ifndef DOUBTTIMES_P_H
#define DOUBTTIMES_P_H

#include <cstddef>

struct MsFileState;

// Reads the times of the first `scans` scans into the file's tally.
void ms_look_at_times(MsFileState &file, std::size_t scans);

#endif // DOUBTTIMES_P_H
