// Which spectra of an mzML or mzXML file become scans of a run.
#ifndef MZMLCHOICE_H
#define MZMLCHOICE_H

#include "conversionlog.h"
#include "convertoptions.h"

#include <cstddef>
#include <vector>

#include <pwiz/data/msdata/MSData.hpp>

struct MzMlChoice {
    std::vector<std::size_t> spectra; // their places in the list
    pwiz::cv::CVID polarity = pwiz::cv::CVID_Unknown;
    bool isProfile = false; // some of them, as below
    bool isCentroided = false;
    bool isOfUnsaidKind = false; // neither
    bool isSelectedIons = false;
    bool hasCompounds = false;
};

// Chooses the spectra of one MS level and one polarity. Returns false where the options don't say which
// of several, or where there are none: the log says why, and what is left out.
bool chooseSpectra(const pwiz::msdata::SpectrumList &list, const ConversionOptions &options,
                   MzMlChoice *choice, ConversionLog *log);

#endif // MZMLCHOICE_H
