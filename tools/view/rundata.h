// What the window shows of a run, as plain values that were read on the reading thread.
#ifndef RUNDATA_H
#define RUNDATA_H

#include "inforeport.h"
#include "msrun.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// What a run's trace is made of.
enum class TraceSource { Stored, Summed, BasePeak };

// The source's name, for lists and axes.
QString sourceName(TraceSource source);

// A run as a whole, known as soon as it is open.
struct RunSummary {
    MsRun::Kind kind = MsRun::Kind::Trace;
    qint32 size = 0;
    bool isProfile = false;
    QString title;
    QString timeLabel;         // of an axis, with its unit
    double timeUnit = 1.0;     // in the run's own unit: 60 where times are shown in minutes
    std::vector<double> times; // of each scan, as they are shown; NaN unknown
    std::vector<double> storedTotals;
    bool hasTimes = false;   // some are known; if not, scan numbers stand for them
    bool hasStored = false;  // some are known
    MsModulation modulation; // guessed from the stored totals

    // Whether the run has a trace of that source.
    bool has(TraceSource source) const;

    // The time of a scan as it is shown: its number where the run has no times; NaN for one that isn't
    // there.
    double shownTime(qint32 scan) const;
};

// What takes reading all scans: a number for each, NaN for one that can't be read.
struct ScanSums {
    std::vector<double> totals;
    std::vector<double> basePeaks; // the largest intensity
    MsModulation modulation;       // guessed from the totals
};

// A spectrum to be shown.
struct SpectrumData {
    QString title;
    QString failure;  // a sentence that says why there is no spectrum; null where there is one
    qint32 scan = -1; // -1 for an average, or one of no run
    double time = 0.0;
    bool isProfile = false;
    std::vector<double> masses; // in any order
    std::vector<double> intensities;

    // The masses of the largest peaks, the largest first; all of them where there are fewer than `count`.
    std::vector<double> largestMasses(std::size_t count) const;
};

// Intensities of one window of masses, a number for each scan.
struct ExtractedTrace {
    QString name;
    MsInterval masses;
    std::vector<double> values;
};

struct RunDoubts {
    QList<MsDoubt> list;
    bool isSettled = false; // all scans were read
};

// A time as the window writes it, with its unit.
QString timeText(double time, const RunSummary &summary);

// Read these of a run. They take as long as reading the run takes, and belong to the reading thread. What
// `progress` stops is empty.
RunSummary summaryOf(const MsRun &run);
ScanSums sumsOf(const MsRun &run, const MsRun::Progress &progress);
SpectrumData spectrumOf(const MsRun &run, qint32 scan, const RunSummary &summary);

// The average of the scans in a range of shown times, less that of those in another one, if any. What
// falls to zero or below is left out.
SpectrumData averageOf(const MsRun &run, const MsInterval &times,
                       const std::optional<MsInterval> &background, const RunSummary &summary,
                       const MsRun::Progress &progress);

#endif // RUNDATA_H
