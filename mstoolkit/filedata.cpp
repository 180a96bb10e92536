// Reading elements of variables from a file.

#include "filedata_p.h"

#include "msformat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

// What a file of that length can hold, with room for small variables that were never written.
quint64 most_bytes_of(quint64 length)
{
    constexpr quint64 unwritten = 1 << 20;
    return length == 0 ? std::numeric_limits<quint64>::max() : length * MsTightestPacking + unwritten;
}

int get_vara(int ncid, const MsSlab &slab, qint16 *target)
{
    return nc_get_vara_short(ncid, slab.varid, slab.start, slab.count, target);
}

int get_vara(int ncid, const MsSlab &slab, qint32 *target)
{
    return nc_get_vara_int(ncid, slab.varid, slab.start, slab.count, target);
}

int get_vara(int ncid, const MsSlab &slab, float *target)
{
    return nc_get_vara_float(ncid, slab.varid, slab.start, slab.count, target);
}

int get_vara(int ncid, const MsSlab &slab, double *target)
{
    return nc_get_vara_double(ncid, slab.varid, slab.start, slab.count, target);
}

quint64 elements_of(const MsSlab &slab)
{
    quint64 result = 1;
    for (int i = 0; i < slab.rank; ++i)
        result = ms_product(result, slab.count[i]);
    return result;
}

// Adds a part behind those that are lost.
void lose(MsPart part, std::vector<MsPart> *lost)
{
    if (!lost->empty() && lost->back().end() == part.start)
        lost->back().count += part.count;
    else
        lost->push_back(part);
}

} // namespace

void MsFileData::open_read(quint64 length)
{
    constant = true;
    most = most_bytes_of(length);
}

void MsFileData::open_read(std::unique_ptr<MsClassicBytes> file, MsClassicLayout found)
{
    open_read(found.length);
    classic = std::move(file);
    layout = std::move(found);
}

bool MsFileData::has_zeros_behind()
{
    constexpr quint64 most_behind = 1 << 22;
    std::array<char, 1 << 12> bytes;
    if (!classic || layout->length > ms_sum(layout->told(), most_behind))
        return false;
    for (quint64 place = layout->told(); place < layout->length; place += bytes.size()) {
        const auto size = std::size_t(std::min<quint64>(bytes.size(), layout->length - place));
        if (classic->read_bytes(place, size, bytes.data()) != MsClassicBytes::Result::Read
            || std::any_of(bytes.begin(), bytes.begin() + size, [](char one) { return one != 0; }))
            return false;
    }
    return true;
}

void MsFileData::look_at_length()
{
    if (layout)
        layout->length = std::min(layout->length, classic->length());
}

quint64 MsFileData::missing_bytes() const
{
    return layout ? layout->needed - std::min(layout->needed, layout->length) : 0;
}

bool MsFileData::ask_length(int dimension, std::size_t *length) const
{
    if (nc_inq_dimlen(ncid, dimension, length) != NC_NOERR)
        return false;
    if (layout && !layout->counts_records && layout->is_unlimited(dimension))
        *length = std::size_t(layout->records);
    return true;
}

bool MsFileData::ask_shape(int varid, MsShape *shape) const
{
    int rank = 0;
    if (ncvarinq(ncid, varid, nullptr, &shape->type, &rank, nullptr, nullptr) == -1)
        return false;
    std::vector<int> dimensions(std::size_t(rank) + 1); // an array even without dimensions
    if (nc_inq_vardimid(ncid, varid, dimensions.data()) != NC_NOERR)
        return false;
    shape->length.assign(std::size_t(rank), 0);
    for (std::size_t i = 0; i < shape->length.size(); ++i) {
        if (!ask_length(dimensions[i], &shape->length[i]))
            return false;
    }
    return true;
}

// Null for a variable that the header doesn't have.
const MsVariableExtent *MsFileData::extent_of(int varid) const
{
    const bool is_known = varid >= 0 && std::size_t(varid) < layout->variables.size();
    return is_known ? &layout->variables[std::size_t(varid)] : nullptr;
}

// Bytes of the file behind a place.
quint64 MsFileData::bytes_from(quint64 begin) const
{
    return layout->length - std::min(layout->length, begin);
}

std::size_t MsFileData::count_stored(int varid, std::size_t count)
{
    look_at_length();
    if (missing_bytes() == 0)
        return count;
    const MsVariableExtent *extent = extent_of(varid);
    if (!extent)
        return 0;
    const quint64 left = bytes_from(extent->begin);
    if (left < extent->width || extent->stride == 0)
        return 0;
    return std::size_t(std::min<quint64>(count, (left - extent->width) / extent->stride + 1));
}

// Whether the file reaches to the last element.
bool MsFileData::has(const MsSlab &slab) const
{
    if (missing_bytes() == 0)
        return true;
    const MsVariableExtent *extent = extent_of(slab.varid);
    if (!extent)
        return false;
    // The slab lies within the variable's shape, so its sums don't wrap.
    const quint64 last_line = slab.rank == 0 ? 0 : slab.start[0] + slab.count[0] - 1;
    quint64 elements = slab.rank < 2 ? 1 : slab.start[1] + slab.count[1];
    for (int i = 2; i < slab.rank; ++i)
        elements = ms_product(elements, slab.count[i]);
    return ms_sum(ms_product(last_line, extent->stride), ms_product(elements, extent->width))
        <= bytes_from(extent->begin);
}

// Returns a netCDF status.
int MsFileData::ask_library(const MsSlab &slab, qint32 type, void *target) const
{
    if (type == NC_CHAR) // bytes as they are
        return nc_get_vara(ncid, slab.varid, slab.start, slab.count, target);
    int status = NC_EBADTYPE;
    ms_with_format(ms_format_of_nc_type(type, 0), [&](auto *numbers) {
        status = get_vara(ncid, slab, static_cast<decltype(numbers)>(target));
    });
    return status;
}

MsFetch MsFileData::read_line(const MsClassicRun &run, qint32 type, void *target)
{
    const MsClassicBytes::Result result = type == NC_CHAR
        ? classic->read_bytes(run.begin, run.count, target)
        : classic->read(run, type, target);
    switch (result) {
    case MsClassicBytes::Result::Read:
        return MsFetch::Read;
    case MsClassicBytes::Result::OutOfRange:
        return MsFetch::None;
    case MsClassicBytes::Result::EndOfFile:
        look_at_length();
        return MsFetch::None;
    case MsClassicBytes::Result::Failed:
        break;
    }
    return MsFetch::Failed;
}

// Reads from the bytes of a classic file. Returns nothing where the library has to: in other files, and
// for conversions that are its own.
std::optional<MsFetch> MsFileData::read_bytes(const MsSlab &slab, qint32 type, void *target)
{
    const MsVariableExtent *extent = reads_classic_bytes() ? extent_of(slab.varid) : nullptr;
    const bool is_text = type == NC_CHAR; // bytes as they are
    if (!extent || !(is_text ? extent->width == 1 : MsClassicBytes::can_convert(extent->type, type)))
        return std::nullopt;
    // The slab lies within the variable's shape, so its sums don't wrap.
    const auto begin_of = [&](std::size_t line) {
        return ms_sum(extent->begin, ms_product(line, extent->stride));
    };
    if (slab.rank == 1 && !(is_text && extent->stride != 1))
        return read_line(
            {extent->type, begin_of(slab.start[0]), extent->stride, extent->lead, slab.count[0]}, type,
            target);

    // Lines along the first dimension, each of which lies in one piece.
    std::size_t lines = slab.rank == 0 ? 1 : slab.count[0];
    quint64 size = slab.rank < 2 ? 1 : slab.count[1];
    quint64 first = slab.rank < 2 ? 0 : slab.start[1];
    for (int i = 2; i < slab.rank; ++i) {
        size = ms_product(size, slab.count[i]);
        first = ms_product(first, slab.count[i]);
    }
    if (first == 0 && ms_product(size, extent->width) == extent->stride)
        size = ms_product(size, std::exchange(lines, 1)); // and without a gap between them
    const std::size_t width = is_text ? 1 : ms_type_width(type);
    MsFetch result = MsFetch::Read;
    for (std::size_t i = 0; i < lines; ++i) {
        const quint64 begin = begin_of(slab.rank == 0 ? 0 : slab.start[0] + i) + first * extent->width;
        const MsFetch line =
            read_line({extent->type, begin, extent->width, 0, std::size_t(size)}, type,
                      static_cast<unsigned char *>(target) + i * std::size_t(size) * width);
        if (line == MsFetch::Failed)
            return line;
        if (line == MsFetch::None)
            result = line;
    }
    return result;
}

MsFetch MsFileData::read(const MsSlab &slab, qint32 type, void *target)
{
    if (!has(slab))
        return MsFetch::None;
    if (const std::optional<MsFetch> result = read_bytes(slab, type, target))
        return *result;
    const int status = ask_library(slab, type, target);
    if (status > 0 && refusals++ == 0) // of the system; the library's own are negative
        error = status;
    if (status == NC_ERANGE)
        return MsFetch::None;
    if (status != NC_NOERR)
        return MsFetch::Failed;
    look_at_length();
    return has(slab) ? MsFetch::Read : MsFetch::None;
}

bool MsFileData::is_in_one_sector(int varid, MsPart part) const
{
    constexpr quint64 sector = 512;
    const MsVariableExtent *extent = layout ? extent_of(varid) : nullptr;
    if (!extent)
        return true;
    const quint64 first = ms_sum(extent->begin, ms_product(part.start, extent->stride));
    const quint64 last = ms_sum(first, ms_product(part.count - 1, extent->stride)) + extent->width - 1;
    return first / sector == last / sector;
}

// Reads a part, and each half by itself where the system refuses it.
MsFetch MsFileData::split(int varid, MsPart part, qint32 type, unsigned char *target,
                          std::vector<MsPart> *lost)
{
    const quint64 before = refused_reads();
    const MsFetch result = read({varid, 1, &part.start, &part.count}, type, target);
    if (result != MsFetch::Failed || refused_reads() == before)
        return result;
    if (part.count == 1 || is_in_one_sector(varid, part)) {
        lose(part, lost);
        return MsFetch::Read;
    }
    const std::size_t half = part.count / 2;
    const MsFetch first = split(varid, {part.start, half}, type, target, lost);
    return first == MsFetch::Read ? split(varid, {part.start + half, part.count - half}, type,
                                          target + half * ms_type_width(type), lost)
                                  : first;
}

MsFetch MsFileData::read_parts(int varid, MsPart whole, qint32 type, void *target,
                               std::vector<MsPart> *lost)
{
    auto *const bytes = static_cast<unsigned char *>(target);
    lost->clear();
    MsFetch result = split(varid, whole, type, bytes, lost);
    const std::size_t end = result == MsFetch::None ? count_stored(varid, whole.end()) : whole.end();
    if (end > whole.start && end < whole.end()) {
        lost->clear();
        result = split(varid, {whole.start, end - whole.start}, type, bytes, lost);
        lose({end, whole.end() - end}, lost);
    }
    if (!lost->empty() && lost->front().count == whole.count)
        result = MsFetch::Failed;
    if (result != MsFetch::Read)
        *lost = {whole};
    return result;
}

MsBlock<void> MsFileData::read_array(const MsSlab &slab, qint32 type)
{
    const quint64 count = elements_of(slab);
    if (count > std::numeric_limits<quint32>::max() || !can_hold(count * ms_type_width(type))
        || !has(slab))
        return nullptr;
    MsBlock<void> array(ms_alloc_array(quint32(count), type));
    return array && read(slab, type, array.get()) == MsFetch::Read ? std::move(array) : nullptr;
}
