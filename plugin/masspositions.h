// The positions of masses in a run's table, by their census keys.
//
// Each point of a scan is looked up. A binary search costs more than all else that a point needs, because
// the processor mispredicts each of its steps. Instead, the key of a point says where its mass was when
// the table was made. The table that the caller passes may be another one, so a position counts only if
// that table has the mass there.
#ifndef MASSPOSITIONS_H
#define MASSPOSITIONS_H

#include "masskeys_p.h"

#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

class MassPositions
{
public:
    // Stands for no position. No table has so many masses.
    static constexpr quint16 unknown = 65535;

    // Remembers a table of `count` masses, at most 65535, in ascending order, and their keys.
    void remember(const qint32 *keys, const float *table, std::size_t count);

    void clear();

    // Finds positions in a table that is known to be the remembered one.
    class Known
    {
    public:
        // Returns the position of a key's mass, or unknown.
        quint16 find(qint32 key) const { return positions[std::min(quint32(key), keyCount)]; }

        // The same for `count` keys, up to a block, of which MsMassKeys found the largest. Returns how
        // many are unknown.
        int find(const qint32 *keys, int count, quint32 largest, quint16 *found) const
        {
            // A loop that needn't look at each key costs half as much, and less where it has several of
            // them in one step.
            if (largest < keyCount) {
                constexpr int atOnce = 4;
                int i = 0;
                for (; i + atOnce <= count; i += atOnce) {
                    for (int k = i; k < i + atOnce; ++k)
                        found[k] = positions[quint32(keys[k])];
                }
                for (; i < count; ++i)
                    found[i] = positions[quint32(keys[i])];
            } else {
                for (int i = 0; i < count; ++i)
                    found[i] = find(keys[i]);
            }
            return countUnknown(found, count);
        }

    private:
        friend class MassPositions;
        explicit Known(const MassPositions &of)
            : positions(of.positions.data()), keyCount(quint32(of.positions.size()) - 1)
        {
        }

        const quint16 *positions;
        quint32 keyCount;
    };

    // Finds positions in any table, of which each has to be compared.
    class Compared
    {
    public:
        quint16 find(qint32 key) const
        {
            const quint16 position = known.find(key);
            return position < size && table[position] == masses[position] ? position : unknown;
        }

        int find(const qint32 *keys, int count, quint32, quint16 *found) const
        {
            int unknowns = 0;
            for (int i = 0; i < count; ++i) {
                found[i] = find(keys[i]);
                unknowns += found[i] == unknown ? 1 : 0;
            }
            return unknowns;
        }

    private:
        friend class MassPositions;
        Compared(const MassPositions &of, const float *other, int otherSize)
            : known(of), masses(of.masses.data()), table(other),
              size(std::min(otherSize, int(of.masses.size())))
        {
        }

        Known known;
        const float *masses;
        const float *table;
        int size; // masses that both tables have
    };

    // Calls `use` once, with what finds positions in a table of `size` masses, which has to outlive the
    // call. Where the table is short beside the `points` to be found, it is faster to compare it once as
    // a whole.
    template <class Use> void visit(const float *table, int size, int points, Use &&use) const
    {
        const bool isShort = std::size_t(size) == masses.size() && size / 8 <= points;
        if (isShort && std::memcmp(table, masses.data(), masses.size() * sizeof(float)) == 0)
            use(Known(*this));
        else
            use(Compared(*this, table, size));
    }

private:
    // A narrow sum takes fewer steps, and is large enough for a block.
    static int countUnknown(const quint16 *found, int count)
    {
        static_assert(MsMassKeys::block_size < unknown);
        quint16 result = 0;
        for (int i = 0; i < count; ++i)
            result = quint16(result + (found[i] == unknown ? 1 : 0));
        return result;
    }

    // By key, from 0 on; the last one stands for all keys beyond, and is unknown.
    std::vector<quint16> positions = {unknown};
    std::vector<float> masses; // of the table as it was made
};

#endif // MASSPOSITIONS_H
