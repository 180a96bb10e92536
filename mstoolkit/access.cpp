// The ways in which the walkers reach netCDF.

#include "access_p.h"

#include "missingdata_p.h"

#include "messageloggerinterface.h"

#include <limits>

namespace
{

bool is_number(nc_type type)
{
    return type >= NC_BYTE && type <= NC_UINT64 && type != NC_CHAR;
}

int fetch_as(int ncid, int varid, const std::size_t *index, qint32 type, void *target)
{
    switch (type) {
    case NC_SHORT:
        return nc_get_var1_short(ncid, varid, index, static_cast<qint16 *>(target));
    case NC_LONG:
        return nc_get_var1_int(ncid, varid, index, static_cast<qint32 *>(target));
    case NC_FLOAT:
        return nc_get_var1_float(ncid, varid, index, static_cast<float *>(target));
    case NC_DOUBLE:
        return nc_get_var1_double(ncid, varid, index, static_cast<double *>(target));
    default:
        return NC_EBADTYPE;
    }
}

int fetch_stretch_as(int ncid, int varid, const std::size_t *start, const std::size_t *count, qint32 type,
                     void *target)
{
    switch (type) {
    case NC_SHORT:
        return nc_get_vara_short(ncid, varid, start, count, static_cast<qint16 *>(target));
    case NC_LONG:
        return nc_get_vara_int(ncid, varid, start, count, static_cast<qint32 *>(target));
    case NC_FLOAT:
        return nc_get_vara_float(ncid, varid, start, count, static_cast<float *>(target));
    case NC_DOUBLE:
        return nc_get_vara_double(ncid, varid, start, count, static_cast<double *>(target));
    default:
        return NC_EBADTYPE;
    }
}

int read_number_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, void *record)
{
    void *field = &ms_field<char>(record, row.field);
    switch (ms_fetch_number(file.ncid, ms_variable(file, row), std::size_t(index), row.nc_type, field)) {
    case MsFetch::Read:
        return 0;
    case MsFetch::None:
        ms_set_missing(row.nc_type, field, 0);
        return 0;
    default:
        return -1;
    }
}

} // namespace

bool ms_inquire_shape(int ncid, int varid, MsShape *shape)
{
    if (ncvarinq(ncid, varid, nullptr, &shape->type, &shape->rank, nullptr, nullptr) == -1)
        return false;
    if (shape->rank < 1 || shape->rank > 2)
        return true;

    int dimensions[2];
    if (nc_inq_vardimid(ncid, varid, dimensions) != NC_NOERR)
        return false;
    for (int i = 0; i < shape->rank; ++i) {
        if (nc_inq_dimlen(ncid, dimensions[i], &shape->length[i]) != NC_NOERR)
            return false;
    }
    return true;
}

MsPresence ms_check_variable(const MsFileRecord &file, const MsVariableRow &row)
{
    MsShape shape;
    if (!ms_inquire_shape(file.ncid, ms_variable(file, row), &shape))
        return MsPresence::Absent;

    if (shape.type != row.nc_type) {
        MessageLoggerInterface::Warning(
            QStringLiteral("Data type mismatch while loading <b>%1</b>").arg(QLatin1String(row.name)),
            nullptr);
    }
    if (shape.rank != row.ndims) {
        MessageLoggerInterface::Error(
            QStringLiteral("Size type mismatch while loading <b>%1</b>").arg(QLatin1String(row.name)),
            nullptr);
        return MsPresence::WrongRank;
    }
    return MsPresence::Present;
}

MsFetch ms_fetch_number(int ncid, int varid, std::size_t index, qint32 type, void *target)
{
    nc_type stored = NC_NAT;
    if (nc_inq_vartype(ncid, varid, &stored) != NC_NOERR)
        return MsFetch::Failed;
    if (!is_number(stored))
        return MsFetch::None;

    const int status = fetch_as(ncid, varid, &index, type, target);
    if (status != NC_NOERR && status != NC_ERANGE)
        return MsFetch::Failed;
    const std::size_t one = 1;
    return status == NC_NOERR && ms_is_stored(ncid, varid, 1, &index, &one) ? MsFetch::Read
                                                                            : MsFetch::None;
}

int ms_read_counter(const MsFileRecord &file, int slot, qint32 index, qint32 *value)
{
    MsShape shape;
    const int varid = file.variables[slot];
    if (!ms_inquire_shape(file.ncid, varid, &shape) || shape.rank != 1)
        return -1;
    return ms_fetch_number(file.ncid, varid, std::size_t(index), NC_LONG, value) == MsFetch::Read ? 0
                                                                                                  : -1;
}

MsBlock<void> ms_read_vector(int ncid, int varid, qint32 type, qint64 start, qint64 count)
{
    MsShape shape;
    if (!ms_inquire_shape(ncid, varid, &shape) || shape.rank != 1 || !is_number(shape.type))
        return nullptr;
    if (start < 0 || count < 1 || quint64(start) + quint64(count) > shape.length[0]
        || count > std::numeric_limits<quint32>::max())
        return nullptr;

    const std::size_t from = std::size_t(start);
    const std::size_t size = std::size_t(count);
    if (!ms_is_stored(ncid, varid, 1, &from, &size))
        return nullptr;
    MsBlock<void> vector(ms_alloc_array(quint32(count), type));
    if (!vector)
        return nullptr;
    const int status = fetch_stretch_as(ncid, varid, &from, &size, type, vector.get());
    return status == NC_NOERR ? std::move(vector) : nullptr;
}

MsBlock<void> ms_read_whole(const MsFileRecord &file, int slot, qint32 type, qint32 count, qint32 wanted)
{
    MsShape shape;
    const int varid = file.variables[slot];
    if (!ms_inquire_shape(file.ncid, varid, &shape) || shape.rank != 1
        || shape.length[0] != std::size_t(count))
        return nullptr;
    return ms_read_vector(file.ncid, varid, type, 0, wanted);
}

int ms_read_line(const MsFileRecord &file, int slot, qint32 line, qint32 width, double *target)
{
    MsShape shape;
    const int varid = file.variables[slot];
    if (!ms_inquire_shape(file.ncid, varid, &shape) || shape.rank != 2 || !is_number(shape.type))
        return -1;
    const std::size_t start[2] = {std::size_t(line), 0};
    const std::size_t count[2] = {1, std::size_t(width)};
    if (start[0] >= shape.length[0] || count[1] < 1 || count[1] > shape.length[1]
        || !ms_is_stored(file.ncid, varid, 2, start, count))
        return -1;
    return nc_get_vara_double(file.ncid, varid, start, count, target) == NC_NOERR ? 0 : -1;
}

int ms_read_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, void *record)
{
    if (index < 0)
        return -1;

    const MsPresence presence = ms_check_variable(file, row);
    if (presence == MsPresence::WrongRank)
        return -1;
    if (row.nc_type == NC_CHAR) {
        ms_field<char *>(record, row.field) = ms_read_string_variable(
            file.ncid, ms_variable(file, row), index, -1, file.dimensions[row.dims[1]].size);
        return 0;
    }
    if (presence == MsPresence::Present)
        return read_number_row(file, row, index, record);
    ms_set_missing(row.nc_type, &ms_field<char>(record, row.field), 0);
    return 0;
}

int ms_write_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, const void *record)
{
    if (index < 0)
        return -1;

    const int varid = ms_variable(file, row);
    if (row.nc_type == NC_CHAR) {
        return ms_write_string_variable(file.ncid, varid, index, -1, file.dimensions[row.dims[1]].size,
                                        ms_field<char *>(record, row.field));
    }
    const long at = index;
    return ncvarput1(file.ncid, varid, &at, &ms_field<char>(record, row.field)) == -1 ? -1 : 0;
}

void ms_clear_row(char release, const MsVariableRow &row, void *record)
{
    if (row.nc_type != NC_CHAR) {
        ms_set_missing(row.nc_type, &ms_field<char>(record, row.field), 0);
        return;
    }
    char *&text = ms_field<char *>(record, row.field);
    if (release)
        ms_free(text);
    text = nullptr;
}
