// Private to the toolkit: one variable of the template in one open file.
#ifndef COLUMN_P_H
#define COLUMN_P_H

#include "filedata_p.h"

#include <cstddef>
#include <cstring>
#include <vector>

// Remembers shape and elements of a file that is only read. The values of neighbouring scans lie side by
// side in a variable, those of one scan a whole variable apart: to read each by itself costs several
// times what the scan's points do. So the shape is asked for once, and numbers over scan_number are read
// in stretches of many scans. Points are read in stretches, too: masses and intensities of a scan lie far
// apart. In a file that is written, nothing is remembered.
class MsColumn
{
public:
    MsColumn() = default;
    MsColumn(MsFileData *fileData, int id) : data(fileData), varid(id) { }

    bool is_of(int id) const { return data && varid == id; }

    // Returns type and lengths, which live as long as the column; null where the file has no such
    // variable. Whoever asks for elements has asked for the shape and seen its rank.
    const MsShape *shape();

    // Reads element `index` of a variable of one dimension and converts it to `wanted`, NC_SHORT to
    // NC_DOUBLE. What isn't a number counts as one that no type can hold.
    MsFetch number(std::size_t index, qint32 wanted, void *target);

    // Copies such an element if it was read ahead and is stored as `wanted`; the variable has one
    // dimension then. False otherwise: shape() and number() say more.
    bool take_ahead(std::size_t index, qint32 wanted, void *target) const
    {
        const std::size_t place = index - first; // beyond all sizes where it lies before
        if (type != wanted || found.type != wanted || place >= size)
            return false;
        // Sizes that the compiler knows cost one instruction.
        switch (wanted) {
        case NC_DOUBLE:
            return copy_from<double>(place, target);
        case NC_LONG:
            return copy_from<qint32>(place, target);
        case NC_SHORT:
            return copy_from<qint16>(place, target);
        default:
            return false;
        }
    }

    // Reads `count` elements from `start` on, of a variable of one dimension, as a new array of type
    // `wanted`, NC_SHORT to NC_DOUBLE. Null where the variable hasn't that many, where one of them can't
    // be held, and where they can't be read.
    MsBlock<void> points(qint64 start, qint64 count, qint32 wanted);

    // Reads the first `width` numbers of line `line` of a variable of two dimensions. False where it
    // isn't that large and where they can't be read.
    bool line(std::size_t line, std::size_t width, double *target);

private:
    template <class Number> bool copy_from(std::size_t place, void *target) const
    {
        std::memcpy(target, elements.data() + place * sizeof(Number), sizeof(Number));
        return true;
    }
    bool covers(std::size_t start, std::size_t count, qint32 wanted) const;
    bool read_stretch(std::size_t start, std::size_t most, qint32 wanted);
    bool read_ahead(std::size_t from, std::size_t most, std::size_t start, std::size_t count,
                    qint32 wanted);
    void copy(std::size_t start, std::size_t count, void *target) const;
    bool follows(std::size_t start) const;

    MsFileData *data = nullptr;
    int varid = -1;
    bool inquired = false; // whether the next two hold
    bool present = false;
    MsShape found;
    bool refuses_stretches = false; // one couldn't be read, so each request is read by itself
    qint32 type = NC_NAT;           // of the elements read ahead
    std::size_t first = 0;
    std::size_t size = 0;
    std::size_t next = 0; // of points: behind those last asked for
    std::vector<unsigned char> elements;
};

#endif // COLUMN_P_H
