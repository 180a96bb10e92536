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

void ms_look_at_length(MsFileState *state)
{
    if (!state->layout)
        return;
    state->handle.clear();
    if (!state->handle.seekg(0, std::ios::end))
        return;
    const quint64 length = quint64(state->handle.tellg());
    state->layout->length = std::min(state->layout->length, length);
}

quint64 ms_lacking(const MsFileState &state)
{
    const MsClassicLayout *layout = state.layout.get();
    return layout ? layout->needed - std::min(layout->needed, layout->length) : 0;
}

bool ms_is_stored(const MsFileState *state, int varid, int rank, const std::size_t *start,
                  const std::size_t *count)
{
    if (!state || ms_lacking(*state) == 0)
        return true;
    const MsClassicLayout *layout = state->layout.get();
    if (varid < 0 || std::size_t(varid) >= layout->variables.size())
        return false;

    // Requests lie within the variable's shape, so their sums don't wrap.
    const MsVariableExtent &extent = layout->variables[std::size_t(varid)];
    const quint64 last_line = start[0] + count[0] - 1;
    const quint64 elements = rank == 1 ? 1 : start[1] + count[1];
    return ms_sum(ms_product(last_line, extent.stride), ms_product(elements, extent.width))
        <= bytes_left(*layout, extent);
}

bool ms_lies_beyond(MsFileState *state, int varid, int rank, const std::size_t *start,
                    const std::size_t *count)
{
    if (state)
        ms_look_at_length(state);
    return !ms_is_stored(state, varid, rank, start, count);
}

std::size_t ms_stored_elements(const MsFileState &state, int varid, std::size_t count)
{
    if (ms_lacking(state) == 0)
        return count;
    const MsClassicLayout *layout = state.layout.get();
    if (varid < 0 || std::size_t(varid) >= layout->variables.size())
        return 0;

    const MsVariableExtent &extent = layout->variables[std::size_t(varid)];
    const quint64 left = bytes_left(*layout, extent);
    if (left < extent.width || extent.stride == 0)
        return 0;
    return std::size_t(std::min<quint64>(count, (left - extent.width) / extent.stride + 1));
}
