// The toolkit's records for the length of a block, and the way through all of an open file.
#ifndef RECORDS_H
#define RECORDS_H

#include "ownedrecords.h"

// Points to vectors of the test.
struct Scan : MsScanRecord {
    explicit Scan(int number)
    {
        ms_init_per_scan(0, this, nullptr);
        scan_number = number;
    }
};

// Points to texts of the test.
struct Globals {
    Globals() { ms_init_global(0, &admin, &sample, &test, &raw); }
    int write(int id) { return ms_write_global(id, &admin, &sample, &test, &raw); }

    MsAdminRecord admin;
    MsSampleRecord sample;
    MsTestRecord test;
    MsRawGlobalRecord raw;
};

// Reads all that a file can have. How many routines reported a failure; -1 if one handed something out
// all the same.
inline int readAll(int id, int scanCount)
{
    int groups = 0;
    int width = 0;
    OwnedGroup group(0);
    OwnedInstrument instrument(0);
    int failures = (OwnedGlobals().read(id) == -1) + (ms_read_instrument(id, &instrument) == -1)
        + (ms_inquire_groups(id, &groups, &width) == -1) + (ms_read_group(id, &group) == -1);
    for (int number = 0; number < scanCount; ++number) {
        OwnedScan scan(number);
        OwnedEntry entry(number);
        failures += ms_read_per_scan(id, &scan, &entry) == -1;
    }
    const OwnedTrace trace(id, scanCount);
    const Census census(id);
    if ((trace.status == -1 && (trace.totals || trace.times)) || (census.status == -1 && !census.keys.isEmpty()))
        return -1;
    return failures + (trace.status == -1) + (census.status == -1);
}

#endif // RECORDS_H
