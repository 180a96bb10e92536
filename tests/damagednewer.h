// A file of a newer kind that the HDF5 library doesn't survive.
#ifndef DAMAGEDNEWER_H
#define DAMAGEDNEWER_H

#include "program.h"

// One byte of a fixture.
struct Damage {
    const char *fixture;
    const char *signature; // of a part of the file
    int place;             // behind the beginning of the signature
    char byte;
};

// The length of the first object of a heap: the library goes on reading behind its buffer for an object of
// 256 MiB, and never gets on from one of none.
constexpr Damage crashingDamage = {"wide-values", "GCOL", 27, '\x10'};
constexpr Damage hangingDamage = {"wide-values", "GCOL", 24, '\0'};

// The names of many variables: the library frees a table of them that it never filled. What happens then
// depends on what the memory held before.
constexpr Damage unfilledDamage = {"string-masses", "FHDB", 22, '\x10'};

// A right file with that byte changed.
inline QByteArray damagedNewer(const Damage &damage)
{
    QByteArray bytes = content(fixture(damage.fixture));
    const int part = bytes.indexOf(damage.signature);
    if (part == -1)
        qFatal("the fixture has no such part");
    bytes[part + damage.place] = damage.byte;
    return bytes;
}

#endif // DAMAGEDNEWER_H
