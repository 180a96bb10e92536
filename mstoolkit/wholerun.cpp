// Readers of a variable over a whole run.

#include "wholerun_p.h"

#include "filestate_p.h"
#include "masskeys_p.h"
#include "msformat.h"
#include "widevectors_p.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr int most_masses = 65535;
constexpr qint32 masses_at_once = 1 << 15;

// The census of one run. Nearly all masses of a run are known ones, and to ask a hash for each costs more
// than all else, so keys in the usual range are also marked in a plain array.
class Census
{
public:
    Census(QSet<qint32> *keys, qint32 *decimalCount)
        : masses(keys), decimals(decimalCount), marks(marked_keys + 1, 0),
          is_full(keys->size() >= most_masses)
    {
        scale_to_decimals();
    }

    // Whether it has given up the last decimal: no further mass counts.
    bool is_over() const { return has_stopped; }

    // Counts masses of a data format.
    void take(const void *stored, qint32 format, qint32 count, double scale)
    {
        ms_with_format(format, stored, [&](const auto *first) {
            ms_with_widest_vectors([&](auto) { take_all(first, count, scale); });
        });
    }

private:
    // In blocks: nearly all masses are known ones, and a whole block of them is told in two plain loops.
    template <class Stored> void take_all(const Stored *stored, qint32 count, double scale)
    {
        MsMassKeys::Block keys;
        for (qint32 first = 0; first < count && !has_stopped; first += MsMassKeys::block_size) {
            const qint32 size = std::min(MsMassKeys::block_size, count - first);
            const quint32 largest = MsMassKeys(scale, power).compute(stored + first, size, &keys);
            if (is_full || largest >= marked_keys || !are_marked(keys.data(), size))
                take_each(stored + first, size, scale);
        }
    }

    template <class Stored> void take_each(const Stored *stored, qint32 count, double scale)
    {
        for (qint32 i = 0; i < count; ++i) {
            // This comes before the mass's own key. Each mass costs one decimal at most, however full the
            // set stays.
            if (is_full && !lose_a_decimal())
                return;
            const qint32 key = MsMassKeys(scale, power).of(double(stored[i]));
            if (!is_marked(key))
                insert(key);
        }
    }

    static constexpr quint32 marked_keys = 1 << 18; // two decimals up to a mass of 2,621

    // One mark more than there are keys stands for all others and is never set.
    bool is_marked(qint32 key) const { return marks[std::min(quint32(key), marked_keys)] != 0; }

    // Of keys below marked_keys.
    bool are_marked(const qint32 *keys, qint32 count) const
    {
        const char *const first = marks.data();
        constexpr qint32 at_once = 4;
        char all[at_once] = {1, 1, 1, 1};
        qint32 i = 0;
        for (; i + at_once <= count; i += at_once) {
            for (qint32 k = 0; k < at_once; ++k)
                all[k] &= first[quint32(keys[i + k])];
        }
        for (; i < count; ++i)
            all[0] &= first[quint32(keys[i])];
        return (all[0] & all[1] & all[2] & all[3]) != 0;
    }

    void insert(qint32 key)
    {
        if (quint32(key) < marked_keys)
            marks[std::size_t(key)] = 1;
        masses->insert(key);
        is_full = masses->size() >= most_masses;
    }

    void scale_to_decimals() { power = std::pow(10.0, *decimals); }

    // Keys to a tenth, cut toward zero: several can become one.
    bool lose_a_decimal()
    {
        --*decimals;
        has_stopped = *decimals == -1;
        if (has_stopped)
            return false;
        scale_to_decimals();
        const QSet<qint32> keys = *masses;
        masses->clear();
        is_full = false;
        std::fill(marks.begin(), marks.end(), 0);
        for (const qint32 key : keys)
            insert(key / 10);
        return true;
    }

    QSet<qint32> *masses;
    qint32 *decimals;
    std::vector<char> marks;
    bool is_full;
    bool has_stopped = false;
    double power = 1.0;
};

// The number of elements; 0 also where there are more than can be counted.
std::size_t count_elements(const MsShape &shape)
{
    std::size_t count = 1;
    for (const std::size_t length : shape.length) {
        if (length == 0 || count > std::numeric_limits<std::size_t>::max() / length)
            return 0;
        count *= length;
    }
    return count;
}

// A variable with one element for each scan, whatever its rank. Numbers beyond the end of a file that is
// cut off are missing, and so are those that the system refuses.
MsBlock<double> read_trace(MsFileState &file, int slot, qint32 scan_count)
{
    const std::size_t size = std::size_t(scan_count);
    if (!ms_is_trace(file, slot, scan_count) || !file.data.can_hold(size * sizeof(double)))
        return nullptr;
    const MsShape *shape = file.column(slot).shape();
    MsBlock<double> trace(static_cast<double *>(ms_alloc_array(quint32(scan_count), NC_DOUBLE)));
    if (!trace)
        return nullptr;

    const int varid = file.variables[slot];
    std::vector<std::size_t> counts = shape->length;
    counts.push_back(1); // so that there is an array even without dimensions
    const std::vector<std::size_t> start(counts.size(), 0);
    if (shape->rank() != 1) {
        const MsSlab whole = {varid, shape->rank(), start.data(), counts.data()};
        return file.data.read(whole, NC_DOUBLE, trace.get()) == MsFetch::Read ? std::move(trace)
                                                                              : nullptr;
    }

    std::vector<MsPart> lost;
    if (file.data.read_parts(varid, {0, size}, NC_DOUBLE, trace.get(), &lost) != MsFetch::Read)
        return nullptr;
    for (const MsPart &part : lost)
        std::fill_n(trace.get() + part.start, part.count, MsMissingDouble);
    return trace;
}

// The masses of the variable from front to back. In stretches, which are still near the processor when
// they are counted. What the system refuses has no masses: those of the other points count. -1 where all
// is refused, and for any other failure.
int count_stretches(MsFileState &file, qint64 stored, qint32 type, double scale, Census *census,
                    const QSet<qint32> &keys)
{
    const qint32 format = ms_format_of_nc_type(type, MsShortFormat);
    const std::size_t width = ms_type_width(type);
    const MsBlock<void> buffer(ms_alloc_array(quint32(std::min<qint64>(masses_at_once, stored)), type));
    if (!buffer)
        return -1;
    const auto *const bytes = static_cast<const char *>(buffer.get());
    std::vector<MsPart> lost;
    bool has_any = false;
    for (qint64 start = 0; start < stored && !census->is_over(); start += masses_at_once) {
        const MsPart whole = {std::size_t(start),
                              std::size_t(std::min<qint64>(masses_at_once, stored - start))};
        const quint64 refused = file.data.refused_reads();
        const MsFetch result =
            file.data.read_parts(file.variables[MsVar_mass_values], whole, type, buffer.get(), &lost);
        if (result != MsFetch::Read && file.data.refused_reads() == refused)
            return -1;
        std::size_t from = whole.start;
        lost.push_back({whole.end(), 0});
        for (const MsPart &part : lost) {
            const auto size = qint32(part.start - from);
            const void *const masses = bytes + (from - whole.start) * width;
            census->take(masses, format, size, scale);
            file.tally.census.seen = qint64(from);
            if (keys.size() < 2)
                ms_tally_masses(file.tally.census, masses, format, size);
            has_any = has_any || size > 0;
            from = part.end();
        }
    }
    return has_any ? 0 : -1;
}

int read_census(MsFileState &file, QSet<qint32> &masses, qint32 *decimals, double scale)
{
    const int dimension = file.dimensions[MsDim_point_number].id;
    std::size_t count = 0; // may be more than the record can say
    if (dimension != -1)
        file.data.ask_length(dimension, &count);
    if (!file.has_mass_values || count < 1)
        return 0;

    const MsShape *shape = file.column(MsVar_mass_values).shape();
    if (!shape || shape->rank() != 1 || !ms_is_number(shape->type) || shape->length[0] != count)
        return -1;
    const qint32 type = ms_nc_type_of_format(file.mass_format, NC_SHORT);
    const auto stored =
        qint64(file.data.count_stored(file.variables[MsVar_mass_values], shape->length[0]));
    // Elements that were claimed and never written would be counted for hours.
    if (stored < 1 || !file.data.can_hold(quint64(stored) * ms_type_width(type)))
        return -1;
    QSet<qint32> keys = masses;
    qint32 key_decimals = *decimals;
    Census census(&keys, &key_decimals);
    if (count_stretches(file, stored, type, scale, &census, keys) == -1)
        return -1;
    masses = keys;
    *decimals = key_decimals;
    return 0;
}

} // namespace

bool ms_is_trace(MsFileState &file, int slot, qint32 scan_count)
{
    const MsShape *shape = file.column(slot).shape();
    return shape && ms_is_number(shape->type) && count_elements(*shape) == std::size_t(scan_count);
}

int ms_read_mass_census(int ncid, QSet<qint32> &masses, qint32 *decimals, double scale)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    MsCensusTally &census = file->tally.census;
    census = MsCensusTally();
    const int status = read_census(*file, masses, decimals, scale);
    ms_tally_census(census, status == 0, masses, *decimals);
    return status;
}

int ms_read_total_intensity(int ncid, qint32 scan_count, double **intensities, double **times)
{
    if (scan_count < 1)
        return -1;
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    if (file->variables[MsVar_total_intensity] == -1)
        return -1;

    *intensities = nullptr;
    MsBlock<double> total = read_trace(*file, MsVar_total_intensity, scan_count);
    if (!total)
        return -1;
    if (times) {
        *times = nullptr;
        MsBlock<double> time = read_trace(*file, MsVar_scan_acquisition_time, scan_count);
        if (!time)
            return -1;
        *times = time.release();
    }
    *intensities = total.release();
    return 0;
}
