// Readers of a variable over a whole run.

#include "access_p.h"
#include "missingdata_p.h"

#include "tmath.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int most_masses = 65535;

// The census of one run. Nearly all masses of a run are known ones, and to ask a hash for each costs more
// than all else, so keys in the usual range are also marked in a plain array.
class Census
{
public:
    Census(QSet<qint32> *keys, qint32 *decimalCount)
        : masses(keys), decimals(decimalCount), marks(marked_keys, 0)
    {
        scale_to_decimals();
    }

    // False when the last decimal is gone.
    bool take(double mass)
    {
        // Before the mass's own key, and one decimal a mass, however full the set stays.
        if (masses->size() >= most_masses && !lose_a_decimal())
            return false;
        insert(TMath::round(mass * power));
        return true;
    }

private:
    static constexpr std::size_t marked_keys = 1 << 18; // two decimals up to a mass of 2,621

    void insert(qint32 key)
    {
        if (quint32(key) < marked_keys) {
            char &mark = marks[std::size_t(key)];
            if (mark)
                return;
            mark = 1;
        }
        masses->insert(key);
    }

    void scale_to_decimals() { power = std::pow(10.0, *decimals); }

    // Keys to a tenth, cut toward zero: several can become one.
    bool lose_a_decimal()
    {
        --*decimals;
        if (*decimals == -1)
            return false;
        scale_to_decimals();
        const QSet<qint32> keys = *masses;
        masses->clear();
        std::fill(marks.begin(), marks.end(), 0);
        for (const qint32 key : keys)
            insert(key / 10);
        return true;
    }

    QSet<qint32> *masses;
    qint32 *decimals;
    std::vector<char> marks;
    double power = 1.0;
};

template <class Stored>
void take_census(const void *vector, qint32 count, double scale, QSet<qint32> *masses, qint32 *decimals)
{
    const auto *stored = static_cast<const Stored *>(vector);
    Census census(masses, decimals);
    for (qint32 i = 0; i < count; ++i) {
        if (!census.take(double(stored[i]) * scale))
            return;
    }
}

// What a file that is cut off still has of a variable over the whole run.
qint32 stored_elements(const MsFileRecord &file, int slot, qint32 count)
{
    return qint32(ms_stored_elements(ms_state_of(file), file.variables[slot], std::size_t(count)));
}

// Numbers beyond the end of a file that is cut off are missing.
MsBlock<double> read_trace(const MsFileRecord &file, int slot, qint32 scan_count)
{
    if (quint64(scan_count) * sizeof(double) > ms_state_of(file).most_bytes)
        return nullptr;
    const qint32 stored = stored_elements(file, slot, scan_count);
    MsBlock<void> numbers = ms_read_whole(file, slot, NC_DOUBLE, scan_count, stored);
    if (!numbers || stored == scan_count)
        return MsBlock<double>(static_cast<double *>(numbers.release()));

    MsBlock<double> trace(static_cast<double *>(ms_alloc_array(quint32(scan_count), NC_DOUBLE)));
    if (!trace)
        return nullptr;
    const double *first = static_cast<const double *>(numbers.get());
    std::fill(std::copy(first, first + stored, trace.get()), trace.get() + scan_count, MsMissingDouble);
    return trace;
}

} // namespace

int ms_read_mass_census(int ncid, QSet<qint32> &masses, qint32 *decimals, double scale)
{
    const MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    const MsDimension &points = file->dimensions[MsDim_point_number];
    const qint32 count = points.id != -1 ? points.size : 0;
    if (!file->has_mass_values || count < 1)
        return 0;

    const qint32 type = ms_nc_type_of_format(file->mass_format, NC_SHORT);
    const qint32 stored = stored_elements(*file, MsVar_mass_values, count);
    const MsBlock<void> vector = ms_read_whole(*file, MsVar_mass_values, type, count, stored);
    if (!vector)
        return -1;
    switch (type) {
    case NC_LONG:
        take_census<qint32>(vector.get(), stored, scale, &masses, decimals);
        break;
    case NC_FLOAT:
        take_census<float>(vector.get(), stored, scale, &masses, decimals);
        break;
    case NC_DOUBLE:
        take_census<double>(vector.get(), stored, scale, &masses, decimals);
        break;
    default:
        take_census<qint16>(vector.get(), stored, scale, &masses, decimals);
        break;
    }
    return 0;
}

int ms_read_total_intensity(int ncid, qint32 scan_count, double **intensities, double **times)
{
    if (scan_count < 1)
        return -1;
    const MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;
    if (file->variables[MsVar_total_intensity] == -1)
        return -1;

    *intensities = nullptr;
    if (times)
        *times = nullptr;
    MsBlock<double> total = read_trace(*file, MsVar_total_intensity, scan_count);
    if (!total)
        return -1;
    if (times) {
        MsBlock<double> time = read_trace(*file, MsVar_scan_acquisition_time, scan_count);
        if (!time)
            return -1;
        *times = time.release();
    }
    *intensities = total.release();
    return 0;
}
