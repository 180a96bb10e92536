// Finding the template's dimensions and variables in an existing file.

#include "inquire_p.h"

#include "variabletables_p.h"

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

// Both with one retry under the dashed spelling; -1 for an absent object.
int find_dimension(int ncid, const char *name)
{
    const int id = ncdimid(ncid, name);
    return id != -1 ? id : ncdimid(ncid, ms_dash_name(name).constData());
}

int find_variable(int ncid, const char *name)
{
    const int id = ncvarid(ncid, name);
    return id != -1 ? id : ncvarid(ncid, ms_dash_name(name).constData());
}

// Sizes beyond 32 bits show as the largest number: readers then find the variables shorter or longer
// than expected, and nothing wraps.
MsDimension inquire_dimension(const MsFileState &file, const MsDimensionRow &row)
{
    constexpr std::size_t largest = std::numeric_limits<qint32>::max();
    const int id = find_dimension(file.ncid, row.name);
    if (id == -1)
        return {-1, row.size};
    std::size_t size = 0;
    file.data.ask_length(id, &size);
    return {id, qint32(std::min(size, largest))};
}

// The stored format of a value variable; that of the row's type for an absent one.
qint32 inquire_format(const MsFileState &file, const MsVariableRow &row)
{
    nc_type type = row.nc_type;
    if (file.variables[row.slot] != -1)
        ncvarinq(file.ncid, file.variables[row.slot], nullptr, &type, nullptr, nullptr, nullptr);
    return ms_format_of_nc_type(type, ms_format_of_nc_type(row.nc_type, 0));
}

} // namespace

void ms_inquire_rows(MsFileState &file, const MsTable<MsVariableRow> &table)
{
    for (const MsVariableRow &row : table)
        file.variables[row.slot] = find_variable(file.ncid, row.name);
}

void ms_inquire_dimensions(MsFileState &file)
{
    for (const MsTable<MsDimensionRow> &table : {ms_dimension_table, ms_counting_dimension_table}) {
        for (const MsDimensionRow &row : table)
            file.dimensions[row.slot] = inquire_dimension(file, row);
    }
}

void ms_inquire_variables(MsFileState &file)
{
    ms_inquire_rows(file, ms_error_table);
    ms_inquire_rows(file, ms_per_scan_table);

    // These are known with underscores only.
    for (const MsTable<MsVariableRow> &table : {ms_counter_table, ms_value_table}) {
        for (const MsVariableRow &row : table)
            file.variables[row.slot] = ncvarid(file.ncid, row.name);
    }
    if (file.variables[MsVar_mass_values] != -1)
        file.has_mass_values = 1;
    if (file.variables[MsVar_time_values] != -1)
        file.has_time_values = 1;
    qint32 *formats[] = {&file.mass_format, &file.time_format, &file.intensity_format};
    for (int i = 0; i < ms_value_table.count; ++i)
        *formats[i] = inquire_format(file, ms_value_table.first[i]);

    if (file.dimensions[MsDim_instrument_number].id != -1)
        ms_inquire_rows(file, ms_instrument_table);

    const qint32 type = ms_read_enum_attribute(file.ncid, NC_GLOBAL, "experiment_type");
    if (type != -1)
        file.experiment_type = type;
    if (file.experiment_type == MsLibrarySpectrum)
        ms_inquire_rows(file, ms_library_table);
}

int ms_inquire_dimensions(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    ms_inquire_dimensions(*file);
    return 0;
}

int ms_inquire_variables(int ncid)
{
    MsFileState *file = ms_file_state(ncid);
    if (!file)
        return -1;
    ms_inquire_variables(*file);
    return 0;
}

QByteArray ms_dash_name(const char *name)
{
    return QByteArray(name).replace('_', '-');
}
