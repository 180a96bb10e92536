// A stand-in for the netCDF library that passes all calls on, and fails one of them at will, or does
// something before it. Link it before the library itself.
#ifndef FAILINGNETCDF_H
#define FAILINGNETCDF_H

#include <functional>

struct NetcdfCalls {
    int failing = 0;                // the call that fails, counted from 1; 0: none
    int made = 0;                   // so far
    const char *failed = "";        // the name of the call that failed, or an empty text
    std::function<void()> before{}; // if set, the call doesn't fail: this is done, and then the call
};
extern NetcdfCalls netcdfCalls;

// Makes the n-th call from now on fail.
inline void failCall(int n)
{
    netcdfCalls = {n, 0, ""};
}

// Does something before the n-th call from now on.
inline void interruptCall(int n, const std::function<void()> &before)
{
    netcdfCalls = {n, 0, "", before};
}

#endif // FAILINGNETCDF_H
