#include "msrunlimit.h"

void RunLimit::start(const MsFile &file, qint64 bytes)
{
    pointsLeft = mostPointsOf(file, bytes);
    mostEmpty = mostEmptyScansOf(file, bytes);
    empty = 0;
}

QString RunLimit::add(int pointCount, double total)
{
    // A trace needs no rule of its own: missing totals are -9999, not 0, and all others are stored in the
    // file.
    empty = pointCount == 0 && total == 0.0 ? empty + 1 : 0;
    pointsLeft -= pointCount;
    if (empty > mostEmpty)
        return QStringLiteral("more than %1 scans in a row are empty").arg(mostEmpty);
    if (pointsLeft < 0)
        return QStringLiteral("its scans have more points than the file can hold");
    return QString();
}
