// What the window shows, written to files by the writers that the programs share. Each routine writes to
// a file that isn't open yet, and returns a sentence that says why that failed; null if it didn't.
#ifndef VIEWEXPORT_H
#define VIEWEXPORT_H

#include "mspwriter.h"
#include "rundata.h"
#include "traceplot.h"

struct ModulationMap;

// A row for each peak, or point of a profile.
QString writeSpectrumCsv(const SpectrumData &spectrum, OutputFile *output);

// `about` says what the spectrum is of; its peaks are those of the spectrum.
QString writeSpectrumMsp(const SpectrumData &spectrum, MspEntry about, OutputFile *output);

// A row for each point of each curve. `time` and `value` are the axes' labels.
QString writeTracesCsv(const std::vector<TraceCurve> &curves, const QString &time, const QString &value,
                       OutputFile *output);

// A row for each cell that has a scan.
QString writeMapCsv(const ModulationMap &map, const QString &value, OutputFile *output);

#endif // VIEWEXPORT_H
