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

// The user parameter of a library's spectrum.
constexpr const char compoundName[] = "compound";

#endif // MZMLTERMS_H
