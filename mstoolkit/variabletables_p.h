// Private to the toolkit: what the public tables leave out.
#ifndef VARIABLETABLES_P_H
#define VARIABLETABLES_P_H

#include "mstoolkit.h"

// The dimensions whose sizes a writer sets, the counters of a scan, and the value variables, with the
// types that stand for an unknown format.
extern const MsTable<MsDimensionRow> ms_counting_dimension_table; // 4 rows
extern const MsTable<MsVariableRow> ms_counter_table;             // 3 rows
extern const MsTable<MsVariableRow> ms_value_table;               // 3 rows: masses, times, intensities

#endif // VARIABLETABLES_P_H
