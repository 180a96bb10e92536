// How a file is laid out: its kind, what it has of the template and what it lacks, sizes and stored
// types.
#ifndef INFOLAYOUT_H
#define INFOLAYOUT_H

#include "infofields.h"

class MsFile;

// Adds all that to the report of an open file.
void addLayout(const MsFile &file, Lacking lacking, InfoNode *report);

#endif // INFOLAYOUT_H
