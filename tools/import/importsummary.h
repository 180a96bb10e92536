// What a person wants to know about an imported run, a line for each fact.
#ifndef IMPORTSUMMARY_H
#define IMPORTSUMMARY_H

#include "runfacts.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <utility>
#include <vector>

class DVHeader;

class ImportSummary
{
public:
    // Takes what is known before the first scan. Facts of which there are none, as the file couldn't be
    // asked, are left out.
    void start(const QString &fileName, const std::optional<RunFacts> &facts, const DVHeader &header,
               const float *table, int tableSize);

    void addScan(int scan, double total, int pointCount);

    // After the last scan: the number of the scan with the largest total, -1 for none.
    int largestScan() const { return largest.scan; }

    // Writes the summary. `largestTime` is the time of the scan with the largest total, if it is known;
    // `unreadScans` is a phrase.
    void write(std::FILE *stream, std::optional<double> largestTime, const QString &unreadScans) const;

    // Writes the header as the host gets it.
    void writeHeader(std::FILE *stream) const;

private:
    using Lines = std::vector<std::pair<QString, QString>>;

    void addFacts(const RunFacts &facts);
    void addTimes(const RunFacts &facts, int scanCount);
    void addModulation(const DVHeader &header);
    void addHeader(const DVHeader &header);

    Lines lines;
    Lines headerLines;
    std::optional<RunFacts> facts;
    qint64 points = 0;
    struct {
        int scan = -1;
        double total = 0.0;
    } largest;
};

#endif // IMPORTSUMMARY_H
