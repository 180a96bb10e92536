// A file that is open, the messages of its reading, and what was read as text.
#ifndef OPENFIXTURE_H
#define OPENFIXTURE_H

#include "messageloggerinterface.h"
#include "msfile.h"
#include "program.h"

#include <QtTest>

#include <type_traits>

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
        file.close();
    }

    // In place of the one that is open.
    void openPath(const QString &path)
    {
        file.close(); // first: it may be the same one, which is being written
        file = MsFile(path);
    }

    void open(const QString &name)
    {
        openPath(fixture(name));
        QVERIFY2(file, qPrintable(name));
    }

    MsFile file;
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

inline QString shownAll(const MsNumbers &numbers)
{
    QString text = QStringLiteral("-");
    numbers.visit(
        [&text](const auto *first, qint32 count) { text = shownAll<std::decay_t<decltype(*first)>>(first, count); });
    return text;
}

#endif // OPENFIXTURE_H
