// The exceptions of the package, which errors.py declares.
#ifndef ERRORS_H
#define ERRORS_H

#include <QString>

// Each throws the exception of that name with the sentence. The interpreter's lock has to be held.
[[noreturn]] void throwReadError(const QString &sentence);
[[noreturn]] void throwWriteError(const QString &sentence);
[[noreturn]] void throwClosedError(const QString &sentence);

#endif // ERRORS_H
