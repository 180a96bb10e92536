#include "typedplace.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

MsInterval interval(const QString &one, const QString &other)
{
    const auto [from, to] = std::minmax({one.toDouble(), other.toDouble()});
    return {from, to};
}

} // namespace

std::optional<TypedPlace> typedPlace(const QString &text)
{
    static const QRegularExpression scanPattern(QStringLiteral("^(?:scan\\s*)?(\\d{1,9})$"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression timePattern(QStringLiteral("^([-+]?\\d*\\.?\\d+)\\s*(?:min)?$"));
    static const QString range =
        QStringLiteral("(\\d*\\.?\\d+)\\s*[-\u2013]\\s*(\\d*\\.?\\d+)\\s*(?:min)?");
    static const QRegularExpression rangePattern(QStringLiteral("^%1(?:\\s*[,;]\\s*%1)?$").arg(range));
    const QString place = text.trimmed();
    TypedPlace result;
    if (const auto scan = scanPattern.match(place); scan.hasMatch()) {
        result.scan = scan.captured(1).toInt();
    } else if (const auto time = timePattern.match(place); time.hasMatch()) {
        result.kind = TypedPlace::Kind::Time;
        result.time = time.captured(1).toDouble();
    } else if (const auto ranges = rangePattern.match(place); ranges.hasMatch()) {
        result.kind = TypedPlace::Kind::Average;
        result.average = interval(ranges.captured(1), ranges.captured(2));
        if (!ranges.captured(3).isEmpty())
            result.background = interval(ranges.captured(3), ranges.captured(4));
    } else
        return std::nullopt;
    return result;
}
