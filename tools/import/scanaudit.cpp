#include "scanaudit.h"

#include "dvheader.h"
#include "messagelist.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t namedScans = 10;

} // namespace

ScanAudit::ScanAudit(const QString &name) : fileName(name)
{
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
    const MsScan again = openFile().scan(scan);
    return !again.isRead() || again.point_count > 0;
}

bool ScanAudit::hasUnreadableMasses()
{
    const Silence silence;
    return !openFile().census(0, 1.0).isRead();
}

const MsFile &ScanAudit::openFile()
{
    if (!opened) {
        opened = true;
        file = MsFile(fileName);
    }
    return file;
}

QStringList ScanAudit::losses()
{
    QStringList found;
    if (unread > 0)
        found.append(QStringLiteral("scans that could not be read: %1").arg(unreadScans()));
    if (run != Run::Spectra && hasUnreadableMasses())
        found.append(QStringLiteral("its masses could not be read"));
    const Silence silence;
    if (openFile().missingBytes() > 0)
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
