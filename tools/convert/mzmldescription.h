// What a run says of itself, as an mzML document has it.
#ifndef MZMLDESCRIPTION_H
#define MZMLDESCRIPTION_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"
#include "mzmlsurvey.h"

#include <string>

#include <pwiz/data/msdata/MSData.hpp>

// Fills in all of the document but its spectra and its trace, and what the spectra say alike. `sha1` is
// the checksum of the run's file. The log gets what of the run mzML has no place for.
void describeRun(const MsRun &run, const ConversionOptions &options, const std::string &sha1,
                 MzMlSurvey *survey, pwiz::msdata::MSData *data, ConversionLog *log);

#endif // MZMLDESCRIPTION_H
