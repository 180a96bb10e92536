// Private to the toolkit: a look at the header of a file of the classic kinds (CDF-1, CDF-2, CDF-5)
// before the netCDF library gets it. The library trusts the header's counts, and reads zeros where a file
// ends before its header says. The grammar is that of the classic format in the library's documentation.
#ifndef CLASSICHEADER_P_H
#define CLASSICHEADER_P_H

#include "classicbytes_p.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

// Sums and products that stop at the largest length a file can have.
constexpr quint64 ms_largest = quint64(std::numeric_limits<qint64>::max());

constexpr quint64 ms_sum(quint64 a, quint64 b)
{
    return a > ms_largest - std::min(b, ms_largest) ? ms_largest : a + b;
}

constexpr quint64 ms_product(quint64 a, quint64 b)
{
    return a != 0 && b > ms_largest / a ? ms_largest : a * b;
}

// A sum over what a header says, the same for the same dimensions, variables and attributes.
class MsHeaderSum
{
public:
    void add(quint64 number) { add(reinterpret_cast<const char *>(&number), sizeof(number)); }
    void add(const char *bytes, std::size_t size);
    QByteArray result() const { return hash.result(); }

private:
    QCryptographicHash hash{QCryptographicHash::Md5};
};

// Where the elements of one variable lie.
struct MsVariableExtent {
    int type = 0; // NC_BYTE to NC_UINT64
    quint64 begin = 0;
    quint64 width = 0;  // bytes of an element
    quint64 stride = 0; // bytes from one step along the first dimension to the next
    quint64 lead = 0;   // bytes of its record before the variable; 0 outside records
};

struct MsClassicLayout {
    std::vector<MsVariableExtent> variables; // by netCDF id
    quint64 needed = 0;                      // bytes that the file has to have
    quint64 length = 0;         // bytes that it has, of whatever kind it is; 0 if that can't be told
    quint64 records = 0;        // steps along the unlimited dimension
    bool counts_records = true; // false: its writer left them to be found from the length
    std::vector<int> unlimited; // dimensions of length 0 by netCDF id; a damaged header may have several
    quint64 header = 0;         // bytes of the header
    quint64 record_begin = 0;   // where the first record lies,
    quint64 record_size = 0;    // and the bytes of each; 0 for a file without records
    QByteArray sum; // over what the header says; null where the library can't say the same by name

    // Bytes up to the end of all that the header tells of.
    quint64 told() const { return std::max(header, needed); }

    bool is_unlimited(int dimension) const
    {
        return std::find(unlimited.begin(), unlimited.end(), dimension) != unlimited.end();
    }

    // Whole records behind those that the header counts.
    quint64 records_behind() const
    {
        const quint64 end = ms_sum(record_begin, ms_product(records, record_size));
        return record_size == 0 || !counts_records || length <= end ? 0 : (length - end) / record_size;
    }
};

enum class MsHeader {
    NotClassic, // another kind of file: netCDF's to judge
    Sound,      // safe to hand to netCDF, though the data may be cut off
    Damaged,    // counts, names, lengths or places that can't be right
    Refused     // the system couldn't read it
};

// Looks at the header of a file that is open.
MsHeader ms_inspect_header(MsClassicBytes &file, MsClassicLayout *layout);

// Returns whether the netCDF library, which has opened the same file as `ncid`, found the dimensions,
// variables and attributes of the layout in its header. It takes zeros for what its own reads lack.
bool ms_confirm_header(int ncid, const MsClassicLayout &layout);

#endif // CLASSICHEADER_P_H
