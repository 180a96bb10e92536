#include "scantimes_p.h"

#include <QList>
#include <QString>

#include <algorithm>

namespace {

bool containsOneOf(const QList<MsDoubt> &doubts, const QStringList &codes)
{
    return std::any_of(doubts.begin(), doubts.end(), [&codes](const MsDoubt &doubt) {
        return codes.contains(QLatin1String(doubt.code));
    });
}

} // namespace

ScanTimes::ScanTimes(const MsFile &file, const MsGlobals &globals, qint32 scanCount,
                     const QList<MsDoubt> &found)
    : file_(file), scanCount_(scanCount)
{
    const bool someLack = containsOneOf(found, {"missing-times", "bad-times", "unwritten-scans"});
    ascend_ = !someLack && !containsOneOf(found, {"restarting-times", "falling-times"});
    if (!someLack || file.isLibrary()) // whose spectra come in any order
        return;
    double firstKnown = unknownNumber;
    double beforeIt = 0.0; // from the first scan to that with the first known time
    for (qint32 scan = 0; scan < scanCount_; ++scan) {
        const MsScanHeader header = file_.scanHeader(scan);
        if (!header.isRead())
            return; // times can't be asked for
        haveDurations_ = haveDurations_ || ms_is_given(header.scan_duration);
        lacking_ += !ms_is_given(header.scan_acquisition_time);
        if (ms_is_given(firstKnown))
            continue;
        firstKnown = known(header.scan_acquisition_time);
        beforeIt += ms_is_given(firstKnown) ? 0.0 : durationOf(header);
    }
    const MsRawGlobalRecord &raw = globals.raw;
    const bool allLack = lacking_ == scanCount_;
    // The length is that from the first scan to the last one.
    if (allLack && scanCount_ > 1 && ms_is_given(raw.actual_run_time_length)
        && raw.actual_run_time_length > 0.0)
        evenStep_ = raw.actual_run_time_length / (scanCount_ - 1);
    if (!haveDurations_ && !ms_is_given(evenStep_))
        return;
    areMade_ = true;
    madeTimes_ = Fold<double>(allLack ? std::max(knownOr(raw.actual_delay_time, 0.0), 0.0)
                                      : firstKnown - beforeIt);
    for (qint32 scan = 0; scan < scanCount_; ++scan) {
        const MsScanHeader header = file_.scanHeader(scan);
        if (!ms_is_given(header.scan_acquisition_time) && ms_is_given(of(header)) && made_++ == 0)
            firstMade_ = scan;
    }
}

// The time from a scan to the next one, NaN if it doesn't say.
double ScanTimes::durationOf(const MsScanRecord &scan)
{
    if (!ms_is_given(scan.scan_duration))
        return unknownNumber;
    return std::max(scan.scan_duration, 0.0) + std::max(knownOr(scan.inter_scan_time, 0.0), 0.0);
}

double ScanTimes::of(const MsScanRecord &scan)
{
    if (ms_is_given(scan.scan_acquisition_time) || !areMade_)
        return known(scan.scan_acquisition_time);
    return madeTimes_.at(scan.scan_number, [this](qint32 number, double time) {
        const MsScanHeader header = file_.scanHeader(number);
        return knownOr(header.scan_acquisition_time, time)
            + (haveDurations_ ? durationOf(header) : evenStep_);
    });
}

QList<MsDoubt> ScanTimes::doubts(const QString &name) const
{
    if (made_ == 0)
        return {};
    return {
        {"made-times", made_, QStringLiteral("scan %1").arg(firstMade_),
         QStringLiteral("In \"%1\", the times of %2 of %3 scans are made from %4; the first is scan %5.")
             .arg(name, QString::number(made_), QString::number(scanCount_),
                  haveDurations_ ? QStringLiteral("the durations of the scans")
                                 : QStringLiteral("the length of the run, as if evenly spaced"),
                  QString::number(firstMade_)),
         false, false}};
}

// A scan that gets no time stays one without.
QStringList ScanTimes::mended() const
{
    return made_ > 0 && made_ == lacking_ ? QStringList{"missing-times", "bad-times"} : QStringList();
}
