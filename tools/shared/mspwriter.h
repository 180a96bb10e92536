// Spectra as MSP text, which programs that search libraries of mass spectra take.
#ifndef MSPWRITER_H
#define MSPWRITER_H

#include "mscompound.h"
#include "textoutput.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <limits>
#include <vector>

// A spectrum and what it is of. Only what is there is written: no null text, no NaN.
struct MspEntry {
    QString name;
    QStringList synonyms;
    QString formula;
    double molecularWeight = std::numeric_limits<double>::quiet_NaN(); // written as a whole number
    double exactMass = std::numeric_limits<double>::quiet_NaN();
    QString casNumber; // with its hyphens
    double retentionIndex = std::numeric_limits<double>::quiet_NaN();
    double minutes = std::numeric_limits<double>::quiet_NaN(); // retention time
    QString comment;
    std::vector<double> masses;
    std::vector<double> intensities; // as many
};

// Returns what a library says of a compound, under the name of its entry where it has none. The peaks are
// left to the caller.
MspEntry entryOf(const MsCompound &compound, qint32 number);

// Returns a CAS number with its hyphens; null for none.
QString casText(qint32 number);

// Whether a CAS number can be one: its last digit checks the others.
bool isCasNumber(qint32 number);

// Whether MSP has such a point: from mass 1 on, with a finite intensity above 0.
bool isMspPeak(double mass, double intensity);

// Appends an entry and the blank line behind it. Texts are written in ASCII on one line, other points
// than isMspPeak() are left out. Returns false, and writes nothing, for a spectrum that has no others.
bool writeMspEntry(TextOutput &output, const MspEntry &entry);

#endif // MSPWRITER_H
