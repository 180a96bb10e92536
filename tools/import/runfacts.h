// What a file says of its run, in the words of an analyst.
#ifndef RUNFACTS_H
#define RUNFACTS_H

#include "msfile.h"

#include <QString>

#include <optional>

// Each text is for a reader, and null where the file says nothing: no default of the template stands in
// for a fact.
struct RunFacts {
    QString title;
    QString acquired; // as it stands, and in UTC if that is known
    QString operatorName;
    QString instrument; // its components
    QString method;
    QString separation;
    QString inlet;
    QString ionisation;
    QString polarity;
    QString spectra;      // centroid or profile
    QString scanFunction; // full scan or selected ions

    QString timeUnit; // of the times below, as the import has it
    bool inMinutes = false;
    std::optional<double> start; // time of the first scan
    std::optional<double> end;   // and of the last one
};

// Returns the time of a scan, in minutes where the file counts in seconds, as the import has it; nothing
// if the file has none.
std::optional<double> timeOfScan(const MsFile &file, qint32 scan, bool inMinutes);

// Reads the facts from the attributes of an open file and from the times of two of its scans. Messages of
// the toolkit are lost: an import has sent them already.
RunFacts readRunFacts(const MsFile &file);

#endif // RUNFACTS_H
