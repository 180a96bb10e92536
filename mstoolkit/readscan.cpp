// Reading one scan.

#include "columnwalk_p.h"
#include "rows_p.h"
#include "scanrecord_p.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

int read_numbers(MsFileState &file, MsScanRecord *scan)
{
    return ms_read_rows(file, ms_per_scan_table, scan->scan_number, scan);
}

// A counter over scan_number. -1 if it can't be read as a 32-bit number.
int read_counter(MsFileState &file, int slot, qint32 scan, qint32 *value)
{
    MsColumn &column = file.column(slot);
    if (column.take_ahead(std::size_t(scan), NC_LONG, value))
        return 0;
    const MsShape *shape = column.shape();
    if (!shape || shape->rank() != 1)
        return -1;
    return column.number(std::size_t(scan), NC_LONG, value) == MsFetch::Read ? 0 : -1;
}

// An axis or the intensities, with the nc type of the vectors in memory.
struct Axis {
    int slot;
    qint32 nc_type;
};

// Masses, times and intensities.
std::array<Axis, 3> axes_of(const MsFileRecord &file)
{
    return {Axis{MsVar_mass_values, ms_nc_type_of_format(file.mass_format, NC_SHORT)},
            Axis{MsVar_time_values, ms_nc_type_of_format(file.time_format, NC_SHORT)},
            Axis{MsVar_intensity_values, ms_nc_type_of_format(file.intensity_format, NC_LONG)}};
}

MsBlock<void> read_vector(MsFileState &file, const Axis &axis, qint64 start, qint32 count)
{
    MsColumn &column = file.column(axis.slot);
    return column.shape() ? column.points(start, count, axis.nc_type) : nullptr;
}

// A vector of the file as a new array in the fixed format of the flags.
MsBlock<void> read_flags(MsFileState &file, const Axis &axis, qint64 start, qint32 count, qint32 format)
{
    const MsBlock<void> stored = read_vector(file, axis, start, count);
    if (!stored)
        return nullptr;
    MsBlock<void> flags(ms_alloc_array(quint32(count), ms_nc_type_of_format(format, NC_LONG)));
    ms_transcode_vector(stored.get(), ms_format_of_nc_type(axis.nc_type, format), count, flags.get(),
                        format, 0);
    return flags;
}

// The points of a scan from position `start` on, and the flags directly behind them.
int read_vectors(MsFileState &file, qint64 start, MsScanRecord *scan)
{
    const auto [masses, times, intensities] = axes_of(file);
    const auto read = [&](const Axis &axis) {
        return read_vector(file, axis, start, scan->point_count).release();
    };

    Axis flag_axis = {MsVar_time_values, NC_LONG}; // of a file with neither axis: its read fails
    if (file.has_time_values) {
        scan->time_values = read(times);
        if (!scan->time_values)
            return -1;
        flag_axis = times;
    }
    if (file.has_mass_values) {
        scan->mass_values = read(masses);
        if (!scan->mass_values)
            return -1;
        flag_axis = masses;
    }
    scan->intensity_values = read(intensities);
    if (!scan->intensity_values)
        return -1;
    if (scan->flag_count < 1)
        return 0;

    const qint64 behind = start + scan->point_count;
    const auto flags = [&](const Axis &axis, qint32 format) {
        return read_flags(file, axis, behind, scan->flag_count, format).release();
    };
    scan->flagged_peaks = static_cast<qint32 *>(flags(flag_axis, MsLongFormat));
    if (!scan->flagged_peaks)
        return -1;
    scan->flag_values = static_cast<qint16 *>(flags(intensities, MsShortFormat));
    return scan->flag_values ? 0 : -1;
}

// The points at a place, once the numbers and counts are there.
int read_points(MsFileState &file, qint64 start, MsScanRecord *scan)
{
    ms_clear_vectors(scan);
    return scan->point_count < 1 ? 0 : read_vectors(file, start, scan);
}

int read_scan(MsFileState &file, MsScanRecord *scan)
{
    if (read_numbers(file, scan) == -1)
        return -1;

    qint32 scan_index = 0;
    if (read_counter(file, MsVar_scan_index, scan->scan_number, &scan_index) == -1
        || read_counter(file, MsVar_point_count, scan->scan_number, &scan->point_count) == -1)
        return -1;
    if (read_counter(file, MsVar_flag_count, scan->scan_number, &scan->flag_count) == -1)
        scan->flag_count = 0;
    return read_points(file, scan_index, scan);
}

int read_scan_at(MsFileState &file, const MsScanPlace &place, MsScanRecord *scan)
{
    if (place.points < 0 || read_numbers(file, scan) == -1)
        return -1;
    scan->point_count = place.points;
    scan->flag_count = std::max(place.flags, 0);
    return read_points(file, place.first, scan);
}

// Whether numbers of the column come without the library; a column that isn't there costs no read.
bool reads_alone(MsFileState &file, int slot, qint32 wanted)
{
    const MsShape *shape = file.column(slot).shape();
    if (!shape || !ms_is_number(shape->type))
        return true;
    const bool is_real = shape->type == NC_FLOAT || shape->type == NC_DOUBLE;
    return MsClassicBytes::can_convert(shape->type, ms_is_whole(wanted) && is_real ? NC_DOUBLE : wanted);
}

} // namespace

bool ms_reads_scans_alone(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file || !file->data.reads_classic_bytes())
        return false;
    bool alone = true;
    for (const MsVariableRow &row : ms_per_scan_table)
        alone = reads_alone(*file, row.slot, row.nc_type) && alone;
    for (const int counter : {MsVar_scan_index, MsVar_point_count, MsVar_flag_count})
        alone = reads_alone(*file, counter, NC_LONG) && alone;
    for (const Axis &axis : axes_of(*file))
        alone = reads_alone(*file, axis.slot, axis.nc_type) && alone;
    return alone;
}

int ms_read_scan_header(int ncid, MsScanRecord *scan)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    return scan ? read_numbers(*file, scan) : 0;
}

int ms_read_per_scan(int ncid, MsScanRecord *scan, MsLibraryRecord *library)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    if (scan && read_scan(*file, scan) == -1) {
        ms_tally_failure(*file, scan->scan_number);
        return -1;
    }
    if (scan)
        ms_tally_scan(*file, *scan);
    if (!library || file->experiment_type != MsLibrarySpectrum)
        return 0;
    return ms_read_rows(*file, ms_library_table, library->entry_index, library);
}

MsScanPlace ms_read_scan_place(int ncid, qint32 scan)
{
    MsScanPlace place = {MsMissingLong, MsMissingLong, MsMissingLong};
    MsFileState *file = ms_file_state(ncid);
    if (!file || scan < 0)
        return place;
    const auto counter = [&](int slot) {
        qint32 value = MsMissingLong;
        return read_counter(*file, slot, scan, &value) == -1 ? MsMissingLong : value;
    };
    place.first = counter(MsVar_scan_index);
    place.points = counter(MsVar_point_count);
    place.flags = counter(MsVar_flag_count);
    return place;
}

int ms_read_scan_at(int ncid, const MsScanPlace &place, MsScanRecord *scan)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file || !scan)
        return -1;
    if (read_scan_at(*file, place, scan) == -1) {
        ms_tally_failure(*file, scan->scan_number, &place);
        return -1;
    }
    ms_tally_scan(*file, *scan);
    return 0;
}

qint64 ms_count_positions(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    return file ? ms_shortest_axis(*file).value_or(0) : 0;
}
