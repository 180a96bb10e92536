// The command line of aia-view.
#ifndef VIEWOPTIONS_H
#define VIEWOPTIONS_H

#include "outputfile.h"

#include <QString>
#include <QStringList>

#include <optional>

// What --image draws.
struct ImageRequest {
    enum class What { Trace, Map, Scan, Time };

    QString output; // ends in .png, .pdf or .svg
    OutputFile::Existing existing = OutputFile::Existing::Keep;
    What what = What::Trace;
    qint32 scan = -1;
    double minutes = 0.0;
    int width = 1200;
    int height = 600;
};

struct ViewCommand {
    QStringList files;
    double modulation = 0.0; // in s; 0 where none is given
    std::optional<ImageRequest> image;
    std::optional<int> exitStatus; // set where the program has done all it was asked for
};

// Takes the command line apart, and answers --help, --version and wrong usage.
ViewCommand parseViewCommand(const QStringList &arguments);

#endif // VIEWOPTIONS_H
