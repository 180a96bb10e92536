// The ways in which the walkers reach netCDF.

#include "access_p.h"

#include "missingdata_p.h"

#include "messageloggerinterface.h"

#include <limits>

namespace {

int read_number_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, void *record)
{
    void *field = &ms_field<char>(record, row.field);
    switch (ms_fetch_number(file, row.slot, std::size_t(index), row.nc_type, field)) {
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

const MsFileRecord *ms_file_to_read(int ncid)
{
    MsFileState *state = ms_file_state(ncid);
    if (state)
        ms_look_at_length(state);
    return state;
}

MsPresence ms_check_variable(const MsFileRecord &file, const MsVariableRow &row)
{
    MsShape shape;
    if (!ms_inquire_shape(file, row.slot, &shape))
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

int ms_read_counter(const MsFileRecord &file, int slot, qint32 index, qint32 *value)
{
    MsShape shape;
    if (!ms_inquire_shape(file, slot, &shape) || shape.rank != 1)
        return -1;
    return ms_fetch_number(file, slot, std::size_t(index), NC_LONG, value) == MsFetch::Read ? 0 : -1;
}

MsBlock<void> ms_read_vector(const MsFileRecord &file, int slot, qint32 type, qint64 start, qint64 count)
{
    MsShape shape;
    if (!ms_inquire_shape(file, slot, &shape) || shape.rank != 1 || !ms_is_number(shape.type))
        return nullptr;
    if (start < 0 || count < 1 || quint64(start) + quint64(count) > shape.length[0]
        || count > std::numeric_limits<quint32>::max()
        || quint64(count) * ms_type_width(type) > ms_state_of(file).most_bytes)
        return nullptr;

    const std::size_t from = std::size_t(start);
    const std::size_t size = std::size_t(count);
    if (!ms_is_stored(&ms_state_of(file), file.variables[slot], 1, &from, &size))
        return nullptr;
    MsBlock<void> vector(ms_alloc_array(quint32(count), type));
    if (!vector || !ms_fetch_points(file, slot, from, size, type, vector.get()))
        return nullptr;
    return vector;
}

int ms_read_line(const MsFileRecord &file, int slot, qint32 line, qint32 width, double *target)
{
    MsShape shape;
    if (!ms_inquire_shape(file, slot, &shape) || shape.rank != 2 || !ms_is_number(shape.type))
        return -1;
    const std::size_t start[2] = {std::size_t(line), 0};
    const std::size_t count[2] = {1, std::size_t(width)};
    if (start[0] >= shape.length[0] || count[1] > shape.length[1]
        || !ms_is_stored(&ms_state_of(file), file.variables[slot], 2, start, count))
        return -1;
    const bool read =
        nc_get_vara_double(file.ncid, file.variables[slot], start, count, target) == NC_NOERR;
    return read && !ms_lies_beyond(ms_file_state(file.ncid), file.variables[slot], 2, start, count) ? 0
                                                                                                    : -1;
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
    ms_clear_text(release, &ms_field<char *>(record, row.field));
}

void ms_clear_text(char release, char **text)
{
    if (release)
        ms_free(*text);
    *text = nullptr;
}
