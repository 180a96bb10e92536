// What the programs' command lines have in common: --help and --version, refusals, exit codes.
#ifndef STANDARDOPTIONS_H
#define STANDARDOPTIONS_H

#include <QCommandLineOption>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

class QCommandLineParser;

enum ExitCode { Success = 0, Failure = 1, WrongUsage = 2 };

// Names the program for --version and for reports, has Qt keep the names of files (see namecodec.h), and
// has writes fail that would end the process or go elsewhere (see interruption.h). The first call of
// main().
void setProgram(const char *name, const char *version);

class StandardOptions
{
public:
    // Adds the options to the parser, after those that it has. They stand in for the parser's own help
    // option, which would also list Qt's options. Of the options with a value, `lists` names those that
    // may be given more than once.
    explicit StandardOptions(QCommandLineParser *parser, const QStringList &lists = {});

    // Parses the arguments. Returns the exit code where the program has no more to do: it has refused
    // them, as those that give several values where one would count, or printed help or version, in the
    // terminal's coding, as they asked.
    std::optional<int> parse(const QStringList &arguments, QCommandLineParser *parser) const;

private:
    bool answer(const QCommandLineParser &parser) const;

    const QStringList lists_;
    QCommandLineOption help;
    QCommandLineOption version;
};

// --force, for programs that write files.
QCommandLineOption forceOption();

// Reads the number of a scan. Returns the sentence that says why the text is none, or a null text.
QString readScanNumber(const QString &text, int *number);

// Returns the sentence that says that the run has no scan at `minutes`, but `scan` of `count` at `found`
// nearest to it; a null text where the time lies within the run.
QString remarkOnTime(double minutes, qint32 scan, qint32 count, double found);

// Reports an OutputFile's objection. Returns WrongUsage.
int refuseOutput(const QString &objection);

// Reports why the arguments can't be used. Returns WrongUsage.
int refuse(const QString &why);

#endif // STANDARDOPTIONS_H
