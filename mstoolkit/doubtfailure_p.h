// Private to the toolkit: why a scan can't be read.
#ifndef DOUBTFAILURE_P_H
#define DOUBTFAILURE_P_H

#include "mstoolkit.h"

struct MsFileState;

// Returns the reason as the rest of a sentence: "scan_index is missing". `place` is where the scan's
// points were looked for, null where that was by the file's own counters.
QString ms_describe_failure(MsFileState &file, qint32 scan, const MsScanPlace *place = nullptr);

#endif // DOUBTFAILURE_P_H
