// Private to the toolkit: defining single objects of the template in a file in define mode. The netCDF id
// goes into the file's record, also the -1 of a refused definition.
#ifndef DEFINE_P_H
#define DEFINE_P_H

#include "access_p.h"

// A dimension of ms_counting_dimension_table.
int ms_define_dimension(MsFileRecord *file, int slot, qint32 size);
int ms_define_variable(MsFileRecord *file, const MsVariableRow &row);
int ms_define_variables_of(MsFileRecord *file, const MsTable<MsVariableRow> &table);

#endif // DEFINE_P_H
