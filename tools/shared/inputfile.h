// A file that a program is asked to read.
#ifndef INPUTFILE_H
#define INPUTFILE_H

#include <QString>

// Returns the sentence that says why there is no file to read under that name, or a null text if there is
// one. It isn't opened.
QString whyUnreadable(const QString &name);

#endif // INPUTFILE_H
