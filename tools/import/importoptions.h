// The command line of aia-import.
#ifndef IMPORTOPTIONS_H
#define IMPORTOPTIONS_H

#include <QStringList>

#include <optional>

struct ImportOptions {
    QStringList files;
    QString json; // empty: none
    bool quiet = false;
    bool ask = false;
    std::optional<float> modulation;
};

// Gives the options, or, where the program has nothing to import, its exit status, after a text on
// standard output (help, version) or standard error (wrong usage).
struct CommandLine {
    std::optional<int> exitStatus;
    ImportOptions options;
};
CommandLine parseCommandLine(const QStringList &arguments);

#endif // IMPORTOPTIONS_H
