// Private to the toolkit: the variables of a table, one element or one text each, to and from the fields
// of a record.
#ifndef ROWS_P_H
#define ROWS_P_H

#include "filestate_p.h"

// Whether a row's variable, of which the file has `shape`, has the rank of the row. Another type costs a
// warning, another rank an error message.
bool ms_fits(const MsShape &shape, const MsVariableRow &row);

// Reads a row of one number, or of one text, at `index` along its first dimension. The field becomes
// missing or null where the variable is absent, where the field can't hold the number, and where a file
// that is cut off lacks it. Returns -1 for a negative index, another rank, and a number that can't be
// read.
int ms_read_row(MsFileState &file, const MsVariableRow &row, qint32 index, void *record);

// Writes such a row. Returns -1 for a negative index and a refused write.
int ms_write_row(MsFileState &file, const MsVariableRow &row, qint32 index, const void *record);

// The same for all rows of a table, in their order; the first -1 ends it.
int ms_read_rows(MsFileState &file, const MsTable<MsVariableRow> &table, qint32 index, void *record);
int ms_write_rows(MsFileState &file, const MsTable<MsVariableRow> &table, qint32 index,
                  const void *record);

// Clears the fields of such rows: missing values, and null texts, which are freed first where `release`
// isn't 0.
void ms_clear_rows(char release, const MsTable<MsVariableRow> &table, void *record);

#endif // ROWS_P_H
