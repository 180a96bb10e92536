// Walking the tables of variables.

#include "rows_p.h"

#include "field_p.h"
#include "text_p.h"

#include "messageloggerinterface.h"

#include <cstddef>

bool ms_fits(const MsShape &shape, const MsVariableRow &row)
{
    if (shape.type != row.nc_type) {
        MessageLoggerInterface::Warning(
            QStringLiteral("Data type mismatch while loading <b>%1</b>").arg(QLatin1String(row.name)),
            nullptr);
    }
    if (shape.rank() == row.ndims)
        return true;
    MessageLoggerInterface::Error(
        QStringLiteral("Size type mismatch while loading <b>%1</b>").arg(QLatin1String(row.name)),
        nullptr);
    return false;
}

int ms_read_row(MsFileState &file, const MsVariableRow &row, qint32 index, void *record)
{
    if (index < 0)
        return -1;

    MsColumn &column = file.column(row.slot);
    void *field = &ms_field<char>(record, row.field);
    if (column.take_ahead(std::size_t(index), row.nc_type, field))
        return 0;
    const MsShape *shape = column.shape();
    if (shape && !ms_fits(*shape, row))
        return -1;
    if (row.nc_type == NC_CHAR) {
        const MsTextPlace place = {file.variables[row.slot], index, -1,
                                   file.dimensions[row.dims[1]].size};
        ms_field<char *>(record, row.field) = shape ? ms_read_text(file.data, *shape, place) : nullptr;
        return 0;
    }
    const MsFetch result = shape ? column.number(std::size_t(index), row.nc_type, field) : MsFetch::None;
    if (result == MsFetch::None)
        ms_set_missing(row.nc_type, field, 0);
    return result == MsFetch::Failed ? -1 : 0;
}

int ms_write_row(MsFileState &file, const MsVariableRow &row, qint32 index, const void *record)
{
    if (index < 0)
        return -1;

    const int varid = file.variables[row.slot];
    if (row.nc_type == NC_CHAR) {
        const MsTextPlace place = {varid, index, -1, file.dimensions[row.dims[1]].size};
        return ms_write_text(file.data, place, ms_field<char *>(record, row.field));
    }
    const long at = index;
    return ncvarput1(file.ncid, varid, &at, &ms_field<char>(record, row.field)) == -1 ? -1 : 0;
}

int ms_read_rows(MsFileState &file, const MsTable<MsVariableRow> &table, qint32 index, void *record)
{
    for (const MsVariableRow &row : table) {
        if (ms_read_row(file, row, index, record) == -1)
            return -1;
    }
    return 0;
}

int ms_write_rows(MsFileState &file, const MsTable<MsVariableRow> &table, qint32 index,
                  const void *record)
{
    for (const MsVariableRow &row : table) {
        if (ms_write_row(file, row, index, record) == -1)
            return -1;
    }
    return 0;
}

void ms_clear_rows(char release, const MsTable<MsVariableRow> &table, void *record)
{
    for (const MsVariableRow &row : table) {
        if (row.nc_type == NC_CHAR)
            ms_clear_text(release, &ms_field<char *>(record, row.field));
        else
            ms_set_missing(row.nc_type, &ms_field<char>(record, row.field), 0);
    }
}
