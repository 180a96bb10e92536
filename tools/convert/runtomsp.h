// The spectra of a library, or chosen ones of a run, as MSP.
#ifndef RUNTOMSP_H
#define RUNTOMSP_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"
#include "outputfile.h"
#include "progressbar.h"

// Writes all entries of a library, or the spectra of a run that the options name, to an open output.
// Returns false where that fails; the output or the log says why. The log also names what was left out.
bool writeMsp(const MsRun &run, OutputFile *output, const ConversionOptions &options,
              ProgressBar *progress, ConversionLog *log);

#endif // RUNTOMSP_H
