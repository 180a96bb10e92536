// Texts on their way to a terminal.
#ifndef TERMINALTEXT_H
#define TERMINALTEXT_H

#include <QString>

#include <cstdio>

// A message's rich text without its tags: bold names in quotes, entities as the characters that they
// stand for.
QString plainText(const QString &richText);

// Writes a line in the terminal's coding. Control characters, which a file's texts may hold and a
// terminal would obey, become question marks.
void writeLine(std::FILE *stream, const QString &text);

// Writes a sentence to standard error, behind the program's name: see setProgram().
void report(const QString &sentence);

#endif // TERMINALTEXT_H
