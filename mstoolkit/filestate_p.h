// Private to the toolkit: what the registry really holds of an open file, beside its record.
#ifndef FILESTATE_P_H
#define FILESTATE_P_H

#include "classicheader_p.h"
#include "doubts_p.h"
#include "mstoolkit.h"

#include <fstream>
#include <limits>
#include <memory>
#include <vector>

// What a file stores under a variable id. The lengths are those of the first two dimensions, 1 for one
// that isn't there.
struct MsShape {
    nc_type type = NC_NAT;
    int rank = 0;
    std::size_t length[2] = {1, 1};
};

// One variable of a file that is only read. Shapes can't change then, and neighbouring scans' values of
// one variable lie side by side, while those of one scan lie a whole variable apart: asking the library
// anew for each scan costs several times what the scan's points do. So the shape is asked for once, and
// numbers over scan_number are read in stretches of many scans. So are points: the library reads a whole
// block of the file for each request, and masses and intensities of a scan lie far apart.
struct MsColumn {
    bool inquired = false; // whether the next two hold
    bool present = false;
    MsShape shape;
    bool refuses_stretches = false; // one couldn't be read, so each request is read by itself
    qint32 type = NC_NAT;           // of the numbers read ahead
    std::size_t first = 0;
    std::size_t count = 0;
    std::size_t next = 0; // of points: behind those last asked for
    std::vector<unsigned char> numbers;
};

struct MsFileState : MsFileRecord {
    // No variable can hold more bytes than this. A file of the newer kinds may claim any number of
    // elements that were never written; memory isn't made for those.
    quint64 most_bytes = std::numeric_limits<quint64>::max();
    // Of a classic file that is only read: where its data lie, and a handle that tells how long it is
    // now.
    std::unique_ptr<MsClassicLayout> layout;
    std::ifstream handle;
    // By MsVariableSlot; null for a file that is written.
    std::unique_ptr<MsColumn[]> columns;
    MsTally tally;
};

// Null for an unknown id.
MsFileState *ms_file_state(int ncid);

// The state of a record from the registry; all records that the toolkit's routines work on are.
inline const MsFileState &ms_state_of(const MsFileRecord &file)
{
    return static_cast<const MsFileState &>(file);
}

#endif // FILESTATE_P_H
