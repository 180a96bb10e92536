// Texts in a file: enumerated attributes and text variables.

#include "access_p.h"
#include "missingdata_p.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

// No text of the template has more than 255 bytes. A file of the newer kinds may claim any number of
// bytes that were never written.
constexpr qint32 widest_text = 1 << 20;

bool is_one_byte_wide(nc_type type)
{
    return type == NC_CHAR || type == NC_BYTE || type == NC_UBYTE;
}

// Where a text lies in its variable.
struct TextPlace {
    std::size_t start[2];
    int rank;

    std::size_t &first_byte() { return start[rank - 1]; }
};

// False where the variable has another type or rank: the buffers below are made for bytes, in one row.
bool find_text(const MsShape &shape, qint32 row, qint32 column, TextPlace *place)
{
    place->rank = row < 0 ? 1 : 2;
    place->start[0] = std::size_t(std::max(row, 0));
    place->start[1] = std::size_t(std::max(column, 0));
    return is_one_byte_wide(shape.type) && shape.rank == place->rank;
}

// Whether the variable has `size` bytes there now.
bool has_text(const MsShape &shape, TextPlace place, qint32 size)
{
    return size > 0 && (place.rank == 1 || place.start[0] < shape.length[0])
        && place.first_byte() + std::size_t(size) <= shape.length[place.rank - 1];
}

// The bytes of a text up to its first NUL, at most width - 1 of them. In pieces, as most texts are short.
bool fetch_text(int ncid, int varid, TextPlace place, qint32 width, std::string *text)
{
    constexpr std::size_t piece = 4096;
    MsFileState *state = ms_file_state(ncid);
    std::size_t left = std::size_t(width) - 1;
    std::vector<char> buffer(std::min(left, piece));
    while (left > 0) {
        const std::size_t size = std::min(left, piece);
        const std::size_t count[2] = {place.rank == 1 ? size : 1, size};
        if (nc_get_vara(ncid, varid, place.start, count, buffer.data()) != NC_NOERR
            || ms_lies_beyond(state, varid, place.rank, place.start, count))
            return false;
        const auto end = buffer.begin() + std::ptrdiff_t(size);
        const auto nul = std::find(buffer.begin(), end, '\0');
        text->append(buffer.begin(), nul);
        if (nul != end)
            break;
        place.first_byte() += size;
        left -= size;
    }
    return true;
}

} // namespace

qint32 ms_read_enum_attribute(int ncid, int varid, const char *name)
{
    if (!name)
        return -1;

    ms_let_failures_return();
    nc_type type = NC_NAT;
    std::size_t length = 0; // the older interface's int is too narrow for what a file may hold
    if (nc_inq_att(ncid, varid, name, &type, &length) != NC_NOERR || length == 0 || type != NC_CHAR)
        return -1;
    std::vector<char> text(length + 1, '\0');
    if (ncattget(ncid, varid, name, text.data()) == -1)
        return -1;
    return ms_enum_code(text.data());
}

char *ms_read_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width)
{
    ms_let_failures_return();
    MsShape shape;
    TextPlace place;
    std::string text;
    if (width > widest_text || !ms_ask_shape(ncid, varid, &shape)
        || !find_text(shape, row, column, &place) || !has_text(shape, place, width)
        || !fetch_text(ncid, varid, place, width, &text))
        return nullptr;

    text.resize(text.find_last_not_of(' ') + 1); // npos + 1 is 0: nothing but blanks
    if (text.empty())
        return nullptr;
    auto *result = static_cast<char *>(ms_alloc_bytes(text.size() + 1));
    std::memcpy(result, text.c_str(), text.size() + 1);
    return result;
}

int ms_write_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width,
                             const char *text)
{
    ms_let_failures_return();
    if (width < 1)
        return -1;
    // Behind a column only its own byte is written.
    const qint32 moved = row < 0 || column < 0 ? width : 1;
    MsShape shape;
    TextPlace place;
    if (!ms_ask_shape(ncid, varid, &shape) || !find_text(shape, row, column, &place))
        return -1; // the library judges the place itself: a dimension may grow by this

    const std::size_t size = std::size_t(width);
    std::vector<char> buffer(size, ' ');
    if (text) {
        const std::size_t length = std::min(std::strlen(text), size - 1);
        std::memcpy(buffer.data(), text, length);
        buffer[length] = '\0';
    }
    buffer.back() = '\0';

    const long start[2] = {long(place.start[0]), long(place.start[1])};
    const long count[2] = {place.rank == 1 ? moved : 1, moved};
    return ncvarput(ncid, varid, start, count, buffer.data()) == -1 ? -1 : 0;
}
