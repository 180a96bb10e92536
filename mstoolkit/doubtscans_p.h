// Private to the toolkit: what the numbers of all scans, and those of all groups, say that can't be
// right.
#ifndef DOUBTSCANS_P_H
#define DOUBTSCANS_P_H

#include "tally_p.h"

#include <utility>

struct MsFileState;

// Reads where the points of all scans lie and when they were taken, once for a file.
void ms_look_at_scans(MsFileState &file);

// Reads the total intensity of all scans, once for a file: of a run without masses a reader gets nothing
// else.
void ms_look_at_totals(MsFileState &file);

// Looks at the groups of masses: those that can't be, and how many there are.
std::pair<MsFinding, qint32> ms_look_at_groups(MsFileState &file);

#endif // DOUBTSCANS_P_H
