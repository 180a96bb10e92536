// The components of the instrument.

#include "access_p.h"

namespace {

// A negative index stands for the only component of a file with one. -1 in any other file.
qint32 component_of(const MsFileRecord &file, const MsInstrumentRecord &instrument)
{
    if (instrument.component_index >= 0)
        return instrument.component_index;
    return file.dimensions[MsDim_instrument_number].size == 1 ? 0 : -1;
}

} // namespace

void ms_init_instrument(char release, MsInstrumentRecord *instrument)
{
    if (!instrument)
        return;
    for (const MsVariableRow &row : ms_instrument_table)
        ms_clear_row(release, row, instrument);
}

int ms_read_instrument(int ncid, MsInstrumentRecord *instrument)
{
    const MsFileRecord *file = ms_file_to_read(ncid);
    if (!instrument || !file)
        return -1;

    const qint32 component = component_of(*file, *instrument);
    if (component >= file->dimensions[MsDim_instrument_number].size)
        return -1;
    for (const MsVariableRow &row : ms_instrument_table) {
        if (ms_read_row(*file, row, component, instrument) == -1)
            return -1;
    }
    return 0;
}

int ms_write_instrument(int ncid, const MsInstrumentRecord *instrument)
{
    const MsFileRecord *file = ms_file_record(ncid);
    if (!instrument || !file)
        return -1;

    const qint32 component = component_of(*file, *instrument);
    for (const MsVariableRow &row : ms_instrument_table) {
        if (ms_write_row(*file, row, component, instrument) == -1)
            return -1;
    }
    return 0;
}
