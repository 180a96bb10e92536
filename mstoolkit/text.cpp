// Texts in a file: enumerated attributes and text variables.

#include "text_p.h"

#include "filestate_p.h"

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

// Where a text begins in its variable.
struct Start {
    explicit Start(const MsTextPlace &place)
        : rank(place.row < 0 ? 1 : 2), at{std::size_t(std::max(place.row, 0)),
                                          std::size_t(std::max(place.column, 0))}
    {
    }

    std::size_t &first_byte() { return at[rank - 1]; }
    std::size_t first_byte() const { return at[rank - 1]; }

    int rank;
    std::size_t at[2];
};

// Whether the variable holds bytes in the rank that the place asks for: the buffers below are made for
// bytes, in one row.
bool holds_text(const MsShape &shape, const Start &start)
{
    return is_one_byte_wide(shape.type) && shape.rank() == start.rank;
}

// Whether it has `size` bytes there now.
bool reaches(const MsShape &shape, const Start &start, qint32 size)
{
    return size > 0 && (start.rank == 1 || start.at[0] < shape.length[0])
        && start.first_byte() + std::size_t(size) <= shape.length.back();
}

// The bytes of a text up to its first NUL, at most width - 1 of them. In pieces, as most texts are short.
bool fetch_text(MsFileData &data, int varid, Start start, qint32 width, std::string *text)
{
    constexpr std::size_t piece = 4096;
    std::size_t left = std::size_t(width) - 1;
    std::vector<char> buffer(std::min(left, piece));
    while (left > 0) {
        const std::size_t size = std::min(left, piece);
        const std::size_t count[2] = {start.rank == 1 ? size : 1, size};
        if (data.read({varid, start.rank, start.at, count}, NC_CHAR, buffer.data()) != MsFetch::Read)
            return false;
        const auto end = buffer.begin() + std::ptrdiff_t(size);
        const auto nul = std::find(buffer.begin(), end, '\0');
        text->append(buffer.begin(), nul);
        if (nul != end)
            break;
        start.first_byte() += size;
        left -= size;
    }
    return true;
}

// Calls `use` with the data of a file, which needn't be one of the registry.
template <class Use> auto with_data(int ncid, Use use)
{
    if (MsFileState *file = ms_file_state(ncid))
        return use(file->data);
    MsFileData data(ncid);
    return use(data);
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

char *ms_read_text(MsFileData &data, const MsShape &shape, const MsTextPlace &place)
{
    const Start start(place);
    std::string text;
    if (place.width > widest_text || !holds_text(shape, start) || !reaches(shape, start, place.width)
        || !fetch_text(data, place.varid, start, place.width, &text))
        return nullptr;

    text.resize(text.find_last_not_of(' ') + 1); // npos + 1 is 0: nothing but blanks
    if (text.empty())
        return nullptr;
    auto *result = static_cast<char *>(ms_alloc_bytes(text.size() + 1));
    std::memcpy(result, text.c_str(), text.size() + 1);
    return result;
}

int ms_write_text(const MsFileData &data, const MsTextPlace &place, const char *text)
{
    MsShape shape;
    const Start start(place);
    // The library checks the place: a dimension may grow by this write.
    if (place.width < 1 || !data.ask_shape(place.varid, &shape) || !holds_text(shape, start))
        return -1;

    const std::size_t size = std::size_t(place.width);
    std::vector<char> buffer(size, ' ');
    if (text) {
        const std::size_t length = std::min(std::strlen(text), size - 1);
        std::memcpy(buffer.data(), text, length);
        buffer[length] = '\0';
    }
    buffer.back() = '\0';

    // With a column, only the byte there is written.
    const long moved = place.row < 0 || place.column < 0 ? place.width : 1;
    const long at[2] = {long(start.at[0]), long(start.at[1])};
    const long count[2] = {start.rank == 1 ? moved : 1, moved};
    return ncvarput(data.id(), place.varid, at, count, buffer.data()) == -1 ? -1 : 0;
}

char *ms_read_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width)
{
    return with_data(ncid, [&](MsFileData &data) -> char * {
        MsShape shape;
        if (!data.ask_shape(varid, &shape))
            return nullptr;
        return ms_read_text(data, shape, {varid, row, column, width});
    });
}

int ms_write_string_variable(int ncid, int varid, qint32 row, qint32 column, qint32 width,
                             const char *text)
{
    return with_data(ncid, [&](const MsFileData &data) {
        return ms_write_text(data, {varid, row, column, width}, text);
    });
}
