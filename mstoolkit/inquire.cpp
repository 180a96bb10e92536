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

// The stored format of a value variable; the fallback type is that of an absent one.
qint32 inquire_format(int ncid, int varid, nc_type fallback)
{
    nc_type type = fallback;
    if (varid != -1)
        ncvarinq(ncid, varid, nullptr, &type, nullptr, nullptr, nullptr);
    return ms_format_of_nc_type(type, ms_format_of_nc_type(fallback, 0));
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
    file->dimensions[MsDim_scan_number] = inquire_dimension(ncid, "scan_number", 0);
    file->dimensions[MsDim_instrument_number] = inquire_dimension(ncid, "instrument_number", 0);
    file->dimensions[MsDim_group_number] = inquire_dimension(ncid, "group_number", 0);
    file->dimensions[MsDim_group_max_masses] = inquire_dimension(ncid, "group_max_masses", 0);
    return 0;
}

int ms_inquire_variables(int ncid)
{
    MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    inquire_rows(file, ms_error_table);
    inquire_rows(file, ms_per_scan_table);

    ms_set_variable(file, MsVar_scan_index, ncvarid(ncid, "scan_index"));
    ms_set_variable(file, MsVar_point_count, ncvarid(ncid, "point_count"));
    ms_set_variable(file, MsVar_flag_count, ncvarid(ncid, "flag_count"));
    ms_set_variable(file, MsVar_mass_values, ncvarid(ncid, "mass_values"));
    ms_set_variable(file, MsVar_time_values, ncvarid(ncid, "time_values"));
    ms_set_variable(file, MsVar_intensity_values, ncvarid(ncid, "intensity_values"));
    const qint32 *variables = file->variables;
    if (variables[MsVar_mass_values] != -1)
        file->has_mass_values = 1;
    if (variables[MsVar_time_values] != -1)
        file->has_time_values = 1;
    file->mass_format = inquire_format(ncid, variables[MsVar_mass_values], NC_SHORT);
    file->time_format = inquire_format(ncid, variables[MsVar_time_values], NC_SHORT);
    file->intensity_format = inquire_format(ncid, variables[MsVar_intensity_values], NC_LONG);

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
