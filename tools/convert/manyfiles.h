// Files, each converted by a process of its own.
#ifndef MANYFILES_H
#define MANYFILES_H

#include "convertoptions.h"

// Converts the files, some at a time, and reports what became of those that failed. A file that crashes
// its process doesn't end the others, or this one. Returns whether all went well.
bool convertFiles(const ConvertOptions &options);

#endif // MANYFILES_H
