// The command line of aia-import.
#ifndef IMPORTOPTIONS_H
#define IMPORTOPTIONS_H

#include "outputfile.h"

#include <QString>
#include <QStringList>

#include <optional>

struct ImportOptions {
    QStringList files;
    QString json; // the file to write, - for standard output; empty for none
    OutputFile::Existing existing = OutputFile::Existing::Keep;
    bool quiet = false;              // show errors only
    bool verbose = false;            // show the running account and the header, too
    bool strict = false;             // fail for doubts, too
    bool ask = false;                // show the dialog for each file
    std::optional<float> modulation; // seconds
    bool guessModulation = false;    // take what the trace of each file shows
};

struct CommandLine {
    std::optional<int> exitStatus; // set if the program has nothing to import
    ImportOptions options;
};

// Returns the options, or the exit status of a program that has nothing to import. It has printed help or
// version then, or reported a wrong usage.
CommandLine parseCommandLine(const QStringList &arguments);

#endif // IMPORTOPTIONS_H
