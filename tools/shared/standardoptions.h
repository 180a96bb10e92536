// What the programs' command lines have in common: --help and --version, refusals, exit codes.
#ifndef STANDARDOPTIONS_H
#define STANDARDOPTIONS_H

#include <QCommandLineOption>

class QCommandLineParser;

enum ExitCode { Success = 0, Failure = 1, WrongUsage = 2 };

// Names the program for --version and for reports, and has Qt keep the names of files: see namecodec.h.
// The first call of main().
void setProgram(const char *name, const char *version);

class StandardOptions
{
public:
    // Adds the options behind those that the parser has. Qt's own help option would bring one for its own
    // options along.
    explicit StandardOptions(QCommandLineParser *parser);

    // Prints what the parsed line asks for, in the terminal's coding; whether it asked for anything.
    bool answer(const QCommandLineParser &parser) const;

private:
    QCommandLineOption help;
    QCommandLineOption version;
};

// Reports why the arguments can't be used. Gives WrongUsage.
int refuse(const QString &why);

#endif // STANDARDOPTIONS_H
