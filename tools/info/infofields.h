// The fields of the toolkit's records as values of a report: what a file lacks is left out, texts are
// cut to a length that a reader can bear.
#ifndef INFOFIELDS_H
#define INFOFIELDS_H

#include "inforeport.h"

#include "msfile.h"

#include <vector>

// A line of a text variable.
QVariant textValue(const char *text);

// The phrase of a vocabulary code, or a remark.
QString phraseOf(qint32 code);

// Returns the first `count` of the numbers, as many as there are at most; invalid where one is the
// missing number of the doubles.
std::vector<QVariant> numberValues(const MsNumbers &numbers, qint64 count);

// Adds the attributes of a global record.
void addAttributes(const MsTable<MsAttributeRow> &table, const void *record, InfoNode *section);

// Adds the numbers and texts of a record; arrays are left to the caller.
void addVariables(const MsTable<MsVariableRow> &table, const void *record, InfoNode *section);

#endif // INFOFIELDS_H
