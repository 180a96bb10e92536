// Tables of a run as CSV.
#ifndef RUNTOCSV_H
#define RUNTOCSV_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"
#include "outputfile.h"
#include "progressbar.h"

// Writes the table that the options name to an open output. Returns false where that fails; the output or
// the log says why.
bool writeCsv(const MsRun &run, OutputFile *output, const ConversionOptions &options,
              ProgressBar *progress, ConversionLog *log);

#endif // RUNTOCSV_H
