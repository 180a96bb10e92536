#include "scanaudit.h"

#include "dvheader.h"
#include "messagelist.h"
#include "mstoolkit.h"

#include <QStringList>

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
    // The import has sent these messages already.
    const MessageRedirection silence([](MessageLoggerInterface::Level, const QString &) {});
    if (!opened) {
        opened = true;
        fileId = ms_open_read(fileName.toLatin1().constData());
    }

    struct Record : MsScanRecord {
        Record() { ms_init_per_scan(0, this, nullptr); }
        ~Record() { ms_init_per_scan(1, this, nullptr); }
    } record;
    record.scan_number = scan;
    return ms_read_per_scan(fileId, &record, nullptr) == -1 || record.point_count > 0;
}

QString ScanAudit::result() const
{
    if (unread == 0)
        return QStringLiteral("none");
    if (run == Run::Nothing)
        return QStringLiteral("%1, as the file has neither masses nor a total intensity for each scan")
            .arg(unread);

    QStringList numbers;
    for (const int scan : first)
        numbers.append(QString::number(scan));
    if (std::size_t(unread) > first.size())
        numbers.append(QStringLiteral("..."));
    return QStringLiteral("%1 (counted from 0: number %2)")
        .arg(QString::number(unread), numbers.join(QLatin1String(", ")));
}
