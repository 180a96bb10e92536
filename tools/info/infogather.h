// What the toolkit reads of a file, gathered for a report.
#ifndef INFOGATHER_H
#define INFOGATHER_H

#include "infofields.h"
#include "msmodulation.h"

#include <QString>

#include <optional>

class MsFile;

struct InfoOptions {
    std::optional<qint32> scan;         // the scan to show
    bool everything = false;            // show long lists whole, up to 10000 items
    MsModulation modulation;            // what was guessed of the run's
    bool readsScans = true;             // for the ranges of their data and for all doubts
    Lacking lacking = Lacking::LeftOut; // of the fields of the template
};

struct InfoResult {
    InfoNode report;
    bool complete = true; // if not, the report lists the problems
};

// Returns the report of an open file. `path` is the name to show.
InfoResult gatherInfo(const MsFile &file, const QString &path, const InfoOptions &options);

#endif // INFOGATHER_H
