// A file that is open, the messages of its reading, and what was read as text.
#ifndef OPENFIXTURE_H
#define OPENFIXTURE_H

#include "messageloggerinterface.h"
#include "mstoolkit.h"
#include "program.h"

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
        close();
    }

    void close()
    {
        if (id != -1)
            QCOMPARE(ms_close(id), 0);
        id = -1;
    }

    // In place of the one that is open.
    void openPath(const QString &path)
    {
        close();
        id = ms_open_read(path.toLatin1().constData());
    }

    void open(const QString &name)
    {
        openPath(fixture(name));
        QVERIFY2(id != -1, qPrintable(name));
    }

    int id = -1;
    QStringList messages; // level and text
};

inline QString shown(const char *text)
{
    return text ? QLatin1Char('"') + QString::fromLatin1(text) + QLatin1Char('"') : QStringLiteral("-");
}

template <class Number> QString shownAll(const void *vector, int count)
{
    QStringList numbers;
    for (int i = 0; vector && i < count; ++i)
        numbers += QString::number(static_cast<const Number *>(vector)[i]);
    return vector ? numbers.join(QLatin1Char(',')) : QStringLiteral("-");
}

inline QString shownAll(int format, const void *vector, int count)
{
    return format == MsShortFormat ? shownAll<qint16>(vector, count)
        : format == MsLongFormat   ? shownAll<qint32>(vector, count)
        : format == MsFloatFormat  ? shownAll<float>(vector, count)
                                   : shownAll<double>(vector, count);
}

#endif // OPENFIXTURE_H
