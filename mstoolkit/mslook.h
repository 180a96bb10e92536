// A first look at files of the newer kinds.
//
// They are HDF5 files, and the HDF5 library under netCDF crashes on some that are damaged, or never comes
// back. The process is then the program's that opened the file. So a program that takes files from
// strangers has another program read them first, in a process of its own: one comes with the plugin
// (Hsk.Dorvane.ImportAiaMs.Look, in the plugin's folder). ms_open_read itself looks at nothing
// beforehand.
#ifndef MSLOOK_H
#define MSLOOK_H

#include <QString>

// What the reading of one file may take. See ms_look_limits.
struct MsLookLimits {
    int processor_seconds; // of the look's process; it ends itself then
    int seconds;           // from start to end, by the clock; it is ended then
    qint64 memory;         // bytes that the process may have in memory; it ends itself then
};

// The exit status of a program that looks. Any other is a failure of the program itself.
enum MsLookStatus {
    MsLookWell = 0,     // the file can be opened, or is one that netCDF refuses in good order
    MsLookTooLong = 3,  // MsLookLimits::processor_seconds were used up
    MsLookTooLarge = 4, // MsLookLimits::memory was used up, or the system had no more
};

// Has a file of a newer kind read by `program` before it is opened. Returns 0 where `path` may be opened:
// the look ended well, or none was needed, as the file is of a classic kind, or of none that HDF5 would
// get, or there is no such file. Returns -1, after an error message that names file and reason, where the
// program crashed or failed, used up its limits, or is missing, or where the system can't read the
// file's beginning. The process waits for the program, for the seconds of ms_look_limits at the most;
// `milliseconds` from 0 on takes their place.
//
// The program is started with one argument, `path` percent-encoded (QByteArray::toPercentEncoding), as
// no other spelling of a path's bytes reaches a program unchanged everywhere. Its output is thrown away.
// A file that was found well and didn't change since isn't read anew as long as no other was looked at;
// that is kept with the QCoreApplication, in its thread, so plugins and program share it.
int ms_look_first(const char *path, const QString &program, int milliseconds = -1);

// The limits of a look at `path`, from the file's length.
MsLookLimits ms_look_limits(const char *path);

#endif // MSLOOK_H
