// The file that a fuzz target's input becomes.
#ifndef SCRATCHFILE_H
#define SCRATCHFILE_H

#include <QString>

#include <cstddef>

// A file in memory whose name ends in .cdf; one for the process, overwritten each time.
QString scratchFile();

// Makes it of these bytes. Returns whether all could be written.
bool writeScratchFile(const unsigned char *data, std::size_t size);

#endif // SCRATCHFILE_H
