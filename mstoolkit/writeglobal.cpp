// Writing the global records to a new file.

#include "field_p.h"
#include "msformat.h"
#include "rows_p.h"

#include <cstring>

namespace {

// What the first four fields of the administrative record are in every file that is written.
// clang-format off
constexpr struct {
    char *MsAdminRecord::*field;
    const char *text;
} fixed_texts[] = {
    {&MsAdminRecord::dataset_completeness, "C1+C2"},
    {&MsAdminRecord::ms_template_revision, "1.0.1"},
    {&MsAdminRecord::netcdf_revision,      "2.3.2"},
    {&MsAdminRecord::languages,            "English"},
};
// clang-format on

// A number is missing by its whole part: -9999.5 is missing, too. The test is a range, since NaN, and
// what lies beyond 32 bits, has no whole part to compare.
bool is_missing(double value)
{
    return value <= MsMissingDouble && value > MsMissingDouble - 1.0;
}

// The value of a field as an attribute holds it; null where there is none to write.
const void *value_of(const MsAttributeRow &row, const void *record, int *length)
{
    if (row.nc_type == NC_CHAR) {
        const char *text = row.enumerated ? ms_enum_text(ms_field<qint32>(record, row.field))
                                          : ms_field<char *>(record, row.field);
        *length = text ? int(std::strlen(text)) + 1 : 0;
        return text;
    }
    *length = 1;
    return ms_with_format(ms_format_of_nc_type(row.nc_type, 0), &ms_field<char>(record, row.field),
                          [](const auto *number) -> const void * {
                              return is_missing(double(*number)) ? nullptr : number;
                          });
}

int write_table(const MsFileState &file, const MsTable<MsAttributeRow> &table, const void *record)
{
    for (const MsAttributeRow &row : table) {
        int length = 0;
        const void *value = value_of(row, record, &length);
        if (!value)
            continue;
        const int holder = row.variable == -1 ? NC_GLOBAL : file.variables[row.variable];
        if (ncattput(file.ncid, holder, row.name, row.nc_type, length, value) == -1)
            return -1;
    }
    return 0;
}

int write_admin(const MsFileState &file, MsAdminRecord *admin)
{
    for (const auto &fixed : fixed_texts)
        admin->*fixed.field = const_cast<char *>(fixed.text); // only read below
    const int status = write_table(file, ms_admin_table, admin);
    for (const auto &fixed : fixed_texts)
        admin->*fixed.field = nullptr;
    return status;
}

int write_error_log(MsFileState &file, const MsAdminRecord &admin)
{
    const qint32 lines = file.dimensions[MsDim_error_number].size;
    for (qint32 i = 0; i < lines; ++i) {
        if (ms_write_rows(file, ms_error_table, i, &admin) == -1)
            return -1;
    }
    return 0;
}

} // namespace

int ms_write_global(int ncid, MsAdminRecord *admin, const MsSampleRecord *sample,
                    const MsTestRecord *test, const MsRawGlobalRecord *raw)
{
    MsFileState *file = ms_file_state(ncid);
    if (!admin || !sample || !test || !raw || !file)
        return -1;

    ncredef(ncid);
    if (write_admin(*file, admin) == -1 || write_table(*file, ms_sample_table, sample) == -1
        || write_table(*file, ms_test_table, test) == -1 || write_table(*file, ms_raw_table, raw) == -1)
        return -1;
    ncendef(ncid);
    return write_error_log(*file, *admin);
}
