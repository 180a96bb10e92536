#include "ttestingmacros.h"

#include "tlogger.h"

#include <QByteArray>
#include <QString>

#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include "debugger.h"
#endif

namespace {

struct LevelRow {
    int level;
    const char *text; // of the formatted line
    int loggerLevel;
    int line;
};

// clang-format off
constexpr LevelRow levelRows[] = {
    {0, "Debug: %1\n",   100, 49},
    {1, "Warning: %1\n", 300, 53},
    {3, "Fatal: %1\n",   500, 57},
};
constexpr LevelRow plainRow =
    {2, "%1\n",          200, 61};
// clang-format on

const LevelRow &rowOf(int level)
{
    for (const LevelRow &row : levelRows) {
        if (row.level == level)
            return row;
    }
    return plainRow;
}

// Returns false if no debugger listens.
bool sendToDebugger(const QString &line)
{
    if (!IsDebuggerPresent())
        return false;
    OutputDebugStringW(line.toStdWString().c_str());
    return true;
}

} // namespace

void testingMessageOutput(int level, const void *, const QString &message)
{
    const LevelRow &row = rowOf(level);
    if (TLogger *logger = TLogger::getDefaultInstance()) {
        logger->logEntry(row.loggerLevel,
                         QStringLiteral("libraries\\internal\\common\\include\\ttestingmacros"), row.line,
                         message);
        logger->flushEntries();
    }

    if (sendToDebugger(QString::fromLatin1(row.text).arg(message)))
        return;
    const QByteArray bytes = message.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    std::fflush(stderr);
}
