// Defining the template's dimensions and variables in a new file.

#include "define_p.h"

namespace {

// A variable over one of the record's dimensions, its id stored under `slot`.
int define_plain(MsFileRecord *file, int slot, const char *name, qint32 nc_type, int dimension)
{
    return ms_define_variable(file, {slot, name, nc_type, 0, 1, {dimension, -1}});
}

} // namespace

int ms_define_dimension(MsFileRecord *file, int slot, const char *name, qint32 size)
{
    MsDimension &dimension = file->dimensions[slot];
    dimension.id = ncdimdef(file->ncid, name, size);
    if (dimension.id == -1)
        return -1;
    dimension.size = size;
    return 0;
}

int ms_define_variable(MsFileRecord *file, const MsVariableRow &row)
{
    int ids[2] = {-1, -1};
    for (int i = 0; i < row.ndims; ++i)
        ids[i] = file->dimensions[row.dims[i]].id;
    file->variables[row.slot] = ncvardef(file->ncid, row.name, row.nc_type, row.ndims, ids);
    return file->variables[row.slot] == -1 ? -1 : 0;
}

int ms_define_variables_of(MsFileRecord *file, const MsTable<MsVariableRow> &table)
{
    for (const MsVariableRow &row : table) {
        if (ms_define_variable(file, row) == -1)
            return -1;
    }
    return 0;
}

int ms_define_dimensions(int ncid, qint32 scan_count, qint32 instrument_count)
{
    if (scan_count < 1)
        return -1;
    MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    for (const MsDimensionRow &row : ms_dimension_table) {
        if (ms_define_dimension(file, row.slot, row.name, row.size) == -1)
            return -1;
    }
    if (ms_define_dimension(file, MsDim_scan_number, "scan_number", scan_count) == -1)
        return -1;
    if (instrument_count < 1) {
        file->dimensions[MsDim_instrument_number] = {-1, 0};
        return 0;
    }
    return ms_define_dimension(file, MsDim_instrument_number, "instrument_number", instrument_count);
}

int ms_define_variables(int ncid, qint32 experiment_type, qint32 mass_format, qint32 time_format,
                        qint32 intensity_format, qint32 has_mass_values, qint32 has_time_values)
{
    if (!has_mass_values && !has_time_values)
        return -1;
    MsFileRecord *file = ms_file_record(ncid);
    if (!file)
        return -1;

    file->experiment_type = experiment_type;
    file->mass_format = mass_format;
    file->time_format = time_format;
    file->intensity_format = intensity_format;
    file->has_mass_values = has_mass_values;
    file->has_time_values = has_time_values;

    if (ms_define_variables_of(file, ms_error_table) == -1
        || ms_define_variables_of(file, ms_per_scan_table) == -1
        || define_plain(file, MsVar_scan_index, "scan_index", NC_LONG, MsDim_scan_number) == -1
        || define_plain(file, MsVar_point_count, "point_count", NC_LONG, MsDim_scan_number) == -1
        || define_plain(file, MsVar_flag_count, "flag_count", NC_LONG, MsDim_scan_number) == -1)
        return -1;

    file->variables[MsVar_mass_values] = -1;
    if (has_mass_values
        && define_plain(file, MsVar_mass_values, "mass_values",
                        ms_nc_type_of_format(mass_format, NC_SHORT), MsDim_point_number)
            == -1)
        return -1;
    file->variables[MsVar_time_values] = -1;
    if (has_time_values
        && define_plain(file, MsVar_time_values, "time_values",
                        ms_nc_type_of_format(time_format, NC_SHORT), MsDim_point_number)
            == -1)
        return -1;
    if (define_plain(file, MsVar_intensity_values, "intensity_values",
                     ms_nc_type_of_format(intensity_format, NC_LONG), MsDim_point_number)
        == -1)
        return -1;

    if (file->dimensions[MsDim_instrument_number].id != -1
        && ms_define_variables_of(file, ms_instrument_table) == -1)
        return -1;
    if (experiment_type == MsLibrarySpectrum && ms_define_variables_of(file, ms_library_table) == -1)
        return -1;
    return 0;
}
