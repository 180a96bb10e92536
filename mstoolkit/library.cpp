// Library entries: the description of the compound beside each spectrum of a library file.

#include "access_p.h"

int ms_read_library_entry(const MsFileRecord &file, MsLibraryRecord *library)
{
    for (const MsVariableRow &row : ms_library_table) {
        if (ms_read_row(file, row, library->entry_index, library) == -1)
            return -1;
    }
    return 0;
}

int ms_write_library_entry(const MsFileRecord &file, const MsLibraryRecord *library)
{
    for (const MsVariableRow &row : ms_library_table) {
        if (ms_write_row(file, row, library->entry_index, library) == -1)
            return -1;
    }
    return 0;
}
