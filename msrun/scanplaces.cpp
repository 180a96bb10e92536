#include "scanplaces_p.h"

#include "countedtext_p.h"

#include <QList>
#include <QString>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 largestCount = std::numeric_limits<qint32>::max();

bool hasIndex(const MsScanPlace &place)
{
    return place.first != MsMissingLong && place.first != NC_FILL_INT;
}

// Whether a scan was never written. One that has its count may do without its scan_index.
bool isUnwritten(const MsScanPlace &place)
{
    return place.points == NC_FILL_INT || (place.first == NC_FILL_INT && place.points < 0);
}

qint64 lengthOf(const MsScanPlace &place)
{
    return std::max<qint64>(place.points, 0) + (place.points > 0 ? std::max<qint64>(place.flags, 0) : 0);
}

bool contains(const QList<MsDoubt> &doubts, const char *code)
{
    return std::any_of(doubts.begin(), doubts.end(),
                       [code](const MsDoubt &doubt) { return qstrcmp(doubt.code, code) == 0; });
}

} // namespace

// What the counters of all scans come to.
struct ScanPlaces::Survey {
    qint32 written = 0;
    qint32 withIndex = 0;
    qint32 withCount = 0;
    bool ascends = true;   // scan_index, along the axis
    bool rises = true;     // behind each scan with points
    bool runsOver = false; // a scan runs into the next one
    bool leavesAxis = false;
    qint64 length = 0; // of all scans by their counts, with flags
    qint64 onAxis = 0; // of those that lie on the axis: others can't be read
};

ScanPlaces::ScanPlaces(const MsFile &file, qint32 scanCount, const QList<MsDoubt> &found)
    : file_(file), scanCount_(scanCount), written_(scanCount), positions_(ms_count_positions(file.id()))
{
    const bool haveOverlap = contains(found, "overlapping-scans");
    const bool leaveAxis = contains(found, "scans-beyond-end");
    const bool haveNoCounts = scanCount > 0 && ms_read_scan_place(file.id(), 0).points == MsMissingLong;
    points_ = positions_;
    if (scanCount < 1 || positions_ < 1)
        return;
    if (!(haveOverlap || leaveAxis || haveNoCounts || contains(found, "no-scan-index"))) {
        if (contains(found, "cut-off")) // a damaged header may count any number of positions
            points_ = survey(positions_).onAxis;
        return;
    }
    const Survey all = survey(positions_);
    written_ = all.written;
    hasIndex_ = all.withIndex > 0;
    hasCounts_ = all.withCount > 0;
    rule_ = judge(all, haveOverlap);
    if (rule_ == Rule::AsStored)
        points_ = all.onAxis;
    for (qint32 scan = 0; rule_ == Rule::Gaps && scan < written_; ++scan) {
        if (place(scan).points != ms_read_scan_place(file_.id(), scan).points && changed_++ == 0)
            firstChanged_ = scan;
    }
}

ScanPlaces::Survey ScanPlaces::survey(qint64 positions) const
{
    Survey all;
    qint64 lastFirst = 0;
    qint64 lastEnd = 0;
    bool lastHasPoints = false;
    for (qint32 scan = 0; scan < scanCount_; ++scan) {
        const MsScanPlace place = ms_read_scan_place(file_.id(), scan);
        if (isUnwritten(place))
            continue;
        all.ascends = all.ascends && all.written == scan; // none was left out before it
        all.written = scan + 1;
        all.withIndex += hasIndex(place);
        all.withCount += place.points >= 0;
        all.length += lengthOf(place);
        const qint64 end = place.first + lengthOf(place);
        all.ascends = all.ascends && place.first >= lastFirst && place.first <= positions;
        all.rises = all.rises && (place.first > lastFirst || !lastHasPoints);
        lastHasPoints = lengthOf(place) > 0;
        if (lengthOf(place) > 0) {
            all.runsOver = all.runsOver || place.first < lastEnd;
            const bool isOnAxis = place.first >= 0 && end <= positions;
            all.leavesAxis = all.leavesAxis || !isOnAxis;
            all.onAxis += isOnAxis ? lengthOf(place) : 0;
            lastEnd = std::max(lastEnd, end);
        }
        lastFirst = std::max<qint64>(lastFirst, place.first);
    }
    return all;
}

ScanPlaces::Rule ScanPlaces::judge(const Survey &all, bool haveOverlap) const
{
    if (all.withCount == 0)
        return all.ascends ? Rule::Gaps : Rule::AsStored;
    // Scans may be stored in any order: as long as they share nothing, scan_index is right.
    if (all.withIndex == all.written && !haveOverlap && !all.leavesAxis)
        return Rule::AsStored;
    const bool addsUp = all.withCount == all.written && all.length == positions_;
    if (addsUp && !(all.ascends && all.rises && all.runsOver))
        return Rule::InARow;
    return all.ascends ? Rule::Gaps : Rule::AsStored;
}

MsScanPlace ScanPlaces::place(qint32 scan)
{
    const auto stored = [this](qint32 number) { return ms_read_scan_place(file_.id(), number); };
    MsScanPlace place = stored(scan);
    if (rule_ == Rule::InARow) {
        place.first = starts_.at(scan, [&](qint32 number, qint64 start) {
            const MsScanPlace before = stored(number);
            return start + (isUnwritten(before) ? 0 : lengthOf(before));
        });
    } else if (rule_ == Rule::Gaps) {
        const qint64 end = scan + 1 < written_ ? stored(scan + 1).first : positions_;
        const qint64 flags = std::max(place.flags, 0);
        place.points = qint32(std::min<qint64>(end - place.first - flags, largestCount));
        // Where there is no room for the flags, the points are what is there.
        if (place.points < 0 && end >= place.first)
            place = {place.first, qint32(std::min<qint64>(end - place.first, largestCount)), 0};
    }
    return place;
}

MsScan ScanPlaces::read(qint32 scan, QString *failure)
{
    *failure = QString();
    const bool isWritten = scan < written_;
    MsScan record = isWritten && rule_ == Rule::AsStored
        ? MsScan(file_.id(), scan)
        : MsScan(file_.id(), scan, isWritten ? place(scan) : MsScanPlace{0, 0, 0});
    if (!record.isRead())
        *failure = ms_scan_failure(file_.id());
    else if (!isWritten || record.point_count == NC_FILL_INT)
        *failure = QStringLiteral("it was never written");
    else if (record.point_count < 0)
        *failure = QStringLiteral("its point_count is %1").arg(record.point_count);
    return record;
}

QList<MsDoubt> ScanPlaces::doubts(const QString &name) const
{
    const QString count = QString::number(written_);
    if (rule_ == Rule::InARow) {
        const QString what = hasIndex_ ? QStringLiteral("contradicts point_count")
                                       : QStringLiteral("is missing or unusable");
        return {{"scans-in-a-row", written_, QString(),
                 ms_counted_text("In \"%1\", scan_index %2; as the counts add up to all points, "
                                 "[its one scan is read from the first point on|the %3 scans are read "
                                 "one behind the other].",
                                 written_, {name, what, count}),
                 false, false}};
    }
    if (rule_ == Rule::Gaps && !hasCounts_) {
        return {{"counts-from-index", written_, QString(),
                 ms_counted_text("In \"%1\", point_count is missing or unusable; "
                                 "[its one scan is read up to the last point|each of the %2 scans is "
                                 "read up to where the next one begins by scan_index].",
                                 written_, {name, count}),
                 false, false}};
    }
    if (rule_ == Rule::Gaps && changed_ > 0) {
        return {{"counts-from-index", changed_, QStringLiteral("scan %1").arg(firstChanged_),
                 QStringLiteral("In \"%1\", scans run into the next ones by their point_count; each is "
                                "read up to where the next one begins by scan_index, which changes the "
                                "count of %2 of %3 scans; the first is scan %4.")
                     .arg(name, QString::number(changed_), count, QString::number(firstChanged_)),
                 false, false}};
    }
    return {};
}

QStringList ScanPlaces::mended() const
{
    if (rule_ == Rule::AsStored)
        return {};
    QStringList codes = {"no-scan-index", "falling-scan-index", "overlapping-scans", "scans-beyond-end",
                         "bad-counts"};
    if (rule_ == Rule::InARow || ms_read_scan_place(file_.id(), 0).first == 0)
        codes += QStringLiteral("unowned-points"); // the scans have all
    return codes;
}
