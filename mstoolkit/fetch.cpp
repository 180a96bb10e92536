// Shapes and numbers of a file, read ahead where that can be done unseen.

#include "access_p.h"
#include "missingdata_p.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// Scans whose numbers, and points that, are read at once.
constexpr std::size_t scans_ahead = 1024;
constexpr std::size_t points_ahead = 1 << 14;

// Null for a file that is written.
MsColumn *column_of(const MsFileRecord &file, int slot)
{
    const MsFileState &state = ms_state_of(file);
    return state.columns ? &state.columns[std::size_t(slot)] : nullptr;
}

bool lies_beyond(const MsFileRecord &file, int slot, std::size_t start, std::size_t count)
{
    return ms_lies_beyond(ms_file_state(file.ncid), file.variables[slot], 1, &start, &count);
}

bool covers(const MsColumn &column, std::size_t start, std::size_t count, qint32 type)
{
    return column.type == type && start >= column.first && count <= column.count
        && start - column.first <= column.count - count;
}

// Reads a stretch of up to `most` elements from `first` on. Where it can't be read whole, for whatever
// reason, each request has to find out for itself.
bool read_stretch(const MsFileRecord &file, int slot, std::size_t first, std::size_t most, qint32 type,
                  MsColumn *column)
{
    if (column->refuses_stretches || column->shape.rank != 1 || first >= column->shape.length[0])
        return false;

    const std::size_t count = std::min(most, column->shape.length[0] - first);
    column->count = 0;
    column->numbers.resize(count * ms_type_width(type));
    const int varid = file.variables[slot];
    if (!ms_is_stored(&ms_state_of(file), varid, 1, &first, &count)
        || ms_fetch_stretch(file.ncid, varid, first, count, type, column->numbers.data()) != NC_NOERR
        || lies_beyond(file, slot, first, count)) {
        column->refuses_stretches = true;
        return false;
    }
    column->type = type;
    column->first = first;
    column->count = count;
    return true;
}

// Whether `count` elements from `start` on are in the stretch, if need be in a new one from `first` on.
bool read_ahead(const MsFileRecord &file, int slot, std::size_t first, std::size_t most,
                std::size_t start, std::size_t count, qint32 type, MsColumn *column)
{
    return covers(*column, start, count, type)
        || (read_stretch(file, slot, first, most, type, column) && covers(*column, start, count, type));
}

void copy_from(const MsColumn &column, std::size_t start, std::size_t count, void *target)
{
    const std::size_t width = ms_type_width(column.type);
    std::memcpy(target, column.numbers.data() + (start - column.first) * width, count * width);
}

// Whether a reader that asks for `start` goes through the points from front to back.
bool follows(const MsColumn &column, std::size_t start)
{
    return start >= column.next && start - column.next < points_ahead;
}

template <class Whole> MsFetch put_whole(double number, void *target)
{
    if (!(number >= std::numeric_limits<Whole>::min() && number <= std::numeric_limits<Whole>::max()))
        return MsFetch::None;
    *static_cast<Whole *>(target) = Whole(number);
    return MsFetch::Read;
}

// A stored float or double as a whole number. The library makes one of a NaN, too.
MsFetch fetch_whole(const MsFileRecord &file, int slot, std::size_t index, qint32 type, void *target)
{
    double number = 0.0;
    const MsFetch result = ms_fetch_number(file, slot, index, NC_DOUBLE, &number);
    if (result != MsFetch::Read)
        return result;
    return type == NC_SHORT ? put_whole<qint16>(number, target) : put_whole<qint32>(number, target);
}

} // namespace

bool ms_is_number(nc_type type)
{
    return type >= NC_BYTE && type <= NC_UINT64 && type != NC_CHAR;
}

int ms_fetch_stretch(int ncid, int varid, std::size_t start, std::size_t count, qint32 type, void *target)
{
    switch (type) {
    case NC_SHORT:
        return nc_get_vara_short(ncid, varid, &start, &count, static_cast<qint16 *>(target));
    case NC_LONG:
        return nc_get_vara_int(ncid, varid, &start, &count, static_cast<qint32 *>(target));
    case NC_FLOAT:
        return nc_get_vara_float(ncid, varid, &start, &count, static_cast<float *>(target));
    case NC_DOUBLE:
        return nc_get_vara_double(ncid, varid, &start, &count, static_cast<double *>(target));
    default:
        return NC_EBADTYPE;
    }
}

bool ms_ask_length(int ncid, int dimension, std::size_t *length)
{
    if (nc_inq_dimlen(ncid, dimension, length) != NC_NOERR)
        return false;
    const MsFileState *state = ms_file_state(ncid);
    int unlimited = -1;
    if (state && state->layout && !state->layout->counts_records
        && nc_inq_unlimdim(ncid, &unlimited) == NC_NOERR && dimension == unlimited)
        *length = std::size_t(state->layout->records);
    return true;
}

bool ms_ask_shape(int ncid, int varid, MsShape *shape)
{
    if (ncvarinq(ncid, varid, nullptr, &shape->type, &shape->rank, nullptr, nullptr) == -1)
        return false;
    if (shape->rank < 1 || shape->rank > 2)
        return true;

    int dimensions[2];
    if (nc_inq_vardimid(ncid, varid, dimensions) != NC_NOERR)
        return false;
    for (int i = 0; i < shape->rank; ++i) {
        if (!ms_ask_length(ncid, dimensions[i], &shape->length[i]))
            return false;
    }
    return true;
}

void ms_set_variable(MsFileRecord *file, int slot, int varid)
{
    file->variables[slot] = varid;
    if (MsColumn *column = column_of(*file, slot))
        *column = MsColumn();
}

bool ms_inquire_shape(const MsFileRecord &file, int slot, MsShape *shape)
{
    MsColumn *column = column_of(file, slot);
    if (!column)
        return ms_ask_shape(file.ncid, file.variables[slot], shape);
    if (!column->inquired) {
        column->present = ms_ask_shape(file.ncid, file.variables[slot], &column->shape);
        column->inquired = true;
    }
    *shape = column->shape;
    return column->present;
}

MsFetch ms_fetch_number(const MsFileRecord &file, int slot, std::size_t index, qint32 type, void *target)
{
    MsShape shape;
    // The library's own idea of a length may be larger.
    if (!ms_inquire_shape(file, slot, &shape) || shape.rank != 1 || index >= shape.length[0])
        return MsFetch::Failed;
    if (!ms_is_number(shape.type))
        return MsFetch::None;

    if ((type == NC_SHORT || type == NC_LONG) && (shape.type == NC_FLOAT || shape.type == NC_DOUBLE))
        return fetch_whole(file, slot, index, type, target);

    MsColumn *column = column_of(file, slot);
    const std::size_t first = index / scans_ahead * scans_ahead;
    if (column && read_ahead(file, slot, first, scans_ahead, index, 1, type, column)) {
        copy_from(*column, index, 1, target);
        return MsFetch::Read;
    }

    const int status = ms_fetch_stretch(file.ncid, file.variables[slot], index, 1, type, target);
    if (status != NC_NOERR && status != NC_ERANGE)
        return MsFetch::Failed;
    const bool holds = status == NC_NOERR && !lies_beyond(file, slot, index, 1);
    return holds ? MsFetch::Read : MsFetch::None;
}

bool ms_fetch_points(const MsFileRecord &file, int slot, std::size_t start, std::size_t count,
                     qint32 type, void *target)
{
    if (MsColumn *column = column_of(file, slot)) {
        const bool in_turn = follows(*column, start);
        column->next = start + count;
        if (in_turn && count <= points_ahead
            && read_ahead(file, slot, start, points_ahead, start, count, type, column)) {
            copy_from(*column, start, count, target);
            return true;
        }
    }
    return ms_fetch_stretch(file.ncid, file.variables[slot], start, count, type, target) == NC_NOERR
        && !lies_beyond(file, slot, start, count);
}
