#include "tworoads.h"

#include "filestate_p.h"
#include "msfile.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// Null for no file.
MsFileData *dataOf(const MsFile &file)
{
    return file ? &ms_file_state(file.id())->data : nullptr;
}

// A part of a variable, with room for it.
struct Part {
    std::vector<std::size_t> start;
    std::vector<std::size_t> count;
    std::size_t size = 1; // elements
};

// The part of `lines` steps along the first dimension from `first` on, and half of the second one if that
// is wanted. All of the others has to be asked for.
Part partOf(const MsShape &shape, std::size_t first, std::size_t lines, bool isHalf)
{
    Part part;
    part.start.assign(shape.length.size() + 1, 0); // an array even without dimensions
    part.count = shape.length;
    part.count.push_back(1);
    if (shape.rank() > 0) {
        part.start[0] = std::min(first, shape.length[0]);
        part.count[0] = std::min(lines, shape.length[0] - part.start[0]);
    }
    if (isHalf && shape.rank() > 1) {
        part.start[1] = shape.length[1] / 2;
        part.count[1] -= part.start[1];
    }
    for (const std::size_t count : part.count)
        part.size = std::size_t(ms_product(part.size, count));
    return part;
}

std::vector<Part> partsOf(const MsShape &shape, std::size_t most)
{
    const std::size_t length = shape.rank() > 0 ? shape.length[0] : 1;
    std::vector<Part> parts = {partOf(shape, 0, length, false), partOf(shape, 0, most, false),
                               partOf(shape, 0, 1, true), partOf(shape, length / 3, 7, true),
                               partOf(shape, length - std::min<std::size_t>(length, 1), 1, false)};
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [most](const Part &part) { return part.size < 1 || part.size > most; }),
                parts.end());
    return parts;
}

// Null for one that is the same in both.
const char *difference(MsFileData &own, MsFileData &library, int variable, const Part &part, qint32 type)
{
    const std::size_t bytes = part.size * (type == NC_CHAR ? 1 : ms_type_width(type));
    std::vector<char> ours(bytes);
    std::vector<char> theirs(bytes);
    const MsSlab slab = {variable, int(part.count.size()) - 1, part.start.data(), part.count.data()};
    const MsFetch result = own.read(slab, type, ours.data());
    if (result != library.read(slab, type, theirs.data()))
        return "failure";
    const bool isSame = result != MsFetch::Read || std::memcmp(ours.data(), theirs.data(), bytes) == 0;
    return isSame ? nullptr : "numbers";
}

} // namespace

QByteArray differenceOfRoads(const QByteArray &path, std::size_t most)
{
    const MsFile files[] = {MsFile(path.constData()), MsFile(path.constData())};
    MsFileData *const own = dataOf(files[0]);
    MsFileData *const library = dataOf(files[1]);
    if (!own || !library)
        return own || library ? "opening" : "";
    if (!own->classic_layout())
        return QByteArray();
    library->leave_to_library();

    int variables = 0;
    nc_inq_nvars(own->id(), &variables);
    for (int variable = 0; variable < variables; ++variable) {
        MsShape shape;
        if (!own->ask_shape(variable, &shape))
            continue;
        const bool isByte = shape.type == NC_CHAR || shape.type == NC_BYTE || shape.type == NC_UBYTE;
        for (const Part &part : partsOf(shape, most)) {
            for (const qint32 type : {NC_CHAR, NC_SHORT, NC_INT, NC_FLOAT, NC_DOUBLE}) {
                if (type == NC_CHAR ? !isByte : !ms_is_number(shape.type))
                    continue;
                if (const char *what = difference(*own, *library, variable, part, type))
                    return QByteArray(what) + " of variable " + QByteArray::number(variable) + " as type "
                        + QByteArray::number(type) + ", " + QByteArray::number(qulonglong(part.size))
                        + " from " + QByteArray::number(qulonglong(part.start[0]));
            }
        }
    }
    return QByteArray();
}
