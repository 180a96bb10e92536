// A run or a library as an mzML file.
#ifndef MZMLWRITER_H
#define MZMLWRITER_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"
#include "outputfile.h"
#include "progressbar.h"

enum class Packing { Plain, Gzip };

// Writes all scans that can be read to an open output. Returns false where that fails; the output or the
// log says why. The log also has what was changed or couldn't be kept.
bool writeMzMl(const MsRun &run, OutputFile *output, Packing packing, const ConversionOptions &options,
               ProgressBar *progress, ConversionLog *log);

#endif // MZMLWRITER_H
