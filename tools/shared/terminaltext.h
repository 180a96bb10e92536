// Texts on their way to a terminal.
#ifndef TERMINALTEXT_H
#define TERMINALTEXT_H

#include "messagetext.h"

#include <QByteArray>
#include <QString>

#include <cstdio>

// Returns the beginning of a text that has more than `longest` characters, and how many it has.
QString shortened(const QString &text, int longest);

// Writes a line in the terminal's coding. Control characters, which a file's texts may hold and a
// terminal would obey, become question marks.
void writeLine(std::FILE *stream, const QString &text);

// Writes bytes. Why standard output doesn't take them is kept for flushOutput().
void writeBytes(std::FILE *stream, const QByteArray &bytes);

// Writes a sentence to standard error, behind the program's name: see setProgram(). All that a program
// has to say goes this way.
void report(const QString &sentence);

// Writes out what standard output keeps in memory. Returns false, after a report, if something couldn't
// be written, now or before.
bool flushOutput();

// Whether a report was lost, since standard error didn't take it.
bool hasLostReports();

#endif // TERMINALTEXT_H
