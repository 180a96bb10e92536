// The options that each program has: --help and --version.
#ifndef STANDARDOPTIONS_H
#define STANDARDOPTIONS_H

#include <QCommandLineOption>

class QCommandLineParser;

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

#endif // STANDARDOPTIONS_H
