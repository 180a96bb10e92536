// The toolkit's records for the length of a block, and the way through all of an open file.
#ifndef RECORDS_H
#define RECORDS_H

#include "mstoolkit.h"

// Points to vectors of the test.
struct Scan : MsScanRecord {
    explicit Scan(int number)
    {
        ms_init_per_scan(0, this, nullptr);
        scan_number = number;
    }
};

// Owns what is read into it.
struct ReadScan : Scan {
    using Scan::Scan;
    ~ReadScan() { ms_init_per_scan(1, this, nullptr); }
    Q_DISABLE_COPY(ReadScan)
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

// Owns what is read into it.
struct ReadGlobals : Globals {
    explicit ReadGlobals(int id) : status(ms_read_global(id, &admin, &sample, &test, &raw)) { }
    ~ReadGlobals()
    {
        ms_free(admin.error_log);
        ms_init_global(1, &admin, &sample, &test, &raw);
    }
    Q_DISABLE_COPY(ReadGlobals)

    int status;
};

// Reads all that a file can have. How many routines reported a failure; -1 if one handed something out
// all the same.
inline int readAll(int id, int scanCount)
{
    int failures = ReadGlobals(id).status == -1;
    MsInstrumentRecord instrument;
    ms_init_instrument(0, &instrument);
    instrument.component_index = 0;
    failures += ms_read_instrument(id, &instrument) == -1;
    ms_init_instrument(1, &instrument);
    int groups = 0;
    int width = 0;
    failures += ms_inquire_groups(id, &groups, &width) == -1;
    MsGroupRecord group;
    ms_init_group(0, &group);
    group.group_number = 0;
    failures += ms_read_group(id, &group) == -1;
    ms_init_group(1, &group);
    for (int number = 0; number < scanCount; ++number) {
        ReadScan scan(number);
        MsLibraryRecord library;
        ms_init_per_scan(0, nullptr, &library);
        library.entry_index = number;
        failures += ms_read_per_scan(id, &scan, &library) == -1;
        ms_init_per_scan(1, nullptr, &library);
    }
    double *totals = nullptr;
    double *times = nullptr;
    const bool traced = ms_read_total_intensity(id, scanCount, &totals, &times) == 0;
    if (!traced && (totals || times))
        return -1;
    ms_free(totals);
    ms_free(times);
    QSet<qint32> census;
    qint32 decimals = 2;
    const bool counted = ms_read_mass_census(id, census, &decimals, 1.0) == 0;
    if (!counted && !census.isEmpty())
        return -1;
    return failures + !traced + !counted;
}

#endif // RECORDS_H
