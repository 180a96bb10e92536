// Writing one scan.

#include "rows_p.h"

#include <algorithm>
#include <limits>

namespace {

int write_numbers(MsFileState &file, const MsScanRecord &scan)
{
    if (ms_write_rows(file, ms_per_scan_table, scan.scan_number, &scan) == -1)
        return -1;

    const long at = scan.scan_number;
    const auto write = [&](int slot, qint32 value) {
        return ncvarput1(file.ncid, file.variables[slot], &at, &value);
    };
    if (write(MsVar_point_count, scan.point_count) == -1 || write(MsVar_flag_count, scan.flag_count) == -1
        || write(MsVar_scan_index, file.next_point_index) == -1)
        return -1;
    return 0;
}

// Writes `count` elements, in the file's format, behind the points written so far.
int write_stretch(const MsFileRecord &file, int slot, qint32 count, const void *vector)
{
    const long start = file.next_point_index;
    const long size = count;
    return ncvarput(file.ncid, file.variables[slot], &start, &size, vector);
}

// The same for flags, which have a format of their own in memory. `type` is the variable's.
int write_flags(const MsFileRecord &file, int slot, qint32 type, qint32 count, const void *flags,
                qint32 format)
{
    const qint32 stored_format = ms_format_of_nc_type(type, format);
    if (stored_format == format)
        return write_stretch(file, slot, count, flags);

    const MsBlock<void> converted(ms_alloc_array(quint32(count), type));
    if (!converted)
        return -1;
    ms_transcode_vector(flags, format, count, converted.get(), stored_format, 0);
    return write_stretch(file, slot, count, converted.get());
}

// The flags behind the points. Their axis goes by the scan's vector, not by what the file has.
int write_all_flags(const MsFileRecord &file, const MsScanRecord &scan)
{
    const bool by_mass = scan.mass_values != nullptr;
    const int axis = by_mass ? MsVar_mass_values : MsVar_time_values;
    const qint32 axis_type =
        ms_nc_type_of_format(by_mass ? file.mass_format : file.time_format, NC_SHORT);
    if (write_flags(file, axis, axis_type, scan.flag_count, scan.flagged_peaks, MsLongFormat) == -1)
        return -1;
    const qint32 type = ms_nc_type_of_format(file.intensity_format, NC_LONG);
    return write_flags(file, MsVar_intensity_values, type, scan.flag_count, scan.flag_values,
                       MsShortFormat);
}

int write_points(const MsFileRecord &file, const MsScanRecord &scan)
{
    const qint32 count = scan.point_count;
    if (write_stretch(file, MsVar_intensity_values, count, scan.intensity_values) == -1)
        return -1;
    if (scan.mass_values && file.has_mass_values
        && write_stretch(file, MsVar_mass_values, count, scan.mass_values) == -1)
        return -1;
    if (scan.time_values && file.has_time_values
        && write_stretch(file, MsVar_time_values, count, scan.time_values) == -1)
        return -1;
    return 0;
}

// Whether the scan brings what its counts promise, and its last position can be counted.
bool is_complete(const MsFileRecord &file, const MsScanRecord &scan)
{
    if (scan.point_count < 1)
        return true;
    if (!scan.intensity_values)
        return false;
    if (scan.flag_count > 0 && (!scan.flagged_peaks || !scan.flag_values))
        return false;
    const qint64 end = qint64(file.next_point_index) + scan.point_count + std::max(scan.flag_count, 0);
    return end <= std::numeric_limits<qint32>::max();
}

int write_scan(MsFileState &file, const MsScanRecord &scan)
{
    if (!is_complete(file, scan))
        return -1;
    if (write_numbers(file, scan) == -1)
        return -1;
    if (scan.point_count < 1)
        return 0;

    if (write_points(file, scan) == -1)
        return -1;
    file.next_point_index += scan.point_count;
    if (scan.flag_count < 1)
        return 0;

    if (write_all_flags(file, scan) == -1)
        return -1;
    file.next_point_index += scan.flag_count;
    return 0;
}

} // namespace

int ms_write_per_scan(int ncid, const MsScanRecord *scan, const MsLibraryRecord *library)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    if (scan && write_scan(*file, *scan) == -1)
        return -1;
    if (!library || file->experiment_type != MsLibrarySpectrum)
        return 0;
    return ms_write_rows(*file, ms_library_table, library->entry_index, library);
}
