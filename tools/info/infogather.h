// What the toolkit reads of a file, gathered for a report.
#ifndef INFOGATHER_H
#define INFOGATHER_H

#include "inforeport.h"

#include <optional>

struct InfoOptions {
    std::optional<qint32> scan; // the scan to show
    bool everything = false;    // long lists whole, as far as memory can be promised for them
};

struct InfoResult {
    InfoNode report;
    bool complete = true; // false: the report names what couldn't be read
};

// Gathers the report of an open file.
InfoResult gatherInfo(int ncid, const QString &path, const InfoOptions &options);

#endif // INFOGATHER_H
