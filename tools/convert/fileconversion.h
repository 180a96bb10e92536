// One file made of another, with all that is said of it.
#ifndef FILECONVERSION_H
#define FILECONVERSION_H

#include "convertoptions.h"

#include <QString>

// Converts the file and reports what has to be said. Returns whether the output is there and nothing is
// wrong with it by the options.
bool convertFile(const ConversionPair &pair, const ConvertOptions &options);

// Returns the sentence that says why a file isn't converted. `reason` is a part of it; in a program that
// was interrupted it doesn't count, since whatever stopped for that may have failed on the way.
QString whyNotConverted(const QString &input, const QString &reason);

#endif // FILECONVERSION_H
