// Defining the template's dimensions and variables in a new file.

#include "define_p.h"

#include "variabletables_p.h"

namespace {

int define(MsFileState &file, const MsDimensionRow &row, qint32 size)
{
    MsDimension &dimension = file.dimensions[row.slot];
    dimension.id = ncdimdef(file.ncid, row.name, size);
    if (dimension.id == -1)
        return -1;
    dimension.size = size;
    return 0;
}

int define(MsFileState &file, const MsVariableRow &row)
{
    int ids[2] = {-1, -1};
    for (int i = 0; i < row.ndims; ++i)
        ids[i] = file.dimensions[row.dims[i]].id;
    file.variables[row.slot] = ncvardef(file.ncid, row.name, row.nc_type, row.ndims, ids);
    return file.variables[row.slot] == -1 ? -1 : 0;
}

// A value variable in a data format, if the file is to have it.
int define_values(MsFileState &file, MsVariableRow row, bool is_wanted, qint32 format)
{
    file.variables[row.slot] = -1;
    row.nc_type = ms_nc_type_of_format(format, row.nc_type);
    return is_wanted ? define(file, row) : 0;
}

} // namespace

int ms_define_dimension(MsFileState &file, int slot, qint32 size)
{
    for (const MsDimensionRow &row : ms_counting_dimension_table) {
        if (row.slot == slot)
            return define(file, row, size);
    }
    return -1;
}

int ms_define_rows(MsFileState &file, const MsTable<MsVariableRow> &table)
{
    for (const MsVariableRow &row : table) {
        if (define(file, row) == -1)
            return -1;
    }
    return 0;
}

int ms_define_dimensions(MsFileState &file, qint32 scan_count, qint32 instrument_count)
{
    if (scan_count < 1)
        return -1;
    for (const MsDimensionRow &row : ms_dimension_table) {
        if (define(file, row, row.size) == -1)
            return -1;
    }
    if (ms_define_dimension(file, MsDim_scan_number, scan_count) == -1)
        return -1;
    if (instrument_count < 1) {
        file.dimensions[MsDim_instrument_number] = {-1, 0};
        return 0;
    }
    return ms_define_dimension(file, MsDim_instrument_number, instrument_count);
}

int ms_define_variables(MsFileState &file, qint32 experiment_type, qint32 mass_format, qint32 time_format,
                        qint32 intensity_format, qint32 has_mass_values, qint32 has_time_values)
{
    if (!has_mass_values && !has_time_values)
        return -1;
    file.experiment_type = experiment_type;
    file.mass_format = mass_format;
    file.time_format = time_format;
    file.intensity_format = intensity_format;
    file.has_mass_values = has_mass_values;
    file.has_time_values = has_time_values;

    if (ms_define_rows(file, ms_error_table) == -1 || ms_define_rows(file, ms_per_scan_table) == -1
        || ms_define_rows(file, ms_counter_table) == -1)
        return -1;
    const MsVariableRow *values = ms_value_table.first;
    if (define_values(file, values[0], has_mass_values != 0, mass_format) == -1
        || define_values(file, values[1], has_time_values != 0, time_format) == -1
        || define_values(file, values[2], true, intensity_format) == -1)
        return -1;

    if (file.dimensions[MsDim_instrument_number].id != -1
        && ms_define_rows(file, ms_instrument_table) == -1)
        return -1;
    return experiment_type == MsLibrarySpectrum ? ms_define_rows(file, ms_library_table) : 0;
}

int ms_define_dimensions(int ncid, qint32 scan_count, qint32 instrument_count)
{
    MsFileState *file = ms_file_state(ncid);
    return file ? ms_define_dimensions(*file, scan_count, instrument_count) : -1;
}

int ms_define_variables(int ncid, qint32 experiment_type, qint32 mass_format, qint32 time_format,
                        qint32 intensity_format, qint32 has_mass_values, qint32 has_time_values)
{
    MsFileState *file = ms_file_state(ncid);
    return file ? ms_define_variables(*file, experiment_type, mass_format, time_format, intensity_format,
                                      has_mass_values, has_time_values)
                : -1;
}
