// What of a run could not be read. An import gives a scan that it couldn't read without points, like an
// empty one, and one whose masses it couldn't read as a total-ion trace, like one without masses. So
// where the two can be mistaken, the file is looked at once more, through the toolkit.
#ifndef SCANAUDIT_H
#define SCANAUDIT_H

#include "msfile.h"

#include <QStringList>

#include <vector>

class DVHeader;

class ScanAudit
{
public:
    explicit ScanAudit(const QString &fileName);

    void start(const DVHeader &header, int tableSize);
    void check(int scan, int pointCount, double total);

    // After the last scan: what the import lacks, and why, in parts of a sentence; empty for a whole run.
    QStringList losses();

    // How many scans could not be read, and which.
    QString unreadScans() const;

private:
    Q_DISABLE_COPY(ScanAudit)

    enum class Run { Spectra, TotalIon, Nothing };

    bool isUnread(int scan, int pointCount, double total);
    bool failsAgain(int scan);
    bool hasUnreadableMasses();
    const MsFile &openFile();

    const QString fileName;
    Run run = Run::Spectra;
    bool opened = false;
    MsFile file; // opened once more, as the import's file isn't ours to use; use openFile()
    int unread = 0;
    std::vector<int> first; // the first few unread scans
};

#endif // SCANAUDIT_H
