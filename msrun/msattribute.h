// What a file says itself in an attribute of the template. A record holds a default where the file says
// nothing, and a reader can't tell one from the other.
#ifndef MSATTRIBUTE_H
#define MSATTRIBUTE_H

#include "mstoolkit.h"

#include <QByteArray>
#include <QString>

#include <cstddef>

// Whether an open file has the attribute of a row, which is a text: as a text, and in the spelling with
// underscores or dashes. If not, the row's field of a record holds a default or a missing value.
bool isStated(int ncid, const MsAttributeRow &row);

// Returns the text of bytes from a file, up to the first NUL: as UTF-8 where they are that, else as
// Latin-1. Programs write both, and the file doesn't say which.
QString textFromFile(const char *bytes);

// Returns the text of a text attribute, up to its first NUL and without blanks around it. Null if the
// file doesn't state it, or it is blank. An attribute of more than a million bytes isn't read.
QString statedText(int ncid, const MsAttributeRow &row);

// Returns what the file says in a text attribute, a number as text, too; null if it says nothing.
// `record` is the one that was read from the file and that the row belongs to: its own texts are Latin-1,
// which hasn't all letters.
QString textOfAttribute(int ncid, const MsAttributeRow &row, const void *record);

// Returns the name under which an attribute is shown: with a prefix, such as mass_, where it is one of a
// variable, since attributes of different variables have the same names.
QByteArray attributeName(const MsAttributeRow &row);

// Returns the row that fills the field at that offset of the table's record. There has to be one.
const MsAttributeRow &attributeRow(const MsTable<MsAttributeRow> &table, std::size_t field);

#endif // MSATTRIBUTE_H
