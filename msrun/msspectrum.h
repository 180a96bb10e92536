// One scan of a run, or one spectrum of a library, for those who want masses and intensities as they are
// meant. msrun.h has the run that they come from.
//
// Numbers are double. One that the file lacks is NaN, a text that it lacks is null.
#ifndef MSSPECTRUM_H
#define MSSPECTRUM_H

#include "msrecords.h"

#include <QString>

#include <limits>
#include <memory>
#include <vector>

// A range, both of its ends in it.
struct MsInterval {
    double from;
    double to;
};

// Peaks of several scans: as many intensities as masses, and the masses ascend.
struct MsPeaks {
    std::vector<double> masses;
    std::vector<double> intensities;
};

// What the stored numbers of a run's points mean.
struct MsScales {
    double mass = 1.0;      // factor of masses
    double intensity = 1.0; // factor of intensities,
    double offset = 0.0;    // to which this is added
};

// A scan. It owns its numbers and outlives its run; it can be moved, not copied.
//
// Points without data are left out: those whose mass or intensity was never written (the fill value), is
// infinite or no number.
class MsSpectrum
{
public:
    // A scan of which nothing could be read; isRead() is false.
    MsSpectrum() = default;

    // Takes over a record whose points are of this run. `failure` says why it couldn't be read, and is
    // null if it could. MsRun calls it.
    MsSpectrum(MsScan &&record, const MsScales &scales, double time, const QString &failure);

    // The place in the run, from 0; -1 for a spectrum without one.
    qint32 index() const { return scan_.scan_number; }

    // The number that the file gives the scan, actual_scan_number, else index(). It needn't be unique.
    qint32 number() const;

    // Whether the scan could be read. If not, failure() is the rest of a sentence that says why, such as
    // "the file ends before its points"; there are no points then.
    bool isRead() const { return failure_.isNull(); }
    QString failure() const { return failure_; }

    // Points that have data, in the order of the file, in which masses needn't ascend.
    qint32 size() const { return size_; }

    // The masses and intensities of the points, size() of each; made at the first call. They live as long
    // as this object.
    const double *masses() const;
    const double *intensities() const;

    // The same as the file stores them, without a copy: null unless that is float with the factor 1 and,
    // for intensities, the offset 0.
    const float *storedMasses() const;
    const float *storedIntensities() const;

    // The times of the points as the file stores them, size() of them; none where it has no such axis.
    // MsGlobals::time scales them.
    MsNumbers pointTimes() const { return isRead() ? scan_.times() : MsNumbers(); }

    // When the scan was taken, in seconds where MsRun::hasSeconds, else as stored.
    double time() const { return time_; }

    // The total intensity that the file gives, and the sum of intensities().
    double storedTotal() const;
    double summedTotal() const;

    // What the file says of the scan's ranges: mass_range_min and _max, time_range_min and _max.
    MsInterval massRange() const;
    MsInterval timeRange() const;

    // Flagged peaks by the file's own count, in which points without data count, too, and the flags.
    MsNumbers flaggedPeaks() const { return scan_.flaggedPeaks(); }
    MsNumbers flagValues() const { return scan_.flagValues(); }

    // All numbers of the scan as the toolkit reads them, with missing values as mstoolkit.h says.
    // point_count counts the points with data.
    const MsScanRecord &record() const { return scan_; }

private:
    const double *numbers() const;
    void dropPointsWithoutData();

    MsScan scan_;
    MsScales scales_;
    qint32 size_ = 0;
    double time_ = std::numeric_limits<double>::quiet_NaN();
    QString failure_ = QStringLiteral("there is no such scan");
    mutable std::unique_ptr<double[]> numbers_; // masses, and intensities behind them
};

#endif // MSSPECTRUM_H
