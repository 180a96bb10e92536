// Private to the toolkit: the vectors of a scan record.
#ifndef SCANRECORD_P_H
#define SCANRECORD_P_H

#include "mstoolkit.h"

// Makes a scan's vectors null, unfreed.
void ms_clear_vectors(MsScanRecord *scan);

#endif // SCANRECORD_P_H
