#include "lostfile.h"

#include "messageredirection.h"
#include "msdoubts.h"
#include "msfile.h"

#include <QFileInfo>
#include <QList>

#include <algorithm>

namespace {

constexpr qint64 fewFailures = 16;

// Whether the system refuses to read what the scan needs.
bool isRefused(const MsFile &file, int scan)
{
    const Silence silence;
    file.scan(scan);
    const QList<MsDoubt> doubts = ms_list_doubts(file.id(), QString());
    return std::any_of(doubts.begin(), doubts.end(),
                       [](const MsDoubt &doubt) { return doubt.isSystemError; });
}

} // namespace

void LostFile::start(const QString &fileName)
{
    name = fileName;
    length = QFileInfo(name).size();
    failures = 0;
    nextLook = fewFailures;
}

QString LostFile::addFailure(const MsFile &file, int scan)
{
    if (++failures == 1)
        nextLook = fewFailures;
    if (failures < nextLook)
        return QString();
    nextLook *= 2; // a look costs more than a scan
    const qint64 left = QFileInfo(name).size();
    if (left < length) {
        return QStringLiteral(
                   "%1 scans in a row could not be read, as the file was cut to %2 of %3 bytes "
                   "while it was open")
            .arg(QString::number(failures), QString::number(left), QString::number(length));
    }
    if (isRefused(file, scan))
        return QStringLiteral("%1 scans in a row could not be read, as the system can't read the file")
            .arg(failures);
    return QString();
}
