// Private to the toolkit: what the file registry holds of an open file, its record and more.
#ifndef FILESTATE_P_H
#define FILESTATE_P_H

#include "column_p.h"
#include "filedata_p.h"
#include "mstoolkit.h"
#include "tally_p.h"

#include <array>
#include <cstddef>

// netCDF's older interface ends the process at the first failing call, unless told otherwise. An absent
// object is an everyday event here, and another user of the library in the same process may have
// turned the option back on.
inline void ms_let_failures_return()
{
    ncopts = 0;
}

struct MsFileState : MsFileRecord {
    explicit MsFileState(int id);

    // Forgets all that is known of the file but its record.
    void forget();

    // Returns the column of a slot; a new one if the record has another id by now.
    MsColumn &column(int slot)
    {
        MsColumn &column = columns[std::size_t(slot)];
        if (!column.is_of(variables[slot]))
            column = MsColumn(&data, variables[slot]);
        return column;
    }

    MsFileData data;
    MsTally tally;

private:
    std::array<MsColumn, MsVariableCount> columns;
};

// Returns whether the registry is there. It isn't once the process has torn it down.
bool ms_can_register();

// Returns the state of an open file, which every routine looks up once; null for an unknown id. From
// here on netCDF's failures return.
MsFileState *ms_file_state(int ncid);

#endif // FILESTATE_P_H
