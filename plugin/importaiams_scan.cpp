// One scan: its time, its total abundance, its abundances at positions of the table.

#include "importaiams.h"

#include "dvheader.h"
#include "msrecords.h"
#include "tmath.h"

#include <algorithm>

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
};

// Gives the sum of all intensities, those of unknown masses, too. The numbers that the loops need are
// copied from the object once.
template <class Mass, class Intensity>
double ImportAiaMs::placePoints(const Mass *masses, const Intensity *intensities, int count,
                                const Placement &place)
{
    const double massScale = raw.mass_scale_factor;
    const double factor = massFactor;
    const double scale = raw.intensity_scale_factor;
    const double offset = raw.intensity_add_offset;
    double total = 0.0;
    for (int i = 0; i < count; ++i) {
        const double mass = double(masses[i]) * massScale;
        const double intensity = double(intensities[i]) * scale + offset;
        const int key = TMath::round(mass * factor);
        int position = massPositions.find(key, place.table, place.tableSize);
        bool found = position != -1;
        if (!found)
            position = findTablePosition(tableMass(key, factor), place.table, place.tableSize, &found);
        place.abundances[i] = found ? float(intensity) : 0.0f;
        place.positions[i] = found ? static_cast<unsigned short>(position) : 0;
        total += intensity;
    }
    return total;
}

double ImportAiaMs::importScan(int scan, double *time, int tableSize, float *table, int *pointCount,
                               float *abundances, unsigned short *positions)
{
    *pointCount = 0;
    const double interpolated = scan * samplingInterval;
    if (tableSize < 1) {
        *time = ticTimes ? ticTimes[scan] / timeDivisor : interpolated + header->getDelay();
        return ticValues ? ticValues[scan] : 0.0;
    }

    const MsScan record(fileId, scan);
    // A file without masses makes no table, but the caller may bring one from elsewhere.
    const bool hasMasses = record.point_count < 1 || record.mass_values;
    if (!record.isRead() || !hasMasses || record.point_count > mostPoints) {
        *time = interpolated + header->getDelay();
        return 0.0;
    }

    *pointCount = std::max(record.point_count, 0);
    double total = 0.0;
    const Placement place = {table, tableSize, abundances, positions};
    // In the stored formats: the attributes that name a format needn't agree with the data.
    record.masses().visit([&](const auto *masses, qint32 count) {
        record.intensities().visit([&](const auto *intensities, qint32) {
            total = placePoints(masses, intensities, count, place);
        });
    });

    if (header->getModulation() > 0.0f)
        *time = interpolated;
    else if (record.scan_acquisition_time == MsMissingDouble)
        *time = interpolated + header->getDelay();
    else
        *time = record.scan_acquisition_time / timeDivisor;
    return total;
}
