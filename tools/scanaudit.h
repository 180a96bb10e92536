// Which scans of a run could not be read. An import gives such a scan without points, like an empty one,
// so a scan without points is looked at once more, through the toolkit.
#ifndef SCANAUDIT_H
#define SCANAUDIT_H

#include <QString>

#include <vector>

class DVHeader;

class ScanAudit
{
public:
    explicit ScanAudit(const QString &fileName);
    ~ScanAudit();

    void start(const DVHeader &header, int tableSize);
    void check(int scan, int pointCount, double total);

    int unreadCount() const { return unread; }

    // The count, and what there is to say about it.
    QString result() const;

private:
    Q_DISABLE_COPY(ScanAudit)

    enum class Run { Spectra, TotalIon, Nothing };

    bool isUnread(int scan, int pointCount, double total);
    bool failsAgain(int scan);

    const QString fileName;
    Run run = Run::Spectra;
    bool opened = false;
    int fileId = -1; // a handle of our own, as the import's isn't ours to use
    int unread = 0;
    std::vector<int> first; // the first few unread scans
};

#endif // SCANAUDIT_H
