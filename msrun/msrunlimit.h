// The limit of a run. A file of a few bytes can claim thousands of millions of scans, and scans may share
// their points, so that a small file holds days of work. Whoever drives a run counts each scan here and
// cancels the run where the limit is passed.
#ifndef MSRUNLIMIT_H
#define MSRUNLIMIT_H

#include <QString>

class MsFile;

// Return how many points all scans of an open file of `length` bytes can have together, those that
// several share counted for each, and how many scans in a row may be without any.
qint64 mostPointsOf(const MsFile &file, qint64 length);
qint64 mostEmptyScansOf(const MsFile &file, qint64 length);

class RunLimit
{
public:
    // Takes the limit from the length of the file, its kind and the points that it holds.
    void start(const MsFile &file, qint64 bytes);

    // Counts a scan by its points and its stored total: one with neither is empty. Returns why the run
    // has to be given up, as a part of a sentence; null if it may go on.
    QString add(int pointCount, double total);

private:
    qint64 mostEmpty = 0; // scans in a row
    qint64 pointsLeft = 0;
    qint64 empty = 0; // scans in a row so far
};

#endif // MSRUNLIMIT_H
