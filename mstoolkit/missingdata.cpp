// Which data of a file that is cut off are still there.

#include "missingdata_p.h"

#include <algorithm>

namespace {

// Bytes of a variable's data, from its begin on, that lie before the end of the file.
quint64 bytes_left(const MsClassicLayout &layout, const MsVariableExtent &extent)
{
    return layout.length - std::min(layout.length, extent.begin);
}

} // namespace

bool ms_is_stored(const MsFileState *state, int varid, int rank, const std::size_t *start,
                  const std::size_t *count)
{
    if (!state || !state->cut_off)
        return true;
    const MsClassicLayout *layout = state->cut_off.get();
    if (varid < 0 || std::size_t(varid) >= layout->variables.size())
        return false;

    // The library has accepted the request's shape, and the header look its bytes as a 63-bit number.
    const MsVariableExtent &extent = layout->variables[std::size_t(varid)];
    const quint64 last_line = start[0] + count[0] - 1;
    const quint64 elements = rank == 1 ? 1 : start[1] + count[1];
    return last_line * extent.stride + elements * extent.width <= bytes_left(*layout, extent);
}

std::size_t ms_stored_elements(const MsFileState &state, int varid, std::size_t count)
{
    const MsClassicLayout *layout = state.cut_off.get();
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
