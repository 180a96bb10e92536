#include "masspositions.h"

#include <algorithm>
#include <cstddef>

namespace {

// Enough for masses up to 10,485 with two decimals. Much larger masses of neighbouring keys can be the
// same float; the host's own look-up then decides which position counts.
constexpr qint64 mostKeys = 1 << 20;

} // namespace

void MassPositions::remember(const qint32 *keys, const float *table, std::size_t count)
{
    clear();
    if (count == 0)
        return;
    const qint64 keyCount = std::clamp<qint64>(qint64(keys[count - 1]) + 1, 0, mostKeys);
    positions.assign(std::size_t(keyCount) + 1, unknown);
    masses.assign(table, table + count);
    for (std::size_t i = 0; i < count; ++i) {
        if (quint32(keys[i]) < keyCount)
            positions[quint32(keys[i])] = quint16(i);
    }
}

void MassPositions::clear()
{
    positions.assign(1, unknown);
    masses.clear();
}
