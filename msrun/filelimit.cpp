#include "msrunlimit.h"

#include "msfile.h"

#include <algorithm>

namespace {

// A real file's scans overlap here and there; none uses its points nearly as often as this.
constexpr qint64 mostUses = 100;

// What any file may have, whatever its length.
constexpr qint64 leastPoints = 1 << 24;
constexpr qint64 leastEmpty = 1 << 20;

// A sparse file can be so long that the numbers below would overflow.
constexpr qint64 longest = qint64(1) << 50;

bool isClassic(const MsFile &file)
{
    int kind = 0;
    return nc_inq_format(file.id(), &kind) == NC_NOERR
        && (kind == NC_FORMAT_CLASSIC || kind == NC_FORMAT_64BIT_OFFSET || kind == NC_FORMAT_64BIT_DATA);
}

// Returns how many points a classic file can hold. A header can claim any number, but each takes a byte.
qint64 pointsOf(const MsFile &file, qint64 bytes)
{
    const MsDimension &points = file.record()->dimensions[MsDim_point_number];
    return points.id == -1 ? bytes : std::min<qint64>(points.size, bytes);
}

} // namespace

qint64 mostPointsOf(const MsFile &file, qint64 length)
{
    const qint64 bytes = std::min(length, longest);
    // A file of a newer kind may be packed.
    return leastPoints + (isClassic(file) ? mostUses * pointsOf(file, bytes) : MsTightestPacking * bytes);
}

qint64 mostEmptyScansOf(const MsFile &file, qint64 length)
{
    const qint64 bytes = std::min(length, longest);
    // A scan takes a byte, too: a file that has more scans than this only claims them.
    return std::max(leastEmpty, isClassic(file) ? bytes : MsTightestPacking * bytes);
}
