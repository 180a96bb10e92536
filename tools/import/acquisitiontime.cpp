#include "acquisitiontime.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {

// The zone of a stamp: "Z", "+0200", "-05:30" or "+02".
bool parseZone(const QString &text, int *seconds)
{
    static const QRegularExpression offset(QStringLiteral("^([+-])(\\d\\d):?(\\d\\d)?$"));
    if (text == QLatin1String("Z") || text == QLatin1String("UTC") || text == QLatin1String("GMT")) {
        *seconds = 0;
        return true;
    }
    const QRegularExpressionMatch match = offset.match(text);
    const int hours = match.captured(2).toInt();
    const int minutes = match.captured(3).toInt();
    *seconds = (hours * 60 + minutes) * 60 * (match.captured(1) == QLatin1String("-") ? -1 : 1);
    return match.hasMatch() && hours <= 14 && minutes < 60; // no zone is farther from UTC
}

} // namespace

QString acquisitionTime(const QString &stamp)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{4})(?|(\\d\\d)(\\d\\d)[T, ]*|[-/.,](\\d\\d?)[-/.,](\\d\\d?)[T, ]+)" // date
                       "(\\d\\d?)[:.,]?(\\d\\d)(?:[:.,]?(\\d\\d)(?:[.,]\\d+)?)?" // time of day
                       " *(Z|UTC|GMT|[+-]\\d\\d:?(?:\\d\\d)?)?$"),               // zone
        QRegularExpression::CaseInsensitiveOption);
    if (stamp.isNull())
        return QString();
    const QRegularExpressionMatch match = form.match(stamp);
    const auto number = [&](int group) { return match.captured(group).toInt(); };
    const QDate date(number(1), number(2), number(3));
    const QTime time(number(4), number(5), number(6));
    int offset = 0;
    const QString zone = match.captured(7).toUpper();
    if (!match.hasMatch() || !date.isValid() || !time.isValid()
        || (!zone.isEmpty() && !parseZone(zone, &offset)))
        return QStringLiteral("%1 (not understood)").arg(stamp);
    if (zone.isEmpty())
        return QStringLiteral("%1 (without a time zone)").arg(stamp);
    const QDateTime utc = QDateTime(date, time, Qt::OffsetFromUTC, offset).toUTC();
    return QStringLiteral("%1 (%2 UTC)").arg(stamp, utc.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
}
