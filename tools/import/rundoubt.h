// A doubt of a run as the plugin hands it over: see mstoolkit/msdoubts.h, which has the codes.
#ifndef RUNDOUBT_H
#define RUNDOUBT_H

#include <QString>

#include <vector>

class QObject;

struct RunDoubt {
    QString code;
    qint64 count = 0;
    QString example; // may be empty
    QString text;    // a sentence with the file's name
    bool isLoss = false;
};

// Returns the doubts of the plugin's working copy that are known by now.
std::vector<RunDoubt> doubtsOf(const QObject &copy);

// Returns why the scan that the working copy was asked for last couldn't be read, as a clause; null if it
// could.
QString scanFailureOf(const QObject &copy);

#endif // RUNDOUBT_H
