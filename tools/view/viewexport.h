// What the window shows, written to files as the ending of the name says: an image (.png, .pdf, .svg) or
// a table (.csv), by the writers that the programs share. Each routine returns a sentence that says why
// that failed; null if it didn't. A file that is there is written over, but never `run`, the file of the
// run.
#ifndef VIEWEXPORT_H
#define VIEWEXPORT_H

#include "mspwriter.h"
#include "rundata.h"

#include <QString>

class MapPlot;
class SpectrumPlot;
class TracePlot;

// The table has a row for each point of each curve.
QString writeTraces(TracePlot &plot, const QString &run, const QString &name);

// The table has a row for each cell that has a scan. `value` says what the values are.
QString writeMap(MapPlot &plot, const QString &value, const QString &run, const QString &name);

// The table has a row for each peak, or point of a profile. A name that ends in .msp gets an entry of a
// library, with the peaks of `spectrum`; `about` says what it is of.
QString writeSpectrum(SpectrumPlot &plot, const SpectrumData &spectrum, const MspEntry &about,
                      const QString &run, const QString &name);

// Returns the ending that a typed name lacks, as it has none of those of `kinds`, the kinds of files that
// a dialog offers: the first one of the kind that was chosen, such as ".mzML". Null where it lacks none.
QString lackingEnd(const QString &name, const QString &kinds, const QString &chosen);

#endif // VIEWEXPORT_H
