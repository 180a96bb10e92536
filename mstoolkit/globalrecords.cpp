// Clearing and releasing the global records.

#include "globalrecords_p.h"

#include "field_p.h"
#include "types_p.h"

namespace {

void clear(char release, const MsTable<MsAttributeRow> &table, void *record)
{
    if (!record)
        return;
    for (const MsAttributeRow &row : table)
        ms_clear_attribute(release, row, record);
}

} // namespace

void ms_clear_attribute(char release, const MsAttributeRow &row, void *record)
{
    if (row.nc_type != NC_CHAR) {
        ms_set_missing(row.nc_type, &ms_field<char>(record, row.field), 0);
    } else if (row.enumerated) {
        ms_field<qint32>(record, row.field) = row.default_code;
    } else {
        ms_clear_text(release, &ms_field<char *>(record, row.field));
    }
}

void ms_init_global(char release, MsAdminRecord *admin, MsSampleRecord *sample, MsTestRecord *test,
                    MsRawGlobalRecord *raw)
{
    clear(release, ms_admin_table, admin);
    clear(release, ms_sample_table, sample);
    clear(release, ms_test_table, test);
    clear(release, ms_raw_table, raw);
}
