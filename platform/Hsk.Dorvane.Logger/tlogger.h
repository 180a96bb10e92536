// The host's log file.
#ifndef TLOGGER_H
#define TLOGGER_H

#include <QString>

class TLogger
{
public:
    // `level` is higher for what is more serious: 100 debug, 200 plain, 300 warning, 500 fatal. `file`
    // and `line` say where the message comes from.
    virtual void logEntry(int level, const QString &file, int line, const QString &message) = 0;
    virtual void flushEntries() = 0;

    // The logger of the process; null until a program sets one. The program keeps it, and sets null
    // before it destroys it.
    static TLogger *getDefaultInstance();
    static void setDefaultInstance(TLogger *logger);

protected:
    ~TLogger() = default;
};

#endif // TLOGGER_H
