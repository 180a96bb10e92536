// A stand-in for the system's reads of one file: passes them on, and has some fail, be interrupted or come
// back short. Link it before all libraries that read.
#ifndef FAILINGREADS_H
#define FAILINGREADS_H

#include <functional>

enum class ReadFault {
    Error,       // the read fails with `error`
    End,         // the read returns nothing, as at the end of the file
    Interrupted, // the read fails with EINTR, without having read anything
    Short        // the read returns half of what it was asked for
};

struct Reads {
    const char *path = ""; // the file; reads of others are passed on
    int failing = 0;       // the read that fails, counted from 1; 0: none
    bool forGood = false;  // and all behind it, too
    ReadFault fault = ReadFault::Error;
    int error = 0;          // errno
    long long badBegin = 0; // of a bad part: each read that touches it fails
    long long badEnd = 0;
    std::function<void()> before{}; // if set, nothing fails: this is done before the failing read
    int made = 0;                   // so far
    int failed = 0;
    long long bytes = 0; // that were handed over
};
extern Reads reads;

#endif // FAILINGREADS_H
