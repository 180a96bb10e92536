// Private to the toolkit: what the readers of a whole run take.
#ifndef WHOLERUN_P_H
#define WHOLERUN_P_H

#include "mstoolkit.h"

struct MsFileState;

// Whether ms_read_total_intensity takes a variable: one with a number for each scan, whatever its rank.
bool ms_is_trace(MsFileState &file, int slot, qint32 scan_count);

#endif // WHOLERUN_P_H
