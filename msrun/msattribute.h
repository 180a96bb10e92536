// What a file says itself in an attribute of the template. A record holds a default where the file says
// nothing, and a reader can't tell one from the other.
#ifndef MSATTRIBUTE_H
#define MSATTRIBUTE_H

#include "mstoolkit.h"

#include <QString>

#include <cstddef>

// Whether an open file has the attribute of a row: as a text if the row is a text, and in the spelling
// with underscores or dashes. If not, the row's field of a record holds a default or a missing value.
bool isStated(int ncid, const MsAttributeRow &row);

// Returns the text of a text attribute, up to its first NUL and without blanks around it. Null if the
// file doesn't state it, or it is blank. An attribute of more than a million bytes isn't read.
QString statedText(int ncid, const MsAttributeRow &row);

// Returns the row that fills the field at that offset of the table's record. There has to be one.
const MsAttributeRow &attributeRow(const MsTable<MsAttributeRow> &table, std::size_t field);

#endif // MSATTRIBUTE_H
