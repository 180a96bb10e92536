#include "columnwalk_p.h"

#include "filestate_p.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

constexpr std::size_t numbers_at_once = 1024;

struct Fill {
    double least;
    double most;
};

// Floats and doubles have room for the rounded number that manuals give.
std::optional<Fill> fill_of(nc_type type)
{
    constexpr double tolerance = 1e-5;
    switch (type) {
    case NC_SHORT:
        return Fill{NC_FILL_SHORT, NC_FILL_SHORT};
    case NC_INT:
        return Fill{NC_FILL_INT, NC_FILL_INT};
    case NC_FLOAT:
    case NC_DOUBLE:
        return Fill{(1.0 - tolerance) * NC_FILL_DOUBLE, (1.0 + tolerance) * NC_FILL_DOUBLE};
    default:
        return std::nullopt;
    }
}

} // namespace

MsColumnWalk::MsColumnWalk(MsFileState &state, int variable_slot) : file(&state), slot(variable_slot)
{
    const MsShape *shape = file->column(slot).shape();
    if (!shape)
        return;
    dimensions = shape->rank();
    if (dimensions != 1 || !ms_is_number(shape->type))
        return;
    kind = shape->type;
    claimed = shape->length[0];
    stored = file->data.count_stored(file->variables[slot], claimed);
    if (const std::optional<Fill> fill = fill_of(kind)) {
        least_fill = fill->least;
        most_fill = fill->most;
    }
}

MsColumnNumber MsColumnWalk::read(std::size_t place)
{
    if (place >= stored)
        return {};
    first = place / numbers_at_once * numbers_at_once;
    const std::size_t count = std::min(numbers_at_once, stored - first);
    numbers.resize(count);
    const quint64 refused = file->data.refused_reads();
    const MsFetch result =
        file->data.read_parts(file->variables[slot], {first, count}, NC_DOUBLE, numbers.data(), &lost);
    // Where the system has refused nothing, the file was cut before these since it was opened, or it is a
    // failure that all reads behind would share.
    if (result != MsFetch::Read && file->data.refused_reads() == refused)
        stored = first;
    return at(place - first);
}

bool MsColumnWalk::is_lost(std::size_t place) const
{
    return std::any_of(lost.begin(), lost.end(), [place](const MsPart &part) {
        return place >= part.start && place - part.start < part.count;
    });
}

std::optional<qint64> ms_shortest_axis(MsFileState &file)
{
    std::optional<qint64> shortest;
    for (const int slot : {MsVar_mass_values, MsVar_time_values, MsVar_intensity_values}) {
        const MsColumnWalk numbers(file, slot);
        if (numbers.is_usable())
            shortest = std::min(shortest.value_or(qint64(numbers.length())), qint64(numbers.length()));
    }
    return shortest;
}

bool ms_is_fill(qint32 type, double number)
{
    const std::optional<Fill> fill = fill_of(type);
    return fill && number >= fill->least && number <= fill->most;
}
