// One file made of another, with all that is said of it.
#ifndef FILECONVERSION_H
#define FILECONVERSION_H

#include "convertoptions.h"

// Converts the file and reports what has to be said. Returns whether the output is there and nothing is
// wrong with it by the options.
bool convertFile(const ConversionPair &pair, const ConvertOptions &options);

#endif // FILECONVERSION_H
