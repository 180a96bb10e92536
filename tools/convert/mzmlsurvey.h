// What the scans of a run say, gathered before they become an mzML file.
#ifndef MZMLSURVEY_H
#define MZMLSURVEY_H

#include "commonnumbers.h"
#include "conversionlog.h"
#include "convertoptions.h"
#include "msrun.h"
#include "mzmlspectra.h"
#include "progressbar.h"

struct MzMlSurvey {
    SpectrumFacts facts; // the vectors and the unit of time
    CommonNumbers common;
    bool isFloatMasses = true;
    bool isFloatIntensities = true;
    bool hasFlags = false;
    bool hasPointTimes = false;
    bool hasHalfWindows = false;
    bool hasTimeRanges = false;
};

// Reads all scans, brings them in the order of their times and gives each a number of its own. Returns
// false where it was interrupted. The log gets what was changed.
bool surveyRun(const MsRun &run, const ConversionOptions &options, ProgressBar *progress,
               MzMlSurvey *survey, ConversionLog *log);

#endif // MZMLSURVEY_H
