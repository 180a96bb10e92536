// Private to the toolkit: what was found doubtful of an open file, before it becomes sentences.
#ifndef DOUBTS_P_H
#define DOUBTS_P_H

#include "mstoolkit.h"

#include <array>
#include <cstddef>

struct MsFileState;

// In the order in which they are listed. doubts.cpp has the code and the sentence of each.
enum class MsDoubtKind {
    CutOff,
    Unfinished,
    TrailingBytes,
    UnwrittenScans,
    BadCounts,
    BadFlagCounts,
    NoScanIndex,
    FallingScanIndex,
    OverlappingScans,
    ScansBeyondEnd,
    UnownedPoints,
    NoIntensities,
    BadTotals,
    MassScale,
    IntensityScale,
    IntensityOffset,
    MissingTimes,
    BadTimes,
    RestartingTimes,
    FallingTimes,
    EqualTimes,
    TimeGap,
    UnevenTimes,
    MassFormat,
    IntensityFormat,
    Count
};

struct MsFinding {
    qint64 count = 0;
    qint64 first = -1; // a scan or a position

    void add(qint64 place)
    {
        if (count++ == 0)
            first = place;
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

// What is gathered of an open file.
struct MsTally {
    bool knows_globals = false;
    MsRawGlobalRecord raw; // its numbers, as ms_read_global returned them; its texts belong to others
    bool knows_scans = false;
    MsFindings scans; // what the numbers of all scans say; see ms_look_at_scans
};

// Whether a number is the one that netCDF stores where nothing was written.
bool ms_is_fill(nc_type type, double number);

// Reads where the points of all scans lie and when they were taken, once for a file, and takes note of
// what can't be right.
void ms_look_at_scans(MsFileState &file);

#endif // DOUBTS_P_H
