// Private to the toolkit: the bytes of a file, and the numbers in them where it is of the classic kinds
// (CDF-1, CDF-2, CDF-5). The netCDF library reads the records of an unlimited dimension one by one, and
// returns zeros where the system hands over less than was asked for. These reads are large ones,
// continued where they come back short, and what doesn't come is a failure.
//
// The file isn't mapped: one that is cut while it is mapped ends the process.
#ifndef CLASSICBYTES_P_H
#define CLASSICBYTES_P_H

#include "types_p.h"

#include <QtGlobal>

#include <cstddef>
#include <vector>

// Numbers of one variable that lie at equal distances.
struct MsClassicRun {
    nc_type type;   // as stored, NC_BYTE to NC_UINT64 but not NC_CHAR
    quint64 begin;  // place of the first one in the file
    quint64 stride; // bytes from one to the next
    quint64 lead;   // bytes of the same record before the first one; 0 outside records
    std::size_t count;
};

// What tells a file from another one, and from itself once somebody has changed it.
struct MsFileStamp {
    bool operator==(const MsFileStamp &other) const
    {
        return device == other.device && file == other.file && length == other.length
            && seconds == other.seconds && nanoseconds == other.nanoseconds;
    }

    quint64 device = 0;
    quint64 file = 0;
    quint64 length = 0;
    qint64 seconds = 0; // of the last change
    qint64 nanoseconds = 0;
};

class MsClassicBytes
{
public:
    enum class Result {
        Read,
        OutOfRange, // one of them can't be held by the wanted type
        EndOfFile,  // the file ends before the last one
        Failed      // the system refused
    };

    MsClassicBytes() = default;
    ~MsClassicBytes() { close(); }
    Q_DISABLE_COPY(MsClassicBytes)

    // Opens `path` and takes note of its length and time. Returns false where the system refuses.
    bool open(const char *path);
    void close();
    bool is_open() const { return descriptor != -1; }

    // Returns whether `path` is the file that was opened, and nobody has changed it since.
    bool is_of(const char *path) const;

    // Returns the length that the file has now; 0 if the system doesn't tell.
    quint64 length() const;

    // Returns whether somebody has changed the file since it was opened.
    bool has_changed() const;

    // Reads that the system refused, and why the first one was (errno; 0 where there was none). They
    // count even where all that was asked for came at a second attempt. An end of the file before its
    // length counts as EIO.
    quint64 refusals() const { return refused; }
    int first_error() const { return error; }
    void note_refusal(int why);

    // Returns whether numbers of type `stored` come as numbers of `type`, NC_SHORT to NC_DOUBLE, in the
    // same way as from netCDF. What it leaves to C++, such as whole numbers of floats beyond their range,
    // isn't repeated here.
    static bool can_convert(nc_type stored, qint32 type);

    // Reads `size` bytes as they are. Small pieces that follow each other come from one read of the file.
    Result read_bytes(quint64 place, std::size_t size, void *target);

    // Reads all numbers of a run as `type`, for which can_convert has to be true, into `target`, which
    // has room for them.
    Result read(const MsClassicRun &run, qint32 type, void *target);

private:
    Result fetch(quint64 place, std::size_t size, unsigned char *target);
    std::size_t fill(quint64 place, std::size_t size, unsigned char *target, Result *why);
    bool is_in_block(quint64 place, std::size_t size) const;
    Result ask_block(quint64 place, std::size_t size, quint64 from, std::size_t most);
    void look_for_change();
    Result read_side_by_side(const MsClassicRun &run, qint32 type, void *target);
    Result read_records(const MsClassicRun &run, qint32 type, void *target);
    Result read_far_apart(const MsClassicRun &run, qint32 type, void *target);

    int descriptor = -1;
    quint64 refused = 0;
    int error = 0;
    bool changed = false;
    MsFileStamp opened;
    std::vector<unsigned char> block; // bytes of the file from block_begin on
    quint64 block_begin = 0;
    std::size_t block_size = 0;
};

#endif // CLASSICBYTES_P_H
