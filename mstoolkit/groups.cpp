// Groups of monitored masses.

#include "define_p.h"
#include "field_p.h"
#include "inquire_p.h"
#include "rows_p.h"

#include <algorithm>
#include <cstddef>

namespace {

bool has_array(const MsVariableRow &row)
{
    return row.ndims == 2;
}

// Calls `use` for each array of a group, until one call returns false. Returns whether none did.
template <class Use> bool each_array(MsGroupRecord *group, Use use)
{
    return std::all_of(ms_group_table.begin(), ms_group_table.end(), [&](const MsVariableRow &row) {
        return !has_array(row) || use(ms_field<double *>(group, row.field));
    });
}

void release_arrays(MsGroupRecord *group)
{
    each_array(group, [](double *&array) {
        ms_free(array);
        array = nullptr;
        return true;
    });
}

void clear_arrays(MsGroupRecord *group)
{
    group->group_masses = nullptr;
    group->group_sampling_times = nullptr;
    group->group_delay_times = nullptr;
}

bool is_group(const MsFileState &file, const MsGroupRecord &group)
{
    return group.group_number >= 0 && group.group_number < file.dimensions[MsDim_group_number].size;
}

// Returns false where a file of that length can't hold such arrays, or they are too large. Some may be
// allocated then.
bool allocate_arrays(const MsFileState &file, MsGroupRecord *group)
{
    const auto width = quint32(file.dimensions[MsDim_group_max_masses].size);
    if (!file.data.can_hold(width * sizeof(double)))
        return false;
    return each_array(group, [width](double *&array) {
        array = static_cast<double *>(ms_alloc_array(width, NC_DOUBLE));
        return array != nullptr;
    });
}

// Reads the row's array of a group: missing values where the file lacks the variable, or has no numbers
// in it.
int read_array(MsFileState &file, const MsVariableRow &row, MsGroupRecord *group)
{
    const auto width = std::size_t(file.dimensions[MsDim_group_max_masses].size);
    double *array = ms_field<double *>(group, row.field);
    MsColumn &column = file.column(row.slot);
    const MsShape *shape = column.shape();
    if (shape && !ms_fits(*shape, row))
        return -1;
    if (shape && ms_is_number(shape->type))
        return column.line(std::size_t(group->group_number), width, array) ? 0 : -1;
    std::fill_n(array, width, MsMissingDouble);
    return 0;
}

int read_rows(MsFileState &file, MsGroupRecord *group)
{
    for (const MsVariableRow &row : ms_group_table) {
        const int status = has_array(row) ? read_array(file, row, group)
                                          : ms_read_row(file, row, group->group_number, group);
        if (status == -1)
            return -1;
    }

    // Places beyond the group's own masses are missing; without a count, all are.
    const qint32 width = file.dimensions[MsDim_group_max_masses].size;
    const qint32 used = std::clamp(group->group_mass_count, 0, width);
    each_array(group, [=](double *array) {
        std::fill(array + used, array + width, MsMissingDouble);
        return true;
    });
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

int ms_inquire_groups(int ncid, qint32 *group_count, qint32 *max_masses)
{
    MsFileState *file = ms_file_state(ncid);
    if (!group_count || !max_masses || !file)
        return -1;

    *group_count = 0;
    *max_masses = 0;
    const MsDimension &groups = file->dimensions[MsDim_group_number];
    const MsDimension &masses = file->dimensions[MsDim_group_max_masses];
    if (groups.id == -1 || masses.id == -1)
        return 0;

    *group_count = groups.size;
    *max_masses = masses.size;
    ms_inquire_rows(*file, ms_group_table);
    return 0;
}

int ms_read_group(int ncid, MsGroupRecord *group)
{
    MsFileState *file = ms_file_state(ncid);
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
    MsFileState *file = ms_file_state(ncid);
    if (!file || group_count < 1 || max_masses < 1)
        return -1;

    ncredef(ncid);
    if (ms_define_dimension(*file, MsDim_group_number, group_count) == -1
        || ms_define_dimension(*file, MsDim_group_max_masses, max_masses) == -1
        || ms_define_rows(*file, ms_group_table) == -1)
        return -1;
    ncendef(ncid);
    return 0;
}

int ms_write_group(int ncid, const MsGroupRecord *group)
{
    MsFileState *file = ms_file_state(ncid);
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
        if (ncvarput(ncid, file->variables[row.slot], start, count, ms_field<double *>(group, row.field))
            == -1)
            return -1;
    }
    return 0;
}
