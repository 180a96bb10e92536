// Readers of a variable over a whole run.

#include "access_p.h"
#include "missingdata_p.h"
#include "msformat.h"

#include "tmath.h"

#include <algorithm>
#include <cmath>
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
        : masses(keys), decimals(decimalCount), marks(marked_keys, 0),
          is_full(keys->size() >= most_masses)
    {
        scale_to_decimals();
    }

    // Whether it has given up the last decimal: no further mass counts.
    bool is_over() const { return has_stopped; }

    // Counts masses of a data format.
    void take(const void *stored, qint32 format, qint32 count, double scale)
    {
        ms_with_format(format, stored, [&](const auto *first) { take_all(first, count, scale); });
    }

private:
    template <class Stored> void take_all(const Stored *stored, qint32 count, double scale)
    {
        for (qint32 i = 0; i < count && !has_stopped; ++i) {
            const double mass = double(stored[i]) * scale;
            // Before the mass's own key, and one decimal a mass, however full the set stays.
            if (is_full && !lose_a_decimal())
                return;
            const qint32 key = TMath::round(mass * power);
            if (!is_marked(key))
                insert(key);
        }
    }

    static constexpr std::size_t marked_keys = 1 << 18; // two decimals up to a mass of 2,621

    bool is_marked(qint32 key) const { return quint32(key) < marked_keys && marks[std::size_t(key)]; }

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

// What a file that is cut off still has of a variable over the whole run.
qint32 stored_elements(const MsFileRecord &file, int slot, qint32 count)
{
    return qint32(ms_stored_elements(ms_state_of(file), file.variables[slot], std::size_t(count)));
}

// The lengths of a variable of any rank, and one more number, so that there is an array even without
// dimensions. False for an absent variable.
bool ask_lengths(int ncid, int varid, std::vector<std::size_t> *lengths)
{
    int rank = 0;
    if (nc_inq_varndims(ncid, varid, &rank) != NC_NOERR)
        return false;
    std::vector<int> dimensions(std::size_t(rank) + 1);
    if (nc_inq_vardimid(ncid, varid, dimensions.data()) != NC_NOERR)
        return false;
    lengths->assign(dimensions.size(), 1);
    for (std::size_t i = 0; i + 1 < dimensions.size(); ++i) {
        if (!ms_ask_length(ncid, dimensions[i], &(*lengths)[i]))
            return false;
    }
    return true;
}

// 0 also where there are more than can be counted.
std::size_t product(const std::vector<std::size_t> &lengths)
{
    std::size_t count = 1;
    for (const std::size_t length : lengths) {
        if (length == 0 || count > std::numeric_limits<std::size_t>::max() / length)
            return 0;
        count *= length;
    }
    return count;
}

// A variable with one element for each scan, whatever its rank. Numbers beyond the end of a file that is
// cut off are missing.
MsBlock<double> read_trace(const MsFileRecord &file, int slot, qint32 scan_count)
{
    const int varid = file.variables[slot];
    MsShape shape;
    std::vector<std::size_t> lengths;
    if (quint64(scan_count) * sizeof(double) > ms_state_of(file).most_bytes
        || !ms_inquire_shape(file, slot, &shape) || !ms_is_number(shape.type)
        || !ask_lengths(file.ncid, varid, &lengths) || product(lengths) != std::size_t(scan_count))
        return nullptr;
    MsBlock<double> trace(static_cast<double *>(ms_alloc_array(quint32(scan_count), NC_DOUBLE)));
    if (!trace)
        return nullptr;

    const qint32 stored = stored_elements(file, slot, scan_count);
    if (stored == scan_count) {
        // With the lengths: the library's own may be larger than the array.
        const std::vector<std::size_t> start(lengths.size(), 0);
        const int status =
            nc_get_vara_double(file.ncid, varid, start.data(), lengths.data(), trace.get());
        return status == NC_NOERR ? std::move(trace) : nullptr;
    }
    std::fill(trace.get(), trace.get() + scan_count, MsMissingDouble);
    const std::size_t first = 0;
    const std::size_t count = std::size_t(stored);
    const bool read = shape.rank == 1 && stored > 0
        && nc_get_vara_double(file.ncid, varid, &first, &count, trace.get()) == NC_NOERR;
    return read ? std::move(trace) : nullptr;
}

} // namespace

int ms_read_mass_census(int ncid, QSet<qint32> &masses, qint32 *decimals, double scale)
{
    const MsFileRecord *file = ms_file_to_read(ncid);
    if (!file)
        return -1;

    const MsDimension &points = file->dimensions[MsDim_point_number];
    const qint32 count = points.id != -1 ? points.size : 0;
    if (!file->has_mass_values || count < 1)
        return 0;

    MsShape shape;
    if (!ms_inquire_shape(*file, MsVar_mass_values, &shape) || shape.length[0] != std::size_t(count))
        return -1;
    const qint32 type = ms_nc_type_of_format(file->mass_format, NC_SHORT);
    const qint32 format = ms_format_of_nc_type(type, MsShortFormat);
    const qint32 stored = stored_elements(*file, MsVar_mass_values, count);
    // As for one vector: elements that were claimed and never written would be counted for hours.
    if (quint64(stored) * ms_type_width(type) > ms_state_of(*file).most_bytes)
        return -1;
    QSet<qint32> keys = masses;
    qint32 key_decimals = *decimals;
    Census census(&keys, &key_decimals);
    // In stretches, which are still near the processor when they are counted.
    for (qint64 start = 0; start < stored && !census.is_over(); start += masses_at_once) {
        const auto size = qint32(std::min<qint64>(masses_at_once, stored - start));
        const MsBlock<void> vector = ms_read_vector(*file, MsVar_mass_values, type, start, size);
        if (!vector)
            return -1;
        census.take(vector.get(), format, size, scale);
    }
    if (stored < 1)
        return -1;
    masses = keys;
    *decimals = key_decimals;
    return 0;
}

int ms_read_total_intensity(int ncid, qint32 scan_count, double **intensities, double **times)
{
    if (scan_count < 1)
        return -1;
    const MsFileRecord *file = ms_file_to_read(ncid);
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
