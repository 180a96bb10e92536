// The toolkit's records for the length of a block, and the way through all of an open file.
#ifndef RECORDS_H
#define RECORDS_H

#include "mstoolkit.h"

#include <QSet>

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

struct ReadGroup : MsGroupRecord {
    explicit ReadGroup(int number)
    {
        ms_init_group(0, this);
        group_number = number;
    }
    ~ReadGroup() { ms_init_group(1, this); }
    Q_DISABLE_COPY(ReadGroup)
};

struct ReadInstrument : MsInstrumentRecord {
    ReadInstrument(int id, int component)
    {
        ms_init_instrument(0, this);
        component_index = component;
        status = ms_read_instrument(id, this);
    }
    ~ReadInstrument() { ms_init_instrument(1, this); }
    Q_DISABLE_COPY(ReadInstrument)

    int status;
};

struct ReadEntry : MsLibraryRecord {
    explicit ReadEntry(int index)
    {
        ms_init_per_scan(0, nullptr, this);
        entry_index = index;
    }
    ~ReadEntry() { ms_init_per_scan(1, nullptr, this); }
    Q_DISABLE_COPY(ReadEntry)
};

struct Census {
    explicit Census(int id, qint32 wanted = 2, double scale = 1.0)
        : decimals(wanted), status(ms_read_mass_census(id, keys, &decimals, scale))
    {
    }

    QSet<qint32> keys;
    qint32 decimals;
    int status;
};

struct Trace {
    Trace(int id, int scanCount) : status(ms_read_total_intensity(id, scanCount, &totals, &times)) { }
    ~Trace()
    {
        ms_free(totals);
        ms_free(times);
    }
    Q_DISABLE_COPY(Trace)

    double *totals = nullptr;
    double *times = nullptr;
    int status;
};

// Reads all that a file can have. How many routines reported a failure; -1 if one handed something out
// all the same.
inline int readAll(int id, int scanCount)
{
    int groups = 0;
    int width = 0;
    ReadGroup group(0);
    int failures = (ReadGlobals(id).status == -1) + (ReadInstrument(id, 0).status == -1)
        + (ms_inquire_groups(id, &groups, &width) == -1) + (ms_read_group(id, &group) == -1);
    for (int number = 0; number < scanCount; ++number) {
        ReadScan scan(number);
        ReadEntry entry(number);
        failures += ms_read_per_scan(id, &scan, &entry) == -1;
    }
    const Trace trace(id, scanCount);
    const Census census(id);
    if ((trace.status == -1 && (trace.totals || trace.times)) || (census.status == -1 && !census.keys.isEmpty()))
        return -1;
    return failures + (trace.status == -1) + (census.status == -1);
}

#endif // RECORDS_H
