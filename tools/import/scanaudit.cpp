#include "scanaudit.h"

#include "dvheader.h"
#include "messagelist.h"
#include "ownedrecords.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t namedScans = 10;

} // namespace

ScanAudit::ScanAudit(const QString &name) : fileName(name)
{
}

ScanAudit::~ScanAudit()
{
    ms_close(fileId);
}

void ScanAudit::start(const DVHeader &header, int tableSize)
{
    if (tableSize > 0)
        run = Run::Spectra;
    else
        run = header.isSet(DVHeader::DetectorType) ? Run::TotalIon : Run::Nothing;
}

void ScanAudit::check(int scan, int pointCount, double total)
{
    if (!isUnread(scan, pointCount, total))
        return;
    ++unread;
    if (first.size() < namedScans)
        first.push_back(scan);
}

bool ScanAudit::isUnread(int scan, int pointCount, double total)
{
    switch (run) {
    case Run::Spectra:
        return pointCount == 0 && failsAgain(scan);
    case Run::TotalIon:
        return total == MsMissingDouble;
    case Run::Nothing:
        break;
    }
    return true;
}

bool ScanAudit::failsAgain(int scan)
{
    const Silence silence; // the import has sent the messages already
    OwnedScan record(scan);
    return ms_read_per_scan(openFile(), &record, nullptr) == -1 || record.point_count > 0;
}

bool ScanAudit::hasUnreadableMasses()
{
    const Silence silence;
    return Census(openFile(), 0).status == -1;
}

int ScanAudit::openFile()
{
    if (!opened) {
        opened = true;
        fileId = ms_open_read(fileName.toLatin1().constData());
    }
    return fileId;
}

QStringList ScanAudit::losses()
{
    QStringList found;
    if (unread > 0)
        found.append(QStringLiteral("scans that could not be read: %1").arg(unreadScans()));
    if (run != Run::Spectra && hasUnreadableMasses())
        found.append(QStringLiteral("its masses could not be read"));
    const Silence silence;
    if (ms_missing_bytes(openFile()) > 0)
        found.append(QStringLiteral("the file is cut off"));
    return found;
}

QString ScanAudit::unreadScans() const
{
    if (unread == 0)
        return QStringLiteral("none");
    if (run == Run::Nothing)
        return QStringLiteral("%1, as neither masses nor a total intensity for each scan can be found")
            .arg(unread);

    QStringList numbers;
    for (const int scan : first)
        numbers.append(QString::number(scan));
    if (std::size_t(unread) > first.size())
        numbers.append(QStringLiteral("..."));
    return QStringLiteral("%1 (counted from 0: number %2)")
        .arg(QString::number(unread), numbers.join(QLatin1String(", ")));
}
