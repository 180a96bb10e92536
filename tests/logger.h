// The running account of an import, as the host's logger gets it.
#ifndef LOGGER_H
#define LOGGER_H

#include "tlogger.h"

#include <QStringList>

// The process's logger for the length of a block.
class Logger : public TLogger
{
public:
    Logger() { setDefaultInstance(this); }
    ~Logger() { setDefaultInstance(nullptr); }

    void logEntry(int entryLevel, const QString &entryFile, int entryLine, const QString &message) override
    {
        level = entryLevel;
        file = entryFile;
        line = entryLine;
        messages += message;
    }
    void flushEntries() override { flushed = messages.size(); }

    int level = 0;
    QString file;
    int line = 0;
    QStringList messages;
    int flushed = 0; // messages

private:
    Q_DISABLE_COPY(Logger)
};

#endif // LOGGER_H
