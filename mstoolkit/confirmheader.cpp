// What the netCDF library made of the header of a classic file, held against the header itself.

#include "classicheader_p.h"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <netcdf.h>
#include <vector>

namespace {

// Puts what the library has into a sum, in the order of a header. Once a call fails it stays failed.
class LibrarySum
{
public:
    LibrarySum(int id, const MsClassicLayout &found) : ncid(id), layout(found) { }

    // Null if a call failed.
    QByteArray make()
    {
        int dimensions = 0;
        int variables = 0;
        int attributes = 0;
        int unlimited = -1;
        check(nc_inq(ncid, &dimensions, &variables, &attributes, &unlimited));
        addRecords(unlimited);
        sum.add(quint64(dimensions));
        for (int i = 0; good && i < dimensions; ++i)
            addDimension(i, i == unlimited);
        addAttributes(NC_GLOBAL, attributes);
        sum.add(quint64(variables));
        for (int i = 0; good && i < variables; ++i)
            addVariable(i);
        return good ? sum.result() : QByteArray();
    }

private:
    void check(int status) { good = good && status == NC_NOERR; }

    void addName()
    {
        const std::size_t length = std::strlen(name.data());
        sum.add(quint64(length));
        sum.add(name.data(), length);
    }

    void addRecords(int unlimited)
    {
        std::size_t records = std::size_t(layout.records);
        if (unlimited != -1)
            check(nc_inq_dimlen(ncid, unlimited, &records));
        sum.add(layout.counts_records ? records : 0);
    }

    void addDimension(int dimension, bool isUnlimited)
    {
        std::size_t length = 0;
        check(nc_inq_dim(ncid, dimension, name.data(), &length));
        addName();
        sum.add(isUnlimited ? 0 : length);
    }

    void addAttributes(int variable, int count)
    {
        sum.add(quint64(count));
        for (int i = 0; good && i < count; ++i) {
            nc_type type = NC_NAT;
            std::size_t length = 0;
            std::size_t width = 0;
            check(nc_inq_attname(ncid, variable, i, name.data()));
            check(nc_inq_att(ncid, variable, name.data(), &type, &length));
            check(nc_inq_type(ncid, type, nullptr, &width));
            if (!good)
                return;
            addName();
            sum.add(quint64(type));
            std::vector<char> numbers(length * width + 1);
            check(nc_get_att(ncid, variable, name.data(), numbers.data()));
            turn(numbers.data(), length, width);
            sum.add(quint64(length * width));
            sum.add(numbers.data(), length * width);
        }
    }

    // To the order of bytes of the file.
    static void turn(char *numbers, std::size_t count, std::size_t width)
    {
        for (std::size_t i = 0; Q_BYTE_ORDER == Q_LITTLE_ENDIAN && i < count; ++i)
            std::reverse(numbers + i * width, numbers + (i + 1) * width);
    }

    void addVariable(int variable)
    {
        nc_type type = NC_NAT;
        int rank = 0;
        int attributes = 0;
        check(nc_inq_var(ncid, variable, name.data(), nullptr, &rank, nullptr, nullptr));
        std::vector<int> dimensions(std::size_t(rank) + 1);
        check(nc_inq_var(ncid, variable, nullptr, &type, nullptr, dimensions.data(), &attributes));
        if (!good)
            return;
        addName();
        sum.add(quint64(rank));
        for (int i = 0; i < rank; ++i)
            sum.add(quint64(dimensions[std::size_t(i)]));
        addAttributes(variable, attributes);
        sum.add(quint64(type));
    }

    const int ncid;
    const MsClassicLayout &layout;
    std::vector<char> name = std::vector<char>(1 << 16); // far more than the longest in the header
    MsHeaderSum sum;
    bool good = true;
};

} // namespace

bool ms_confirm_header(int ncid, const MsClassicLayout &layout)
{
    return layout.sum.isNull() || LibrarySum(ncid, layout).make() == layout.sum;
}
