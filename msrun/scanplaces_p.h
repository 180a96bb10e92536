// Private: where the points of each scan lie, by the file or, where its counters contradict each other,
// by what of them holds.
#ifndef SCANPLACES_P_H
#define SCANPLACES_P_H

#include "fold_p.h"

#include "msdoubts.h"
#include "msfile.h"

#include <QStringList>

class ScanPlaces
{
public:
    // Judges the counters of the first `scanCount` scans of an open file. `found` are the toolkit's
    // doubts of it.
    ScanPlaces(const MsFile &file, qint32 scanCount, const QList<MsDoubt> &found);

    // Reads a scan at its place. `failure` becomes the rest of a sentence where that fails, else null.
    MsScan read(qint32 scan, QString *failure);

    // All points of all scans, those that several have counted for each.
    qint64 points() const { return points_; }

    // What was judged, for the file's name as the sentences show it, and the codes of the toolkit's
    // doubts that no longer hold.
    QList<MsDoubt> doubts(const QString &name) const;
    QStringList mended() const;

private:
    enum class Rule {
        AsStored,
        InARow, // one behind the other, by their counts
        Gaps    // each up to the next one, by scan_index
    };

    struct Survey;
    Survey survey(qint64 positions) const;
    Rule judge(const Survey &all, bool haveOverlap) const;
    MsScanPlace place(qint32 scan);

    const MsFile &file_;
    qint32 scanCount_;
    qint32 written_; // scans before those at the end that were never written
    qint64 positions_ = 0;
    qint64 points_ = 0;
    Rule rule_ = Rule::AsStored;
    qint32 changed_ = 0; // scans whose count isn't that of the file
    qint32 firstChanged_ = -1;
    bool hasIndex_ = true;
    bool hasCounts_ = true;
    Fold<qint64> starts_{0};
};

#endif // SCANPLACES_P_H
