// The fields of the toolkit's records as values of a report. What a file lacks is left out, and long
// texts are cut.
#ifndef INFOFIELDS_H
#define INFOFIELDS_H

#include "inforeport.h"

#include "msfile.h"

#include <vector>

// Returns a line of a text variable.
QVariant textValue(const char *text);

// Returns the phrase of a vocabulary code, or a remark that it has none.
QString phraseOf(qint32 code);

// Returns the first `count` of the numbers, or all if there are fewer. A double that stands for a missing
// number becomes an invalid value.
std::vector<QVariant> numberValues(const MsNumbers &numbers, qint64 count);

// Adds the attributes of a global record.
void addAttributes(const MsTable<MsAttributeRow> &table, const void *record, InfoNode *section);

// Adds the numbers and texts of a record, without its arrays.
void addVariables(const MsTable<MsVariableRow> &table, const void *record, InfoNode *section);

#endif // INFOFIELDS_H
