#include "scanaudit.h"

#include "dvheader.h"
#include "inputfile.h"
#include "messageredirection.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t namedScans = 10; // unread scans that are told by their number

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
        file = openInput(fileName);
    }
    return file;
}

QStringList ScanAudit::losses()
{
    QStringList found;
    if (unread > 0)
        found.append(
            QStringLiteral("%1 of its scans could not be read%2").arg(unread).arg(unreadDetails()));
    if (run != Run::Spectra && hasUnreadableMasses())
        found.append(QStringLiteral("its masses could not be read"));
    const Silence silence;
    if (openFile().missingBytes() > 0)
        found.append(QStringLiteral("it is cut off"));
    return found;
}

QString ScanAudit::unreadScans() const
{
    return unread == 0 ? QStringLiteral("none") : QString::number(unread) + unreadDetails();
}

// Returns which scans could not be read, or why none could, to stand behind their count.
QString ScanAudit::unreadDetails() const
{
    if (run == Run::Nothing)
        return QStringLiteral(", as neither masses nor a total intensity for each scan can be found");

    QStringList numbers;
    for (const int scan : first)
        numbers.append(QString::number(scan));
    if (std::size_t(unread) > first.size())
        numbers.append(QStringLiteral("..."));
    return QStringLiteral(" (counted from 0: number %1)").arg(numbers.join(QLatin1String(", ")));
}
