// The positions of masses in a run's table, by their census keys.
//
// Each point of a scan is looked up. A binary search costs more than all else that a point needs, because
// the processor mispredicts each of its steps. Instead, the key of a point says where its mass was when
// the table was made. The table that the caller passes may be another one, so a position counts only if
// that table has the mass there.
#ifndef MASSPOSITIONS_H
#define MASSPOSITIONS_H

#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <vector>

class MassPositions
{
public:
    // Remembers a table of `count` masses, at most 65535, in ascending order, and their keys.
    void remember(const qint32 *keys, const float *table, std::size_t count);

    void clear();

    // Finds positions in one table. It holds all that this needs, for the length of a loop over points.
    class Finder
    {
    public:
        // Returns the position of a key's mass; -1 if it isn't known.
        int find(qint32 key) const
        {
            if (quint32(key) >= keyCount)
                return -1;
            const int position = positions[quint32(key)];
            return position < size && table[position] == masses[position] ? position : -1;
        }

    private:
        friend class MassPositions;
        Finder() = default;

        const quint16 *positions;
        std::size_t keyCount;
        const float *masses;
        const float *table;
        int size; // masses that both tables have
    };

    // Returns a finder for a table of `size` masses. Both have to outlive it.
    Finder finder(const float *table, int size) const
    {
        Finder finder;
        finder.positions = positions.data();
        finder.keyCount = positions.size();
        finder.masses = masses.data();
        finder.table = table;
        finder.size = std::min(size, int(masses.size()));
        return finder;
    }

private:
    std::vector<quint16> positions; // by key
    std::vector<float> masses;      // of the table as it was made
};

#endif // MASSPOSITIONS_H
