// A fixture that is open, the messages of its reading, and what was read as text.
#ifndef OPENFIXTURE_H
#define OPENFIXTURE_H

#include "messageloggerinterface.h"
#include "mstoolkit.h"

#include <QtTest>

// For a test class to have as a second base; a call at the beginning and the end of each test.
class OpenFixture
{
protected:
    void begin()
    {
        messages.clear();
        MessageLoggerInterface::setReceiver([this](MessageLoggerInterface::Level level, const QString &text) {
            const bool isError = level == MessageLoggerInterface::Level::Error;
            messages += (isError ? QStringLiteral("E ") : QStringLiteral("W "))
                + QString(text).remove(QStringLiteral("<b>")).remove(QStringLiteral("</b>"));
        });
    }

    void end()
    {
        MessageLoggerInterface::setReceiver({});
        ms_close(id);
        id = -1;
    }

    // In place of the one that is open.
    void open(const QString &fixture)
    {
        ms_close(id);
        id = ms_open_read(QStringLiteral(AIA_FIXTURES "/%1.cdf").arg(fixture).toLatin1().constData());
        QVERIFY2(id != -1, qPrintable(fixture));
    }

    int id = -1;
    QStringList messages; // level and text
};

template <class Number> QString shownAll(const void *vector, int count)
{
    QStringList numbers;
    for (int i = 0; vector && i < count; ++i)
        numbers += QString::number(static_cast<const Number *>(vector)[i]);
    return vector ? numbers.join(QLatin1Char(',')) : QStringLiteral("-");
}

inline QString shownAll(int format, const void *vector, int count)
{
    switch (format) {
    case MsShortFormat:
        return shownAll<qint16>(vector, count);
    case MsLongFormat:
        return shownAll<qint32>(vector, count);
    case MsFloatFormat:
        return shownAll<float>(vector, count);
    default:
        return shownAll<double>(vector, count);
    }
}

#endif // OPENFIXTURE_H
