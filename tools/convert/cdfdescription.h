// What mzML and mzXML files say of a run, in the template's records.
#ifndef CDFDESCRIPTION_H
#define CDFDESCRIPTION_H

#include "msfile.h"
#include "mzmlchoice.h"

#include <QString>

#include <deque>
#include <string>

#include <pwiz/data/msdata/MSData.hpp>

// The records own their texts.
struct CdfDescription {
    // Describes the source, the content of the file `input`, of which the spectra of `choice` are taken.
    CdfDescription(const pwiz::msdata::MSData &source, const QString &input, const MzMlChoice &choice);

    // Takes the unit of the intensities, unless the template's own words say more.
    void setUnit(pwiz::cv::CVID unit);

    MsGlobals globals;
    std::deque<MsInstrument> instruments;
    // Whether this program made the source of a .cdf file. What that said is then there in the template's
    // own words, and what it didn't say may stand there for mzML's sake: the run gets none of it.
    bool isOwn = false;
};

// Returns a text of the library's, without blanks around it.
QString textOf(const std::string &utf8);

#endif // CDFDESCRIPTION_H
