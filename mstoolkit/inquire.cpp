// Finding the template's dimensions and variables in an existing file.

#include "access_p.h"

#include <algorithm>
#include <limits>

namespace {

// Sizes beyond 32 bits show as the largest number: readers then find the variables shorter or longer
// than expected, and nothing wraps.
MsDimension inquire_dimension(int ncid, const char *name, qint32 absent_size)
{
    constexpr std::size_t largest = std::numeric_limits<qint32>::max();
    const int id = ms_find_dimension(ncid, name);
    if (id == -1)
        return {-1, absent_size};
    std::size_t size = 0;
    ms_ask_length(ncid, id, &size);
    return {id, qint32(std::min(size, largest))};
}

void inquire_rows(MsFileRecord *file, const MsTable<MsVariableRow> &table)
{
    for (const MsVariableRow &row : table)
        ms_set_variable(file, row.slot, ms_find_variable(file->ncid, row.name));
}

// The stored format of a value variable; that of the row's type for an absent one.
qint32 inquire_format(const MsFileRecord &file, const MsVariableRow &row)
{
    nc_type type = row.nc_type;
    if (ms_variable(file, row) != -1)
        ncvarinq(file.ncid, ms_variable(file, row), nullptr, &type, nullptr, nullptr, nullptr);
    return ms_format_of_nc_type(type, ms_format_of_nc_type(row.nc_type, 0));
}

} // namespace

int ms_find_dimension(int ncid, const char *name)
{
    const int id = ncdimid(ncid, name);
    return id != -1 ? id : ncdimid(ncid, ms_dash_name(name).constData());
}

int ms_find_variable(int ncid, const char *name)
{
    const int id = ncvarid(ncid, name);
    return id != -1 ? id : ncvarid(ncid, ms_dash_name(name).constData());
}

int ms_inquire_dimensions(int ncid)
{
    MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    for (const MsDimensionRow &row : ms_dimension_table)
        file->dimensions[row.slot] = inquire_dimension(ncid, row.name, row.size);
    for (const MsDimensionRow &row : ms_counting_dimension_table)
        file->dimensions[row.slot] = inquire_dimension(ncid, row.name, row.size);
    return 0;
}

int ms_inquire_variables(int ncid)
{
    MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    inquire_rows(file, ms_error_table);
    inquire_rows(file, ms_per_scan_table);

    // These are known with underscores only.
    for (const MsTable<MsVariableRow> &table : {ms_counter_table, ms_value_table}) {
        for (const MsVariableRow &row : table)
            ms_set_variable(file, row.slot, ncvarid(ncid, row.name));
    }
    if (file->variables[MsVar_mass_values] != -1)
        file->has_mass_values = 1;
    if (file->variables[MsVar_time_values] != -1)
        file->has_time_values = 1;
    qint32 *formats[] = {&file->mass_format, &file->time_format, &file->intensity_format};
    for (int i = 0; i < ms_value_table.count; ++i)
        *formats[i] = inquire_format(*file, ms_value_table.first[i]);

    if (file->dimensions[MsDim_instrument_number].id != -1)
        inquire_rows(file, ms_instrument_table);

    const qint32 type = ms_read_enum_attribute(ncid, NC_GLOBAL, "experiment_type");
    if (type != -1)
        file->experiment_type = type;
    if (file->experiment_type == MsLibrarySpectrum)
        inquire_rows(file, ms_library_table);
    return 0;
}

int ms_inquire_groups(int ncid, qint32 *group_count, qint32 *max_masses)
{
    MsFileRecord *file = ms_file_record(ncid);
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
    inquire_rows(file, ms_group_table);
    return 0;
}

QByteArray ms_dash_name(const char *name)
{
    return QByteArray(name).replace('_', '-');
}
