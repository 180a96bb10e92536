// Notices that a file can't be read any more, though it could when it was opened: it was cut while it is
// open, or its disk fails. Such a run would go through all its scans in vain.
#ifndef LOSTFILE_H
#define LOSTFILE_H

#include <QString>

class MsFile;

class LostFile
{
public:
    // Remembers the length that the file of that name has now.
    void start(const QString &fileName);

    void addReadScan() { failures = 0; }

    // Counts a scan that couldn't be read. Returns why the run has to be given up, as a part of a
    // sentence; null if it may go on, as a file may hold any number of scans that were never readable.
    // `file` is the same file, opened once more.
    QString addFailure(const MsFile &file, int scan);

private:
    QString name;
    qint64 length = 0;
    qint64 failures = 0; // in a row so far
    qint64 nextLook = 0; // at so many of them
};

#endif // LOSTFILE_H
