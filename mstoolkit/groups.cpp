// Groups of monitored masses.

#include "define_p.h"

#include <algorithm>

namespace {

bool has_array(const MsVariableRow &row)
{
    return row.ndims == 2;
}

void release_arrays(MsGroupRecord *group)
{
    for (const MsVariableRow &row : ms_group_table) {
        if (!has_array(row))
            continue;
        double *&array = ms_field<double *>(group, row.field);
        ms_free(array);
        array = nullptr;
    }
}

void clear_arrays(MsGroupRecord *group)
{
    group->group_masses = nullptr;
    group->group_sampling_times = nullptr;
    group->group_delay_times = nullptr;
}

bool is_group(const MsFileRecord &file, const MsGroupRecord &group)
{
    return group.group_number >= 0 && group.group_number < file.dimensions[MsDim_group_number].size;
}

// False where a file of that length can't hold such arrays; some may be allocated then.
bool allocate_arrays(const MsFileRecord &file, MsGroupRecord *group)
{
    const qint32 width = file.dimensions[MsDim_group_max_masses].size;
    if (quint64(width) * sizeof(double) > ms_state_of(file).most_bytes)
        return false;
    for (const MsVariableRow &row : ms_group_table) {
        if (!has_array(row))
            continue;
        double *array = static_cast<double *>(ms_alloc_array(quint32(width), NC_DOUBLE));
        if (!array)
            return false;
        ms_field<double *>(group, row.field) = array;
    }
    return true;
}

// The row's array of a group: missing values where the file lacks the variable, or has no numbers in it.
int read_array(const MsFileRecord &file, const MsVariableRow &row, MsGroupRecord *group)
{
    const qint32 width = file.dimensions[MsDim_group_max_masses].size;
    double *array = ms_field<double *>(group, row.field);
    const MsPresence presence = ms_check_variable(file, row);
    if (presence == MsPresence::WrongRank)
        return -1;
    MsShape shape;
    if (presence == MsPresence::Present && ms_inquire_shape(file, row.slot, &shape)
        && ms_is_number(shape.type))
        return ms_read_line(file, row.slot, group->group_number, width, array);
    std::fill_n(array, width, MsMissingDouble);
    return 0;
}

int read_rows(const MsFileRecord &file, MsGroupRecord *group)
{
    const qint32 width = file.dimensions[MsDim_group_max_masses].size;
    for (const MsVariableRow &row : ms_group_table) {
        const int status = has_array(row) ? read_array(file, row, group)
                                          : ms_read_row(file, row, group->group_number, group);
        if (status == -1)
            return -1;
    }

    // Places beyond the group's own masses are missing; without a count, all are.
    const qint32 used = std::clamp(group->group_mass_count, 0, width);
    for (const MsVariableRow &row : ms_group_table) {
        if (has_array(row)) {
            double *array = ms_field<double *>(group, row.field);
            std::fill(array + used, array + width, MsMissingDouble);
        }
    }
    return 0;
}

} // namespace

void ms_init_group(char release, MsGroupRecord *group)
{
    if (!group)
        return;
    if (release)
        release_arrays(group);
    group->group_number = MsMissingLong;
    group->group_mass_count = MsMissingLong;
    group->group_starting_scan = MsMissingLong;
    clear_arrays(group);
}

int ms_read_group(int ncid, MsGroupRecord *group)
{
    const MsFileRecord *file = ms_file_to_read(ncid);
    if (!file || !group || !is_group(*file, *group))
        return -1;

    clear_arrays(group);
    if (allocate_arrays(*file, group) && read_rows(*file, group) == 0)
        return 0;
    release_arrays(group);
    group->group_mass_count = 0;
    return -1;
}

int ms_define_groups(int ncid, qint32 group_count, qint32 max_masses)
{
    MsFileRecord *file = ms_file_record(ncid);
    if (!file || group_count < 1 || max_masses < 1)
        return -1;

    ncredef(ncid);
    if (ms_define_dimension(file, MsDim_group_number, group_count) == -1
        || ms_define_dimension(file, MsDim_group_max_masses, max_masses) == -1
        || ms_define_variables_of(file, ms_group_table) == -1)
        return -1;
    ncendef(ncid);
    return 0;
}

int ms_write_group(int ncid, const MsGroupRecord *group)
{
    const MsFileRecord *file = ms_file_record(ncid);
    if (!file || !group || !is_group(*file, *group))
        return -1;
    if (!group->group_masses || !group->group_sampling_times || !group->group_delay_times)
        return -1;

    for (const MsVariableRow &row : ms_group_table) {
        if (!has_array(row)) {
            if (ms_write_row(*file, row, group->group_number, group) == -1)
                return -1;
            continue;
        }
        const long start[2] = {group->group_number, 0};
        const long count[2] = {1, file->dimensions[MsDim_group_max_masses].size};
        if (ncvarput(ncid, ms_variable(*file, row), start, count, ms_field<double *>(group, row.field))
            == -1)
            return -1;
    }
    return 0;
}
