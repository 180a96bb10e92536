// The modulation length that a conversion goes by.
#ifndef RUNMODULATION_H
#define RUNMODULATION_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"

// Returns the length in seconds that the options give, else the run's own guess where that is sure
// enough, and 0 for a plain run. The log says that it is a guess.
double modulationOf(const MsRun &run, const ConversionOptions &options, ConversionLog *log);

#endif // RUNMODULATION_H
