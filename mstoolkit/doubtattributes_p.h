// Private to the toolkit: what the attributes of a file say that can't be right.
#ifndef DOUBTATTRIBUTES_P_H
#define DOUBTATTRIBUTES_P_H

#include "doubtlist_p.h"

struct MsFileState;

// Adds the doubts about the scales, formats, times and dates that the file's attributes give. The tally
// has to know the records of ms_read_global and the scans' own numbers.
void ms_doubt_attributes(MsFileState &file, MsDoubtList *list);

#endif // DOUBTATTRIBUTES_P_H
