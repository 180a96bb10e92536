// A stand-in for the netCDF library that passes all calls on, and fails one of them at will. Link it
// before the library itself.
#ifndef FAILINGNETCDF_H
#define FAILINGNETCDF_H

struct NetcdfCalls {
    int failing = 0;         // the call that fails, counted from 1; 0: none
    int made = 0;            // so far
    const char *failed = ""; // the name of the call that failed, or an empty text
};
extern NetcdfCalls netcdfCalls;

// Makes the n-th call from now on fail.
inline void failCall(int n)
{
    netcdfCalls = {n, 0, ""};
}

#endif // FAILINGNETCDF_H
