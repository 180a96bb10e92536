#include "columnwalk_p.h"

#include "filestate_p.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t numbers_at_once = 1024;

} // namespace

MsColumnWalk::MsColumnWalk(MsFileState &state, int variable_slot) : file(state), slot(variable_slot)
{
    const MsShape *shape = file.column(slot).shape();
    if (!shape)
        return;
    dimensions = shape->rank();
    if (dimensions != 1 || !ms_is_number(shape->type))
        return;
    kind = shape->type;
    claimed = shape->length[0];
    stored = file.data.count_stored(file.variables[slot], claimed);
}

bool MsColumnWalk::is_fill(double number) const
{
    return ms_is_fill(kind, number);
}

bool MsColumnWalk::get(std::size_t place, double *number)
{
    if (place >= stored)
        return false;
    if (place < first || place - first >= numbers.size()) {
        first = place / numbers_at_once * numbers_at_once;
        const std::size_t count = std::min(numbers_at_once, stored - first);
        numbers.resize(count);
        if (file.data.read({file.variables[slot], 1, &first, &count}, NC_DOUBLE, numbers.data())
            != MsFetch::Read) {
            stored = 0;
            return false;
        }
    }
    *number = numbers[place - first];
    return true;
}

bool ms_is_fill(nc_type type, double number)
{
    constexpr double tolerance = 1e-5; // for the rounded number of the manuals
    switch (type) {
    case NC_SHORT:
        return number == NC_FILL_SHORT;
    case NC_INT:
        return number == NC_FILL_INT;
    case NC_FLOAT:
    case NC_DOUBLE:
        return std::abs(number - NC_FILL_DOUBLE) <= tolerance * NC_FILL_DOUBLE;
    default:
        return false;
    }
}
