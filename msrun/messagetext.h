// The texts of messages as sentences for a reader.
#ifndef MESSAGETEXT_H
#define MESSAGETEXT_H

#include <QString>

// Returns a message's rich text without its tags: bold names in quotes, entities as the characters that
// they stand for.
QString plainText(const QString &richText);

// Returns the text with a full stop, unless it ends in a mark of that kind. For texts of libraries.
QString withFullStop(const QString &text);

#endif // MESSAGETEXT_H
