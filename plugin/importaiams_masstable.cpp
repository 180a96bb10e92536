// The table of masses of a run, or its total-ion trace.

#include "importaiams.h"

#include "dvheader.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

namespace {

// A table has 16-bit positions.
constexpr std::size_t mostMasses = 65535;

} // namespace

unsigned short ImportAiaMs::importMassTable(float **table)
{
    *table = nullptr;
    releaseTotalIon(); // of an earlier run on this object
    beginDoubts();
    QSet<qint32> census;
    qint32 decimals = 2;
    ms_read_mass_census(fileId, census, &decimals, raw.mass_scale_factor);
    massFactor = std::pow(10.0, decimals);
    massPositions.clear();
    if (census.size() < 2) {
        importTotalIon();
        tellDoubts(DoubtStage::AllRead); // no scan is read any more
        return 0;
    }

    std::vector<qint32> keys(census.cbegin(), census.cend());
    std::sort(keys.begin(), keys.end());
    // The census can be longer, where giving up a decimal merged no masses. The table lacks the masses
    // beyond its end then.
    const std::size_t count = std::min(keys.size(), mostMasses);
    std::unique_ptr<float[]> masses(new float[count]);
    for (std::size_t i = 0; i < count; ++i)
        masses[i] = tableMass(keys[i], massFactor);
    massPositions.remember(keys.data(), masses.get(), count);

    header->setNbBitsAbund(28);
    header->setDetectorType(header->getModulation() > 0.0f ? 2048 : 512);
    tellDoubts(DoubtStage::TableMade);
    *table = masses.release();
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
