// One scan: its time, its total abundance, its abundances at positions of the table.

#include "importaiams.h"

#include "dvheader.h"
#include "masskeys_p.h"
#include "msdoubts.h"
#include "msrecords.h"
#include "orderedsum.h"
#include "widevectors_p.h"

#include <QString>

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

// Points for which the caller's arrays have room; the host's own headers have no name for it.
constexpr int mostPoints = 1 << 24;

} // namespace

// The table to place points in, and where they go.
struct ImportAiaMs::Placement {
    float *table;
    int tableSize;
    float *abundances;
    unsigned short *positions;
    qint64 unplaced = 0; // points whose masses the table lacks
};

// Returns the sum of all intensities, also of those whose masses the table lacks. Works in blocks, whose
// keys and abundances are computed several at a time.
template <class Positions, class Mass, class Intensity>
double ImportAiaMs::placePoints(const Positions &known, const Mass *masses, const Intensity *intensities,
                                int count, Placement &place)
{
    MsMassKeys::Block keys;
    std::array<double, MsMassKeys::block_size> values;
    const MsMassKeys massKeys(raw.mass_scale_factor, massFactor);
    const double scale = raw.intensity_scale_factor;
    const double offset = raw.intensity_add_offset;
    const bool isPlain = scale == 1.0 && offset == 0.0;
    const auto zero = float(offset); // or a negative one, which keeps a negative intensity of zero
    OrderedSum total;
    for (int first = 0; first < count; first += MsMassKeys::block_size) {
        const int size = std::min(MsMassKeys::block_size, count - first);
        const quint32 largest = massKeys.compute(masses + first, size, &keys);

        float *const abundances = place.abundances + first;
        if (isPlain && total.addWhole(intensities + first, size)) {
            for (int i = 0; i < size; ++i)
                abundances[i] = float(intensities[first + i]) + zero;
        } else {
            for (int i = 0; i < size; ++i) {
                values[std::size_t(i)] = double(intensities[first + i]) * scale + offset;
                abundances[i] = float(values[std::size_t(i)]);
            }
            total.add(values.data(), size);
        }

        unsigned short *const positions = place.positions + first;
        int unknown = known.find(keys.data(), size, largest, positions);
        for (int i = 0; unknown > 0 && i < size; ++i) {
            if (positions[i] != MassPositions::unknown)
                continue;
            --unknown;
            bool found = false;
            const float mass = tableMass(keys[std::size_t(i)], massFactor);
            const int position = findTablePosition(mass, place.table, place.tableSize, &found);
            positions[i] = found ? static_cast<unsigned short>(position) : 0;
            if (!found) {
                abundances[i] = 0.0f;
                ++place.unplaced;
            }
        }
    }
    return total.total();
}

// Why a scan of a trace has no total; null for one that has.
QString ImportAiaMs::traceFailure(int scan) const
{
    if (!ticValues)
        return QStringLiteral(
            "the file has neither masses nor a total intensity and a time for each scan");
    return ticValues[scan] == MsMissingDouble ? QStringLiteral("its total intensity is missing")
                                              : QString();
}

// Why a scan's points can't be had.
QString ImportAiaMs::scanFailure(const MsScan &scan) const
{
    if (!scan.isRead())
        return ms_scan_failure(fileId);
    return scan.mass_values ? QStringLiteral("it has more points than a scan can have here")
                            : QStringLiteral("the file has no masses");
}

double ImportAiaMs::importScan(int scan, double *time, int tableSize, float *table, int *pointCount,
                               float *abundances, unsigned short *positions)
{
    *pointCount = 0;
    const double interpolated = scan * samplingInterval;
    if (tableSize < 1) {
        *time = ticTimes ? ticTimes[scan] / timeDivisor : interpolated + header->getDelay();
        noteScan(traceFailure(scan));
        return ticValues ? ticValues[scan] : 0.0;
    }

    const MsScan record(fileId, scan);
    // A file without masses has no table, but the caller may bring one from elsewhere.
    const bool hasMasses = record.point_count < 1 || record.mass_values;
    if (!record.isRead() || !hasMasses || record.point_count > mostPoints) {
        *time = interpolated + header->getDelay();
        noteScan(scanFailure(record));
        return 0.0;
    }

    *pointCount = std::max(record.point_count, 0);
    double total = 0.0;
    Placement place = {table, tableSize, abundances, positions};
    // The formats are those of the stored numbers: the attributes that name a format may say another.
    record.masses().visit([&](const auto *masses, qint32 count) {
        record.intensities().visit([&](const auto *intensities, qint32) {
            massPositions.visit(table, tableSize, count, [&](const auto &known) {
                ms_with_widest_vectors(
                    [&](auto) { total = placePoints(known, masses, intensities, count, place); });
            });
        });
    });

    if (place.unplaced > 0 && unplacedPoints == 0)
        firstUnplacedScan = scan;
    unplacedPoints += place.unplaced;
    noteScan(QString());

    if (header->getModulation() > 0.0f)
        *time = interpolated;
    else if (record.scan_acquisition_time == MsMissingDouble)
        *time = interpolated + header->getDelay();
    else
        *time = record.scan_acquisition_time / timeDivisor;
    return total;
}
