// Private to the toolkit: defining objects of the template in a file in define mode. Each routine puts
// the netCDF ids into the file's record. At the first refused definition it puts -1 there and returns -1.
#ifndef DEFINE_P_H
#define DEFINE_P_H

#include "filestate_p.h"

// The steps of ms_open_write.
int ms_define_dimensions(MsFileState &file, qint32 scan_count, qint32 instrument_count);
int ms_define_variables(MsFileState &file, qint32 experiment_type, qint32 mass_format, qint32 time_format,
                        qint32 intensity_format, qint32 has_mass_values, qint32 has_time_values);

// Defines a dimension of ms_counting_dimension_table, by its MsDimensionSlot.
int ms_define_dimension(MsFileState &file, int slot, qint32 size);

// Defines the variables of a table.
int ms_define_rows(MsFileState &file, const MsTable<MsVariableRow> &table);

#endif // DEFINE_P_H
