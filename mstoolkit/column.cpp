// Shapes and elements of one variable, read ahead where nobody can tell the difference.

#include "column_p.h"

#include "msformat.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

// How far one read-ahead goes, in scans and in points.
constexpr std::size_t scans_ahead = 1024;
constexpr std::size_t points_ahead = 1 << 14;

template <class Whole> MsFetch put_whole(double number, void *target)
{
    if (!(number >= std::numeric_limits<Whole>::min() && number <= std::numeric_limits<Whole>::max()))
        return MsFetch::None;
    *static_cast<Whole *>(target) = Whole(number);
    return MsFetch::Read;
}

} // namespace

const MsShape *MsColumn::shape()
{
    if (!inquired || !data->is_constant()) {
        present = data->ask_shape(varid, &found);
        inquired = true;
    }
    return present ? &found : nullptr;
}

// Whether `count` elements from `start` on are among those read ahead.
bool MsColumn::covers(std::size_t start, std::size_t count, qint32 wanted) const
{
    return type == wanted && start >= first && count <= size && start - first <= size - count;
}

// Reads up to `most` elements from `start` on. Where not all can be read, for whatever reason, each
// request has to find out for itself.
bool MsColumn::read_stretch(std::size_t start, std::size_t most, qint32 wanted)
{
    if (!data->is_constant() || refuses_stretches || start >= found.length[0])
        return false;

    const std::size_t count = std::min(most, found.length[0] - start);
    size = 0;
    elements.resize(count * ms_type_width(wanted));
    if (data->read({varid, 1, &start, &count}, wanted, elements.data()) != MsFetch::Read) {
        refuses_stretches = true;
        return false;
    }
    type = wanted;
    first = start;
    size = count;
    return true;
}

// Whether `count` elements from `start` on are read ahead, if need be in a new stretch from `from` on.
bool MsColumn::read_ahead(std::size_t from, std::size_t most, std::size_t start, std::size_t count,
                          qint32 wanted)
{
    return covers(start, count, wanted)
        || (read_stretch(from, most, wanted) && covers(start, count, wanted));
}

void MsColumn::copy(std::size_t start, std::size_t count, void *target) const
{
    const std::size_t width = ms_type_width(type);
    std::memcpy(target, elements.data() + (start - first) * width, count * width);
}

// Whether a reader that asks for `start` goes through the points from front to back.
bool MsColumn::follows(std::size_t start) const
{
    return start >= next && start - next < points_ahead;
}

MsFetch MsColumn::number(std::size_t index, qint32 wanted, void *target)
{
    // The library's own idea of a length may be larger.
    if (index >= found.length[0])
        return MsFetch::Failed;
    if (!ms_is_number(found.type))
        return MsFetch::None;
    // The library would make a whole number even of a NaN.
    if ((found.type == NC_FLOAT || found.type == NC_DOUBLE) && ms_is_whole(wanted)) {
        double wide = 0.0;
        const MsFetch result = number(index, NC_DOUBLE, &wide);
        if (result != MsFetch::Read)
            return result;
        return ms_with_format(ms_format_of_nc_type(wanted, 0), [&](auto *stored) {
            using Number = std::remove_pointer_t<decltype(stored)>;
            if constexpr (std::is_integral_v<Number>)
                return put_whole<Number>(wide, target);
            else
                return MsFetch::None;
        });
    }

    if (read_ahead(index / scans_ahead * scans_ahead, scans_ahead, index, 1, wanted)) {
        copy(index, 1, target);
        return MsFetch::Read;
    }
    const std::size_t one = 1;
    return data->read({varid, 1, &index, &one}, wanted, target);
}

MsBlock<void> MsColumn::points(qint64 start, qint64 count, qint32 wanted)
{
    if (found.rank() != 1 || !ms_is_number(found.type) || start < 0 || count < 1
        || quint64(start) + quint64(count) > found.length[0])
        return nullptr;

    const std::size_t from = std::size_t(start);
    const std::size_t many = std::size_t(count);
    const bool in_turn = follows(from);
    next = from + many;
    if (in_turn && many <= points_ahead && read_ahead(from, points_ahead, from, many, wanted)) {
        MsBlock<void> array(ms_alloc_array(quint32(many), wanted));
        copy(from, many, array.get());
        return array;
    }
    return data->read_array({varid, 1, &from, &many}, wanted);
}

bool MsColumn::line(std::size_t line, std::size_t width, double *target)
{
    const std::size_t start[2] = {line, 0};
    const std::size_t count[2] = {1, width};
    return found.rank() == 2 && ms_is_number(found.type) && line < found.length[0]
        && width <= found.length[1]
        && data->read({varid, 2, start, count}, NC_DOUBLE, target) == MsFetch::Read;
}
