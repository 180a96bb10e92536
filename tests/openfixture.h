// A file that is open, the messages of its reading, and numbers that were read.
#ifndef OPENFIXTURE_H
#define OPENFIXTURE_H

#include "messageloggerinterface.h"
#include "msfile.h"
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

// None for null.
inline QVector<double> numbersOf(const MsNumbers &numbers)
{
    QVector<double> result;
    for (const double number : numbers)
        result += number;
    return result;
}

#endif // OPENFIXTURE_H
