// The host's log file.
#ifndef TLOGGER_H
#define TLOGGER_H

#include <QString>

class TLogger
{
public:
    // `level` grows with gravity: 100 debug, 200 plain, 300 warning, 500 fatal.
    virtual void logEntry(int level, const QString &file, int line, const QString &message) = 0;
    virtual void flushEntries() = 0;

    // The process's logger, or null until a program installs one. It stays its owner's.
    static TLogger *getDefaultInstance();
    static void setDefaultInstance(TLogger *logger);

protected:
    ~TLogger() = default;
};

#endif // TLOGGER_H
