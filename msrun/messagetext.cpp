#include "messagetext.h"

#include <QRegularExpression>

QString plainText(const QString &richText)
{
    static const QRegularExpression tag(QStringLiteral("</?[A-Za-z][^<>]*>"));
    QString plain = richText;
    plain.replace(QLatin1String("<b>"), QLatin1String("\""))
        .replace(QLatin1String("</b>"), QLatin1String("\""))
        .remove(tag);
    // The ampersand comes last, so that "&amp;lt;" ends as "&lt;".
    return plain.replace(QLatin1String("&lt;"), QLatin1String("<"))
        .replace(QLatin1String("&gt;"), QLatin1String(">"))
        .replace(QLatin1String("&quot;"), QLatin1String("\""))
        .replace(QLatin1String("&#39;"), QLatin1String("'"))
        .replace(QLatin1String("&nbsp;"), QLatin1String(" "))
        .replace(QLatin1String("&amp;"), QLatin1String("&"));
}

QString withFullStop(const QString &text)
{
    const bool isSentence = text.endsWith(QLatin1Char('.')) || text.endsWith(QLatin1Char('!'))
        || text.endsWith(QLatin1Char('?'));
    return isSentence ? text : text + QLatin1Char('.');
}
