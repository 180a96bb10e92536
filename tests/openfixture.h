// A file that is open, the messages of its reading, and numbers that were read.
#ifndef OPENFIXTURE_H
#define OPENFIXTURE_H

#include "messageredirection.h"
#include "msfile.h"
#include "program.h"

#include <QtTest>

#include <memory>

// For a test class to have as a second base, which clears the messages before each test.
class OpenFixture
{
protected:
    QStringList messages; // level and text, since the test began

private:
    const MessageRedirection redirection{[this](MessageLoggerInterface::Level level, const QString &text) {
        const bool isError = level == MessageLoggerInterface::Level::Error;
        messages += QLatin1String(isError ? "E " : "W ") + QString(text).remove("<b>").remove("</b>");
    }};

protected:
    MsFile file;

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
};

// A text that a routine handed out.
struct FreeText {
    void operator()(char *text) const { ms_free(text); }
};
using OwnedText = std::unique_ptr<char, FreeText>;

// None for null.
inline QVector<double> numbersOf(const MsNumbers &numbers)
{
    QVector<double> result;
    for (const double number : numbers)
        result += number;
    return result;
}

#endif // OPENFIXTURE_H
