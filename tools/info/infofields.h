// The fields of the toolkit's records as values of a report: what a file lacks is left out, texts are
// cut to a length that a reader can bear.
#ifndef INFOFIELDS_H
#define INFOFIELDS_H

#include "inforeport.h"

#include "mstoolkit.h"

// A line of a text variable.
QVariant textValue(const char *text);

// The phrase of a vocabulary code, or a remark.
QString phraseOf(qint32 code);

// Element `index` of an array of a data format; invalid where it is the missing number of the doubles.
QVariant element(const void *array, qint32 format, qint32 index);

// Adds the attributes of a global record.
void addAttributes(const MsTable<MsAttributeRow> &table, const void *record, InfoNode *section);

// Adds the numbers and texts of a record; arrays are left to the caller.
void addVariables(const MsTable<MsVariableRow> &table, const void *record, InfoNode *section);

#endif // INFOFIELDS_H
