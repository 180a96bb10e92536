// The table of masses of a run, or its total-ion trace.

#include "importaiams.h"

#include "dvheader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

// What the 16-bit positions of a table can reach.
constexpr std::size_t mostMasses = 65535;

} // namespace

unsigned short ImportAiaMs::importMassTable(float **table)
{
    *table = nullptr;
    releaseTotalIon(); // of an earlier run on this object
    QSet<qint32> census;
    qint32 decimals = 2;
    ms_read_mass_census(fileId, census, &decimals, raw.mass_scale_factor);
    massFactor = std::pow(10.0, decimals);
    massPositions.clear();
    if (census.size() < 2) {
        importTotalIon();
        return 0;
    }

    std::vector<qint32> keys(census.cbegin(), census.cend());
    std::sort(keys.begin(), keys.end());
    // A census that gave up a decimal without merging any masses can be longer. Masses beyond the table
    // are then unknown masses.
    const std::size_t count = std::min(keys.size(), mostMasses);
    std::unique_ptr<float[]> masses(new float[count]);
    for (std::size_t i = 0; i < count; ++i)
        masses[i] = tableMass(keys[i], massFactor);
    massPositions.lay(keys.data(), masses.get(), count);
    *table = masses.release();

    header->setNbBitsAbund(28);
    header->setDetectorType(header->getModulation() > 0.0f ? 2048 : 512);
    return static_cast<unsigned short>(count);
}

void ImportAiaMs::importTotalIon()
{
    header->setNbBitsAbund(32);
    if (ms_read_total_intensity(fileId, raw.scan_count, &ticValues, &ticTimes) == -1)
        return;
    header->setCoeffAbund(0);
    header->setDetectorType(header->getModulation() > 0.0f ? 1792 : 256);
}
