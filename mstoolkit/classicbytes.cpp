// Reading the bytes of a classic file.

#include "classicbytes_p.h"

#include "storednumbers_p.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

// How much of a file is read at once, and how far apart the numbers of a variable may lie for whole
// records to be read. Both were measured: larger blocks fall out of the processor's nearest memory before
// their last numbers are used.
constexpr std::size_t most_bytes_at_once = 1 << 18;
constexpr quint64 widest_record = 256;

// The same of what isn't a variable of numbers: a header's words, texts.
constexpr std::size_t least_bytes_at_once = 1 << 12;

// A read that is interrupted for ever is one that fails.
constexpr int most_interruptions = 1000;

#ifdef Q_OS_WIN
using StatBuffer = struct _stat64;

int open_file(const char *path)
{
    return _open(path, _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

void close_file(int descriptor)
{
    _close(descriptor);
}

qint64 read_at(int descriptor, quint64 place, unsigned char *target, std::size_t size)
{
    if (_lseeki64(descriptor, qint64(place), SEEK_SET) == -1)
        return -1;
    return _read(descriptor, target, unsigned(std::min<std::size_t>(size, 1 << 30)));
}

int stat_of(int descriptor, StatBuffer *buffer)
{
    return _fstat64(descriptor, buffer);
}

int stat_of(const char *path, StatBuffer *buffer)
{
    return _stat64(path, buffer);
}

qint64 nanoseconds_of(const StatBuffer &)
{
    return 0;
}
#else
using StatBuffer = struct stat;

int open_file(const char *path)
{
    return ::open(path, O_RDONLY | O_CLOEXEC);
}

void close_file(int descriptor)
{
    ::close(descriptor);
}

qint64 read_at(int descriptor, quint64 place, unsigned char *target, std::size_t size)
{
    return ::pread(descriptor, target, size, off_t(place));
}

int stat_of(int descriptor, StatBuffer *buffer)
{
    return ::fstat(descriptor, buffer);
}

int stat_of(const char *path, StatBuffer *buffer)
{
    return ::stat(path, buffer);
}

qint64 nanoseconds_of(const StatBuffer &buffer)
{
#ifdef Q_OS_DARWIN
    return buffer.st_mtimespec.tv_nsec;
#else
    return buffer.st_mtim.tv_nsec;
#endif
}
#endif

template <class Handle> bool ask_stamp(Handle file, MsFileStamp *stamp)
{
    StatBuffer buffer;
    if (stat_of(file, &buffer) != 0)
        return false;
    stamp->device = quint64(buffer.st_dev);
    stamp->file = quint64(buffer.st_ino);
    stamp->length = quint64(buffer.st_size);
    stamp->seconds = qint64(buffer.st_mtime);
    stamp->nanoseconds = nanoseconds_of(buffer);
    return true;
}

MsClassicBytes::Result convert_all(nc_type stored, const unsigned char *bytes, std::size_t stride,
                                   std::size_t count, qint32 type, void *target)
{
    return ms_convert_stored(stored, bytes, stride, count, type, target)
        ? MsClassicBytes::Result::Read
        : MsClassicBytes::Result::OutOfRange;
}

void *behind(void *target, std::size_t count, qint32 type)
{
    return static_cast<unsigned char *>(target) + count * ms_type_width(type);
}

} // namespace

bool MsClassicBytes::open(const char *path)
{
    close();
    descriptor = open_file(path);
    if (is_open() && !ask_stamp(descriptor, &opened))
        close();
    return is_open();
}

void MsClassicBytes::close()
{
    if (is_open())
        close_file(descriptor);
    descriptor = -1;
    refused = 0;
    error = 0;
    changed = false;
    block_size = 0;
}

bool MsClassicBytes::is_of(const char *path) const
{
    MsFileStamp now;
    return is_open() && !changed && ask_stamp(path, &now) && now == opened;
}

bool MsClassicBytes::has_changed() const
{
    MsFileStamp now;
    return changed || !ask_stamp(descriptor, &now) || !(now == opened);
}

quint64 MsClassicBytes::length() const
{
    MsFileStamp now;
    return is_open() && ask_stamp(descriptor, &now) ? now.length : 0;
}

bool MsClassicBytes::can_convert(nc_type stored, qint32 type)
{
    const bool is_real = stored == NC_FLOAT || stored == NC_DOUBLE;
    if (stored == NC_DOUBLE && type == NC_FLOAT)
        return false; // beyond a float's range the result is the library's
    return ms_stored_width(stored) != 0 && ms_type_width(type) != 0
        && (!is_real || type == NC_FLOAT || type == NC_DOUBLE);
}

void MsClassicBytes::note_refusal(int why)
{
    if (refused++ == 0)
        error = why;
}

// Reads up to `size` bytes. Returns how many came; where they are fewer, `why` says what stopped them.
std::size_t MsClassicBytes::fill(quint64 place, std::size_t size, unsigned char *target, Result *why)
{
    std::size_t done = 0;
    int interruptions = 0;
    while (done < size) {
        const qint64 got = read_at(descriptor, place + done, target + done, size - done);
        if (got > 0) {
            done += std::size_t(got);
            continue;
        }
        if (got < 0 && errno == EINTR && ++interruptions <= most_interruptions)
            continue;
        const int failure = got < 0 ? errno : EIO;
        if (got == 0 && length() <= place + done) {
            *why = Result::EndOfFile;
        } else {
            note_refusal(failure);
            *why = Result::Failed;
        }
        return done;
    }
    return done;
}

// Reads exactly `size` bytes.
MsClassicBytes::Result MsClassicBytes::fetch(quint64 place, std::size_t size, unsigned char *target)
{
    Result why = Result::Read;
    return fill(place, size, target, &why) == size ? Result::Read : why;
}

bool MsClassicBytes::is_in_block(quint64 place, std::size_t size) const
{
    return place >= block_begin && place - block_begin <= block_size
        && size <= block_size - std::size_t(place - block_begin);
}

// Has `size` bytes from `place` on in the block, and with them up to `most` bytes from `from` on, where
// these come without more ado.
MsClassicBytes::Result MsClassicBytes::ask_block(quint64 place, std::size_t size, quint64 from,
                                                 std::size_t most)
{
    if (is_in_block(place, size))
        return Result::Read;
    block.resize(std::max(block.size(), most));
    block_begin = from;
    block_size = 0;
    Result why = Result::Read;
    block_size = fill(from, most, block.data(), &why);
    if (is_in_block(place, size))
        return Result::Read;
    // What failed may lie beside what is asked for.
    const bool is_exact = from == place && most == size;
    return why == Result::Failed && !is_exact ? ask_block(place, size, place, size) : why;
}

void MsClassicBytes::look_for_change()
{
    changed = has_changed();
}

MsClassicBytes::Result MsClassicBytes::read_bytes(quint64 place, std::size_t size, void *target)
{
    if (!is_in_block(place, size))
        look_for_change();
    const Result result = ask_block(place, size, place, std::max(size, least_bytes_at_once));
    if (result == Result::Read)
        std::memcpy(target, block.data() + (place - block_begin), size);
    return result;
}

MsClassicBytes::Result MsClassicBytes::read(const MsClassicRun &run, qint32 type, void *target)
{
    look_for_change();
    if (run.stride == ms_stored_width(run.type))
        return read_side_by_side(run, type, target);
    return run.stride <= widest_record ? read_records(run, type, target)
                                       : read_far_apart(run, type, target);
}

// Numbers that are as wide in the file are turned where they end up.
MsClassicBytes::Result MsClassicBytes::read_side_by_side(const MsClassicRun &run, qint32 type,
                                                         void *target)
{
    const std::size_t width = ms_stored_width(run.type);
    if (width == ms_type_width(type)) {
        auto *bytes = static_cast<unsigned char *>(target);
        const Result result = fetch(run.begin, run.count * width, bytes);
        return result == Result::Read ? convert_all(run.type, bytes, width, run.count, type, target)
                                      : result;
    }
    const std::size_t at_once = most_bytes_at_once / width;
    bool held = true;
    for (std::size_t done = 0; done < run.count;) {
        const std::size_t count = std::min(at_once, run.count - done);
        const quint64 place = run.begin + done * width;
        const Result result = ask_block(place, count * width, place, count * width);
        if (result != Result::Read)
            return result;
        const unsigned char *bytes = block.data() + (place - block_begin);
        held =
            convert_all(run.type, bytes, width, count, type, behind(target, done, type)) == Result::Read
            && held;
        done += count;
    }
    return held ? Result::Read : Result::OutOfRange;
}

// Whole records, as another variable's numbers of the same records are likely to be asked for next.
MsClassicBytes::Result MsClassicBytes::read_records(const MsClassicRun &run, qint32 type, void *target)
{
    const std::size_t width = ms_stored_width(run.type);
    const std::size_t stride = std::size_t(run.stride);
    const std::size_t at_once = most_bytes_at_once / stride;
    bool held = true;
    for (std::size_t done = 0; done < run.count;) {
        const std::size_t count = std::min(at_once, run.count - done);
        const quint64 place = run.begin + done * stride;
        const std::size_t size = (count - 1) * stride + width;
        const Result result = ask_block(place, size, place - run.lead, count * stride);
        if (result != Result::Read)
            return result;
        const unsigned char *bytes = block.data() + (place - block_begin);
        held =
            convert_all(run.type, bytes, stride, count, type, behind(target, done, type)) == Result::Read
            && held;
        done += count;
    }
    return held ? Result::Read : Result::OutOfRange;
}

MsClassicBytes::Result MsClassicBytes::read_far_apart(const MsClassicRun &run, qint32 type, void *target)
{
    const std::size_t width = ms_stored_width(run.type);
    bool held = true;
    for (std::size_t i = 0; i < run.count; ++i) {
        unsigned char bytes[8];
        const Result result = fetch(run.begin + i * run.stride, width, bytes);
        if (result != Result::Read)
            return result;
        held =
            convert_all(run.type, bytes, width, 1, type, behind(target, i, type)) == Result::Read && held;
    }
    return held ? Result::Read : Result::OutOfRange;
}
