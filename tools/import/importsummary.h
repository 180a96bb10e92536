// What a person wants to know about an imported run, a line for each fact.
#ifndef IMPORTSUMMARY_H
#define IMPORTSUMMARY_H

#include "longestpause.h"
#include "rundoubt.h"
#include "runfacts.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

class DVHeader;

class ImportSummary
{
public:
    // Takes what is known before the first scan. Facts are left out where the file couldn't be opened for
    // them.
    void start(const QString &fileName, const std::optional<RunFacts> &facts, const DVHeader &header,
               const float *table, int tableSize);

    // `time` is in the unit that the import handed over. `failure` says why the scan couldn't be read,
    // and is null if it could.
    void addScan(int scan, double time, double total, int pointCount, const QString &failure);

    // Of the scans that were added: how many couldn't be read, and the one with the largest total, -1 for
    // none.
    int unreadCount() const { return unread.count; }
    int largestScan() const { return largest.scan; }

    // Writes the summary. `largestTime` is the time of the scan with the largest total, if it is known.
    // `otherWarnings` are those that come as messages.
    void write(std::FILE *stream, std::optional<double> largestTime, const std::vector<RunDoubt> &doubts,
               int otherWarnings) const;

    // Writes the header as the host gets it.
    void writeHeader(std::FILE *stream) const;

private:
    using Lines = std::vector<std::pair<QString, QString>>;

    void addFacts(const RunFacts &said);
    void addTimes(const RunFacts &said);
    void addModulation(const DVHeader &header);
    void addHeader(const DVHeader &header);
    QString pauseText() const;
    QString unreadText() const;

    Lines lines;
    Lines headerLines;
    std::optional<RunFacts> facts;
    qint64 points = 0;
    int scanCount = 0; // that the header tells of
    int added = 0;
    LongestPause pauses;
    struct {
        int count = 0;
        QStringList first; // the numbers of the first few
        QString reason;    // of the first one
    } unread;
    struct {
        int scan = -1;
        double total = 0.0;
    } largest;
};

#endif // IMPORTSUMMARY_H
