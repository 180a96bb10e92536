// Private to the toolkit: what is gathered of an open file while others read it, so that nobody has to
// read it again to find what can't be right. Memory doesn't grow with the points: it takes a bit for each
// scan.
#ifndef TALLY_P_H
#define TALLY_P_H

#include "mstoolkit.h"

#include <QString>

#include <array>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

struct MsFileState;

// The kinds of doubt, in the order in which they are listed. doubts.cpp has the code and the sentence of
// each.
enum class MsDoubtKind {
    CutOff,
    Unfinished,
    TrailingBytes,
    ReadFailed,
    ChangedFile,
    UnwrittenScans,
    BadCounts,
    BadFlagCounts,
    NoScanIndex,
    FallingScanIndex,
    OverlappingScans,
    ScansBeyondEnd,
    UnownedPoints,
    UnreadableScans,
    UnreadableMasses,
    NoIntensities,
    BadTotals,
    MassScale,
    IntensityScale,
    IntensityOffset,
    MergedMasses,
    WrongTotals,
    BadMasses,
    FillMasses,
    NegativeMasses,
    ZeroMasses,
    UnorderedMasses,
    BadIntensities,
    FillIntensities,
    UnplacedPoints,
    MissingTimes,
    BadTimes,
    RestartingTimes,
    FallingTimes,
    EqualTimes,
    TimeGap,
    UnevenTimes,
    MassFormat,
    IntensityFormat,
    TimeRange,
    StartingScan,
    GroupCounts,
    MassRange,
    IntensityRange,
    ScanMassRange,
    ScanTimeRange,
    Count
};

struct MsFinding {
    qint64 count = 0;
    qint64 first = -1; // a scan or a position

    void add(qint64 place, qint64 times = 1)
    {
        if (count == 0)
            first = place;
        count += times;
    }
};

class MsFindings
{
public:
    MsFinding &operator[](MsDoubtKind kind) { return findings[std::size_t(kind)]; }
    const MsFinding &operator[](MsDoubtKind kind) const { return findings[std::size_t(kind)]; }

private:
    std::array<MsFinding, std::size_t(MsDoubtKind::Count)> findings;
};

// How a number that the scans of a file claim agrees with what their points say.
class MsAgreement
{
public:
    void compare(qint64 scan, double claimed, double measured);

    // Scans that disagree: by more than a tenth of a percent, where that is more than a hundredth of
    // them.
    MsFinding disagreeing() const;

    // Scans that disagree where nearly all others agree but for rounding.
    MsFinding odd_ones_out() const;

    // Scans that are off by more than a hundredth.
    MsFinding far_off() const { return off[Hundredth]; }

private:
    enum Limit { Exact, Rounding, Little, Thousandth, Hundredth, LimitCount };

    qint64 compared = 0;
    std::array<MsFinding, LimitCount> off; // by more than each
};

// What the last census of masses came to.
struct MsCensusTally {
    bool is_done = false;
    bool is_read = false;
    qint64 keys = 0;
    // Of masses that all come to one key.
    qint64 seen = 0;
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
    MsFindings found; // by position
};

struct MsTally {
    // Of ms_read_global: the numbers of the record that it returned; the texts belong to others.
    bool knows_globals = false;
    MsRawGlobalRecord raw;

    // Of the scans' own numbers, which doubtscans.cpp reads once, and the totals of a trace likewise.
    bool knows_scans = false;
    bool knows_totals = false;
    double least_time = std::numeric_limits<double>::infinity();
    double most_time = -std::numeric_limits<double>::infinity();
    qint64 points_of_scans = 0; // flags count, too

    MsCensusTally census;

    // Of scans that were read.
    std::vector<bool> seen;
    qint64 scans_seen = 0;
    qint64 scans_with_order = 0; // with two points or more
    MsAgreement totals;
    MsAgreement least_masses;
    MsAgreement most_masses;
    double least_total = std::numeric_limits<double>::infinity();
    double most_total = -std::numeric_limits<double>::infinity();
    bool has_failure = false;
    qint32 failed_scan = -1; // the last one
    QString first_failure;   // why the first one that failed couldn't be read

    MsFindings found;
};

// Takes note of a scan that was read, or that couldn't be read.
void ms_tally_scan(MsFileState &file, const MsScanRecord &scan);
void ms_tally_failure(MsFileState &file, qint32 scan);

// Takes note of the next masses of a census that has no more than one key yet.
void ms_tally_masses(MsCensusTally &census, const void *masses, qint32 format, qint32 count);

// Reads where the points of all scans lie and when they were taken, once for a file.
void ms_look_at_scans(MsFileState &file);

// Reads the total intensity of all scans, once for a file: of a run without masses a reader gets nothing
// else.
void ms_look_at_totals(MsFileState &file);

// Looks at the groups of masses: those that can't be, and how many there are.
std::pair<MsFinding, qint32> ms_look_at_groups(MsFileState &file);

// Why a scan can't be read, as the rest of a sentence: "scan_index is missing".
QString ms_describe_failure(MsFileState &file, qint32 scan);

// A factor of the file, or what counts where it has none.
inline double ms_given(double factor, double otherwise)
{
    return factor == MsMissingDouble ? otherwise : factor;
}

#endif // TALLY_P_H
