// A file of a newer kind that the HDF5 library doesn't survive.
#ifndef DAMAGEDNEWER_H
#define DAMAGEDNEWER_H

#include "program.h"

// Bytes behind the signature of the file's heap, in the length of its first object: the library goes on
// reading behind its buffer for an object of 256 MiB, and never gets on from one of none.
constexpr int crashingPlace = 27;
constexpr int hangingPlace = 24;

// A right file with that byte changed.
inline QByteArray damagedNewer(int place)
{
    QByteArray bytes = content(fixture(QStringLiteral("wide-values")));
    const int heap = bytes.indexOf("GCOL");
    if (heap == -1)
        qFatal("the fixture has no heap");
    bytes[heap + place] = place == hangingPlace ? '\0' : '\x10';
    return bytes;
}

#endif // DAMAGEDNEWER_H
