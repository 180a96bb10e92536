#include "failingreads.h"

#include <cerrno>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

Reads reads;

namespace {

bool isOfTheFile(int descriptor)
{
    struct stat wanted = {};
    struct stat found = {};
    return *reads.path != '\0' && stat(reads.path, &wanted) == 0 && fstat(descriptor, &found) == 0
        && wanted.st_dev == found.st_dev && wanted.st_ino == found.st_ino;
}

bool failsNow(off_t place, size_t size)
{
    ++reads.made;
    if (place < reads.badEnd && place + off_t(size) > reads.badBegin)
        return true;
    const bool isMeant =
        reads.failing != 0 && (reads.forGood ? reads.made >= reads.failing : reads.made == reads.failing);
    if (isMeant && reads.before) {
        reads.before();
        return false;
    }
    return isMeant;
}

// A read at `place`, which `real` makes of so many bytes.
template <class Read> ssize_t readAt(int descriptor, off_t place, size_t size, Read real)
{
    if (!isOfTheFile(descriptor))
        return real(size);
    ssize_t result = 0;
    if (!failsNow(place, size)) {
        result = real(size);
    } else {
        ++reads.failed;
        if (reads.fault == ReadFault::Short) {
            result = real((size + 1) / 2);
        } else if (reads.fault != ReadFault::End) {
            errno = reads.fault == ReadFault::Interrupted ? EINTR : reads.error;
            return -1;
        }
    }
    reads.bytes += result > 0 ? result : 0;
    return result;
}

template <class Function> Function *library(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" ssize_t read(int descriptor, void *target, size_t size)
{
    static auto *const real = library<ssize_t(int, void *, size_t)>("read");
    return readAt(descriptor, lseek(descriptor, 0, SEEK_CUR), size,
                  [&](size_t count) { return real(descriptor, target, count); });
}

#define PASS_ON_PREAD(name)                                                                                            \
    extern "C" ssize_t name(int descriptor, void *target, size_t size, off_t place)                                    \
    {                                                                                                                  \
        static auto *const real = library<ssize_t(int, void *, size_t, off_t)>(#name);                                 \
        return readAt(descriptor, place, size, [&](size_t count) { return real(descriptor, target, count, place); });  \
    }

PASS_ON_PREAD(pread)
PASS_ON_PREAD(pread64)
