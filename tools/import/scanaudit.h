// Finds out what of a run could not be read. An import hands on a scan that it couldn't read without
// points, as if it were empty, and a run whose masses it couldn't read as a total-ion trace, as if it had
// none. So where the two can't be told apart, the audit reads the file once more, through the toolkit.
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

    // After the last scan: returns what the import lacks, and why, as clauses about the file ("it is cut
    // off"). Empty for a whole run.
    QStringList losses();

    // Returns how many scans could not be read, and which, as a phrase.
    QString unreadScans() const;

private:
    Q_DISABLE_COPY(ScanAudit)

    enum class Run { Spectra, TotalIon, Nothing };

    bool isUnread(int scan, int pointCount, double total);
    bool failsAgain(int scan);
    bool hasUnreadableMasses();
    QString unreadDetails() const;
    const MsFile &openFile();

    const QString fileName;
    Run run = Run::Spectra;
    bool opened = false;
    MsFile file; // opened once more, as the import's file isn't ours to use; use openFile()
    int unread = 0;
    std::vector<int> first; // the first few unread scans
};

#endif // SCANAUDIT_H
