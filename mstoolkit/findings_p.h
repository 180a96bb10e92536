// Private to the toolkit: the kinds of doubt, and how often and where each was found.
#ifndef FINDINGS_P_H
#define FINDINGS_P_H

#include <QtGlobal>

#include <array>
#include <cstddef>

// The kinds of doubt, in the order in which they are listed. doubttexts.cpp has the code and the sentence
// of each.
enum class MsDoubtKind {
    CutOff,
    Unfinished,
    TrailingBytes,
    ReadFailed,
    ChangedFile,
    DashedNames,
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
    MissingMasses,
    NoIntensities,
    BadTotals,
    MassScale,
    MassOffset,
    IntensityScale,
    IntensityOffset,
    MergedMasses,
    SingleMass,
    WrongTotals,
    BadMasses,
    FillMasses,
    NegativeMasses,
    ZeroMasses,
    OddMasses,
    EqualMasses,
    UnorderedMasses,
    BadIntensities,
    FillIntensities,
    UnplacedPoints,
    MissingTimes,
    BadTimes,
    NegativeTimes,
    ZeroTime,
    RestartingTimes,
    FallingTimes,
    EqualTimes,
    TimeGap,
    OddTimes,
    UnevenTimes,
    MassFormat,
    IntensityFormat,
    TimeUnit,
    TimeRange,
    AcquisitionDate,
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

    void add(const MsFinding &other)
    {
        if (count == 0 || (other.count > 0 && other.first < first))
            first = other.first;
        count += other.count;
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

#endif // FINDINGS_P_H
