// Private to the toolkit: the data of one open file. All elements of its variables come in through
// MsFileData, which is the one place that knows what a file that is cut off still has: the library reads
// zeros behind the end of a file that is shorter than its header says.
#ifndef FILEDATA_P_H
#define FILEDATA_P_H

#include "classicbytes_p.h"
#include "classicheader_p.h"
#include "types_p.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

// What a file stores under a variable id.
struct MsShape {
    int rank() const { return int(length.size()); }

    nc_type type = NC_NAT;
    std::vector<std::size_t> length; // of each dimension, outermost first
};

// A part of one variable. `start` and `count` have a number for each of its `rank` dimensions, outermost
// first, and lie within its shape. From the third dimension on all of it is asked for.
struct MsSlab {
    int varid;
    int rank;
    const std::size_t *start;
    const std::size_t *count;
};

// Neighbouring elements of a variable of one dimension.
struct MsPart {
    std::size_t end() const { return start + count; }

    std::size_t start;
    std::size_t count;
};

enum class MsFetch {
    Read,
    None, // numbers that the wanted type can't hold, or that lie beyond the end of the file
    Failed
};

class MsFileData
{
public:
    // Of a file that counts as whole, and whose shapes may change.
    explicit MsFileData(int id) : ncid(id) { }

    int id() const { return ncid; }

    // From now on the data are those of a file that is only read, of another kind than the classic ones
    // and `length` bytes long.
    void open_read(quint64 length);

    // The same of a classic file: its bytes, and what ms_inspect_header made of them.
    void open_read(std::unique_ptr<MsClassicBytes> file, MsClassicLayout found);

    // Whether shapes and elements stay as they are, so that what is known of them can be kept.
    bool is_constant() const { return constant; }

    // Returns where the data of a classic file that is only read lie, and its length as far as it is
    // known; null for others.
    const MsClassicLayout *classic_layout() const { return layout ? &*layout : nullptr; }

    // Bytes that such a file lacks at its end.
    quint64 missing_bytes() const;

    // Returns whether such a file has only zeros behind the end that its header gives. More than a few
    // megabytes count as others.
    bool has_zeros_behind();

    // Takes note of a file that was cut since it was opened.
    void look_at_length();

    // Returns whether a variable can have so many bytes in a file of this length. A file of the newer
    // kinds may claim any number of elements that were never written; neither time nor memory is spent on
    // those.
    bool can_hold(quint64 bytes) const { return bytes <= most; }

    // Asks for the size of a dimension. Where the header leaves the number of records open, the library
    // has one as large as can be; this is the true one. False for an absent dimension.
    bool ask_length(int dimension, std::size_t *length) const;

    // Asks for the shape of a variable. False for an absent one.
    bool ask_shape(int varid, MsShape *shape) const;

    // How many of the first `count` elements of a variable of one dimension the file has now.
    std::size_t count_stored(int varid, std::size_t count);

    // Reads elements with conversion to `type`: NC_SHORT to NC_DOUBLE for a variable of numbers, or
    // NC_CHAR for one whose elements are a byte wide. `target` has room for all of them.
    MsFetch read(const MsSlab &slab, qint32 type, void *target);

    // Reads `count` numbers from `start` on of a variable of one dimension, as `type`, as far as they can
    // be had. Where the system refuses, they are read in ever smaller parts, down to what lies in one
    // sector of a disk; where the file ends before the last one, those before its end are read. `lost`
    // gets the parts that don't come, in their order. Only where nothing comes the whole isn't read.
    MsFetch read_parts(int varid, MsPart whole, qint32 type, void *target, std::vector<MsPart> *lost);

    // Reads the same as a new array. Null on failure; memory is made only for elements that the file has.
    MsBlock<void> read_array(const MsSlab &slab, qint32 type);

    // Reads that the system refused, and why the first one was (errno).
    quint64 refused_reads() const { return refusals + (classic ? classic->refusals() : 0); }
    int first_error() const { return error != 0 || !classic ? error : classic->first_error(); }

    // Whether somebody changed the file while it was open: what was read may be of two versions of it.
    bool has_changed() const { return classic && classic->has_changed(); }

    // Has the library read all numbers and texts from now on, for the two ways to be compared.
    void leave_to_library() { reads_bytes = false; }

    // Whether elements come from the bytes of a classic file, but for conversions that are the library's.
    bool reads_classic_bytes() const { return layout && reads_bytes; }

private:
    std::optional<MsFetch> read_bytes(const MsSlab &slab, qint32 type, void *target);
    MsFetch read_line(const MsClassicRun &run, qint32 type, void *target);
    MsFetch split(int varid, MsPart part, qint32 type, unsigned char *target, std::vector<MsPart> *lost);
    bool is_in_one_sector(int varid, MsPart part) const;
    const MsVariableExtent *extent_of(int varid) const;
    quint64 bytes_from(quint64 begin) const;
    bool has(const MsSlab &slab) const;
    int ask_library(const MsSlab &slab, qint32 type, void *target) const;

    int ncid;
    bool constant = false;
    bool reads_bytes = true;
    quint64 most = std::numeric_limits<quint64>::max(); // see can_hold
    quint64 refusals = 0;                               // of the library
    int error = 0;
    // Of a classic file that is only read: where its data lie, and its bytes.
    std::optional<MsClassicLayout> layout;
    std::unique_ptr<MsClassicBytes> classic;
};

#endif // FILEDATA_P_H
