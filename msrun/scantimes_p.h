// Private: when the scans of a run were taken, by the file or, for scans without a time, by what it says
// of durations and of the run's length.
#ifndef SCANTIMES_P_H
#define SCANTIMES_P_H

#include "fold_p.h"
#include "numbers_p.h"

#include "msdoubts.h"
#include "msfile.h"

#include <QStringList>

class ScanTimes
{
public:
    // Judges the times of the first `scanCount` scans of an open file. `found` are the toolkit's doubts
    // of it.
    ScanTimes(const MsFile &file, const MsGlobals &globals, qint32 scanCount,
              const QList<MsDoubt> &found);

    // Returns the time of a scan with these numbers, as the file counts; NaN if it isn't known.
    double of(const MsScanRecord &scan);

    // Whether the times of the file are right as they are, all there and ascending.
    bool ascend() const { return ascend_; }

    QList<MsDoubt> doubts(const QString &name) const;
    QStringList mended() const;

private:
    static double durationOf(const MsScanRecord &scan);

    const MsFile &file_;
    qint32 scanCount_;
    bool ascend_ = false;
    bool areMade_ = false; // some of them
    bool haveDurations_ = false;
    double evenStep_ = unknownNumber; // by the run's length, where scans tell no duration
    qint32 lacking_ = 0;              // scans without a time in the file
    qint32 made_ = 0;                 // of those, scans with one here
    qint32 firstMade_ = -1;
    Fold<double> madeTimes_{unknownNumber};
};

#endif // SCANTIMES_P_H
