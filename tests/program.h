// Fixtures, files, and a program as a person or a script meets it: what it prints, and how it ends.
#ifndef PROGRAM_H
#define PROGRAM_H

#include <QDir>
#include <QFile>
#include <QProcess>

// In ms; a program that hangs, rather than one on a busy machine.
constexpr int longestWait = 300000;

struct Run {
    int code = -1; // also of a program that crashed or hangs
    QByteArray out;
    QByteArray err;
};

// Waits for the end of a program.
inline Run finish(QProcess &program)
{
    Run run;
    if (program.waitForFinished(longestWait) && program.exitStatus() == QProcess::NormalExit)
        run.code = program.exitCode();
    run.out = program.readAllStandardOutput();
    run.err = program.readAllStandardError();
    return run;
}

inline Run runProgram(const QString &program, const QStringList &arguments, const QString &folder = QString())
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    return finish(process);
}

inline QString fixture(const QString &name)
{
    return QStringLiteral(AIA_FIXTURES "/%1.cdf").arg(name);
}

inline QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Whether all could be written, to a new file.
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile::remove(path); // one that is cut to nothing and written again is flushed to a disk that may be busy
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Makes a netCDF file of a kind that ncgen knows from text.
inline bool makeNetcdf(const QString &path, const QString &kind, const QByteArray &cdl)
{
    const QString text = path + QStringLiteral(".cdl");
    return writeFile(text, cdl) && runProgram(QStringLiteral("ncgen"), {"-k", kind, "-o", path, text}).code == 0;
}

// Of this process.
inline int openFiles()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size();
}

#endif // PROGRAM_H
