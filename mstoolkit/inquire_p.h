// Private to the toolkit: finding the template's objects in a file whose state is at hand.
#ifndef INQUIRE_P_H
#define INQUIRE_P_H

#include "filestate_p.h"

// The steps of ms_open_read.
void ms_inquire_dimensions(MsFileState &file);
void ms_inquire_variables(MsFileState &file);

// Looks up the variables of a table, under their names and then under their dashed spellings, and puts
// their ids, also a -1, in the record.
void ms_inquire_rows(MsFileState &file, const MsTable<MsVariableRow> &table);

#endif // INQUIRE_P_H
