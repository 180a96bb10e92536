#include "masspositions.h"

#include <algorithm>

namespace {

constexpr qint32 mostKeys = 1 << 20; // two decimals up to a mass of 10,485
constexpr quint16 unknown = 65535;   // no table is as long

} // namespace

void MassPositions::lay(const qint32 *keys, const float *table, std::size_t count)
{
    clear();
    if (count == 0)
        return;
    positions.resize(std::size_t(std::clamp(keys[count - 1], -1, mostKeys - 1) + 1), unknown);
    masses.assign(table, table + count);
    for (std::size_t i = 0; i < count; ++i) {
        // Far out neighbouring keys can have one mass; which of its positions counts is up to the host.
        const bool isDouble =
            (i > 0 && table[i - 1] == table[i]) || (i + 1 < count && table[i + 1] == table[i]);
        if (quint32(keys[i]) < positions.size() && !isDouble)
            positions[quint32(keys[i])] = quint16(i);
    }
}

void MassPositions::clear()
{
    positions.clear();
    masses.clear();
}
