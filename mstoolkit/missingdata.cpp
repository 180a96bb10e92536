// Which data of a file that is cut off are still there.

#include "missingdata_p.h"

#include "classicheader_p.h"

#include <QGlobalStatic>
#include <QHash>

#include <algorithm>

// Only files that are cut off are in it, so that whole ones pay for a look at an empty hash.
using MsShortFiles = QHash<int, MsClassicLayout>;
Q_GLOBAL_STATIC(MsShortFiles, shortFiles)

namespace
{

// Null for a file that is whole.
const MsClassicLayout *layout_of(int ncid)
{
    const MsShortFiles *files = shortFiles();
    if (!files || files->isEmpty())
        return nullptr;
    const auto found = files->constFind(ncid);
    return found != files->constEnd() ? &found.value() : nullptr;
}

// Bytes of a variable's data, from its begin on, that lie before the end of the file.
quint64 bytes_left(const MsClassicLayout &layout, const MsVariableExtent &extent)
{
    return layout.length - std::min(layout.length, extent.begin);
}

} // namespace

void ms_note_short_file(int ncid, const MsClassicLayout &layout)
{
    if (MsShortFiles *files = shortFiles())
        files->insert(ncid, layout);
}

void ms_forget_short_file(int ncid)
{
    if (MsShortFiles *files = shortFiles())
        files->remove(ncid);
}

bool ms_is_stored(int ncid, int varid, int rank, const std::size_t *start, const std::size_t *count)
{
    const MsClassicLayout *layout = layout_of(ncid);
    if (!layout)
        return true;
    if (varid < 0 || std::size_t(varid) >= layout->variables.size())
        return false;

    // The library has accepted the request's shape, and the header look its bytes as a 63-bit number.
    const MsVariableExtent &extent = layout->variables[std::size_t(varid)];
    const quint64 last_line = start[0] + count[0] - 1;
    const quint64 elements = rank == 1 ? 1 : start[1] + count[1];
    return last_line * extent.stride + elements * extent.width <= bytes_left(*layout, extent);
}

std::size_t ms_stored_elements(int ncid, int varid, std::size_t count)
{
    const MsClassicLayout *layout = layout_of(ncid);
    if (!layout)
        return count;
    if (varid < 0 || std::size_t(varid) >= layout->variables.size())
        return 0;

    const MsVariableExtent &extent = layout->variables[std::size_t(varid)];
    const quint64 left = bytes_left(*layout, extent);
    if (left < extent.width || extent.stride == 0)
        return 0;
    return std::size_t(std::min<quint64>(count, (left - extent.width) / extent.stride + 1));
}
