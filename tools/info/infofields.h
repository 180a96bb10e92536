// The fields of the toolkit's records as values of a report. Long texts are cut.
#ifndef INFOFIELDS_H
#define INFOFIELDS_H

#include "inforeport.h"

#include "msfile.h"

#include <QString>
#include <QVariant>

#include <vector>

// Returns a line of a text variable.
QVariant textValue(const char *text);

// Returns the phrase of a vocabulary code; null if it has none.
QString phraseOf(qint32 code);

// Returns the first `count` of the numbers, or all if there are fewer. A double that stands for a missing
// number becomes an invalid value, and so does one that was never written.
std::vector<QVariant> numberValues(const MsNumbers &numbers, qint64 count);

// Returns the double that a reader takes a number of a data format (MsDataFormat) for: 70.1 for the float
// 70.0999985.
double shortest(double number, qint32 format);

// What becomes of a field that the file lacks, or that was never written, and for which there is no
// default.
enum class Lacking {
    LeftOut,
    Listed // as a value that is invalid
};

// Adds the attributes of a global record that was read from the open file `ncid`.
void addAttributes(int ncid, const MsTable<MsAttributeRow> &table, const void *record, Lacking lacking,
                   InfoNode *section);

// Adds the numbers and texts of a record that was read from the open file `ncid`, without its arrays.
void addVariables(int ncid, const MsTable<MsVariableRow> &table, const void *record, Lacking lacking,
                  InfoNode *section);

#endif // INFOFIELDS_H
