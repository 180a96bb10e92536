// What an import hands out, as JSON: an object for each file, one on a line, written while the scans
// come.
#ifndef IMPORTJSON_H
#define IMPORTJSON_H

#include "jsonwriter.h"
#include "rundoubt.h"

#include <QString>

#include <vector>

class DVHeader;

class ImportJson : public JsonWriter
{
public:
    using JsonWriter::JsonWriter;

    // The parts of a file, in this order; addScan once for each scan. A file that was begun can be ended
    // at any time, as one that isn't complete; ending none does nothing.
    void beginFile(const QString &name, const DVHeader &header, const float *table, int tableSize);
    // `failure` says why the scan couldn't be read, and is null if it could.
    void addScan(double time, double total, int pointCount, const float *abundances,
                 const unsigned short *positions, const QString &failure);
    void endFile(bool complete, const std::vector<RunDoubt> &doubts);

    bool hasFiles() const { return fileCount > 0; }

private:
    void latin1(const char *text);
    void headerRecord(const DVHeader &header);
    void doubtRecord(const RunDoubt &doubt);

    int fileCount = 0;
    bool inFile = false;
    bool firstScan = true;
};

#endif // IMPORTJSON_H
