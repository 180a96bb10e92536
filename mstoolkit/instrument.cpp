// The components of the instrument.

#include "rows_p.h"

namespace {

// Returns the component's index. A negative one means the only component; -1 if the file hasn't exactly
// one.
qint32 component_of(const MsFileRecord &file, const MsInstrumentRecord &instrument)
{
    if (instrument.component_index >= 0)
        return instrument.component_index;
    return file.dimensions[MsDim_instrument_number].size == 1 ? 0 : -1;
}

} // namespace

void ms_init_instrument(char release, MsInstrumentRecord *instrument)
{
    if (instrument)
        ms_clear_rows(release, ms_instrument_table, instrument);
}

int ms_read_instrument(int ncid, MsInstrumentRecord *instrument)
{
    MsFileState *file = ms_file_state(ncid);
    if (!instrument || !file)
        return -1;

    const qint32 component = component_of(*file, *instrument);
    if (component >= file->dimensions[MsDim_instrument_number].size)
        return -1;
    return ms_read_rows(*file, ms_instrument_table, component, instrument);
}

int ms_write_instrument(int ncid, const MsInstrumentRecord *instrument)
{
    MsFileState *file = ms_file_state(ncid);
    if (!instrument || !file)
        return -1;
    return ms_write_rows(*file, ms_instrument_table, component_of(*file, *instrument), instrument);
}
