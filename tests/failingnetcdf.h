// A stand-in for the netCDF library that passes all calls on, and fails one of them at will. Link it
// before the library itself.
#ifndef FAILINGNETCDF_H
#define FAILINGNETCDF_H

// Makes the n-th call from now on fail, counted from 1; 0 fails none. Starts the count anew.
void failCall(int n);

// Calls since then.
int callsMade();

// The name of the call that failed, or an empty text.
const char *failedCall();

#endif // FAILINGNETCDF_H
