// The terms of mzML's vocabulary for what the template says in its own.
#ifndef MZMLTERMS_H
#define MZMLTERMS_H

#include <QtGlobal>

#include <pwiz/data/common/ParamTypes.hpp>

// What the terms of a table are about.
enum class TermFamily { Ionisation, Detector, Inlet, Separation, SampleState, IntensityUnit };

// Returns the term for a code of the template's vocabulary; CVID_Unknown where none says the same.
pwiz::cv::CVID mzmlTerm(TermFamily family, qint32 code);

// Returns the code for the first term of the container that the table of that family has, or one that is
// a special case of it; -1 for none.
qint32 templateCode(TermFamily family, const pwiz::data::ParamContainer &container);

// What a document says where the run says nothing, as mzML wants a word there.
constexpr const char standInTitle[] = "run";
constexpr pwiz::cv::CVID standInUnit = pwiz::cv::MS_number_of_detector_counts;

// Of a run whose modulation may be a guess.
constexpr pwiz::cv::CVID modulatedRun =
    pwiz::cv::MS_two_dimensional_gas_chromatography_with_fixed_modulation_time;

// The user parameter of a library's spectrum.
constexpr const char compoundName[] = "compound";

#endif // MZMLTERMS_H
