// Where the masses of a run's table stand, by their census keys.
//
// A scan looks each of its points up, and a binary search mispredicts at each step, so that it costs more
// than all else that a point needs. The key of a point says where its mass was when the table was made.
// This is believed only after a look at the table itself, so that it can't be wrong, whatever ascending
// table the caller hands in.
#ifndef MASSPOSITIONS_H
#define MASSPOSITIONS_H

#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <vector>

class MassPositions
{
public:
    // Takes note of a table of `count` masses, up to 65535, in ascending order, with the keys of its
    // masses.
    void lay(const qint32 *keys, const float *table, std::size_t count);

    void clear();

    // Finds positions in one table, with all that it needs at hand: for the length of a loop over points.
    class Finder
    {
    public:
        // Returns the position of a key's mass. -1 if it isn't known.
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
