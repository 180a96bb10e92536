// nc types, data formats, memory and missing values.

#include "types_p.h"

#include "msformat.h"

#include <cstddef>
#include <iterator>
#include <limits>
#include <type_traits>

namespace {

struct FormatRow {
    qint32 format;
    qint32 nc_type;
    quint32 width;
};

// clang-format off
constexpr FormatRow format_rows[] = {
    {MsShortFormat,  NC_SHORT,  2},
    {MsLongFormat,   NC_LONG,   4},
    {MsFloatFormat,  NC_FLOAT,  4},
    {MsDoubleFormat, NC_DOUBLE, 8},
};
// clang-format on
static_assert(std::size(format_rows) == 4);

} // namespace

qint32 ms_format_of_nc_type(qint32 type, qint32 fallback)
{
    for (const FormatRow &row : format_rows) {
        if (row.nc_type == type)
            return row.format;
    }
    return fallback;
}

qint32 ms_nc_type_of_format(qint32 format, qint32 fallback)
{
    for (const FormatRow &row : format_rows) {
        if (row.format == format)
            return row.nc_type;
    }
    return fallback;
}

void *ms_alloc_bytes(std::size_t size)
{
    return ::operator new[](size);
}

quint32 ms_type_width(qint32 type)
{
    for (const FormatRow &row : format_rows) {
        if (row.nc_type == type)
            return row.width;
    }
    return 0;
}

bool ms_is_whole(qint32 type)
{
    return ms_with_format(ms_format_of_nc_type(type, 0), [](auto *stored) {
        return std::is_integral_v<std::remove_pointer_t<decltype(stored)>>;
    });
}

bool ms_is_number(nc_type type)
{
    return type >= NC_BYTE && type <= NC_UINT64 && type != NC_CHAR;
}

void *ms_alloc_array(quint32 count, qint32 type)
{
    const quint32 width = ms_type_width(type);
    const quint64 size = quint64(count) * width;
    return width != 0 && size <= std::numeric_limits<quint32>::max() ? ms_alloc_bytes(size) : nullptr;
}

void ms_free(void *block)
{
    ::operator delete[](block);
}

void ms_clear_text(char release, char **text)
{
    if (release)
        ms_free(*text);
    *text = nullptr;
}

void ms_set_missing(qint32 type, void *array, qint32 index)
{
    if (type == NC_BYTE) {
        static_cast<qint8 *>(array)[index] = -1;
        return;
    }
    ms_with_format(ms_format_of_nc_type(type, 0), [&](auto *stored) {
        using Number = std::remove_pointer_t<decltype(stored)>;
        static_cast<Number *>(array)[index] = Number(MsMissingLong);
    });
}
