// The toolkit's records for the length of a block: cleared at its beginning, released at its end.
#ifndef OWNEDRECORDS_H
#define OWNEDRECORDS_H

#include "mstoolkit.h"

#include <QSet>

struct OwnedGlobals {
    OwnedGlobals() { ms_init_global(0, &admin, &sample, &test, &raw); }
    ~OwnedGlobals()
    {
        ms_free(admin.error_log);
        ms_init_global(1, &admin, &sample, &test, &raw);
    }
    Q_DISABLE_COPY(OwnedGlobals)

    int read(int ncid) { return ms_read_global(ncid, &admin, &sample, &test, &raw); }

    MsAdminRecord admin;
    MsSampleRecord sample;
    MsTestRecord test;
    MsRawGlobalRecord raw;
};

struct OwnedInstrument : MsInstrumentRecord {
    explicit OwnedInstrument(int component)
    {
        ms_init_instrument(0, this);
        component_index = component;
    }
    ~OwnedInstrument() { ms_init_instrument(1, this); }
    Q_DISABLE_COPY(OwnedInstrument)
};

struct OwnedGroup : MsGroupRecord {
    explicit OwnedGroup(int number)
    {
        ms_init_group(0, this);
        group_number = number;
    }
    ~OwnedGroup() { ms_init_group(1, this); }
    Q_DISABLE_COPY(OwnedGroup)
};

struct OwnedScan : MsScanRecord {
    explicit OwnedScan(int number)
    {
        ms_init_per_scan(0, this, nullptr);
        scan_number = number;
    }
    ~OwnedScan() { ms_init_per_scan(1, this, nullptr); }
    Q_DISABLE_COPY(OwnedScan)
};

struct OwnedEntry : MsLibraryRecord {
    explicit OwnedEntry(int index)
    {
        ms_init_per_scan(0, nullptr, this);
        entry_index = index;
    }
    ~OwnedEntry() { ms_init_per_scan(1, nullptr, this); }
    Q_DISABLE_COPY(OwnedEntry)
};

// The masses of a run, on a grid of so many decimals.
struct Census {
    explicit Census(int id, qint32 wanted = 2, double scale = 1.0)
        : decimals(wanted), status(ms_read_mass_census(id, keys, &decimals, scale))
    {
    }

    QSet<qint32> keys;
    qint32 decimals;
    int status;
};

// The total-ion trace of a run.
struct OwnedTrace {
    OwnedTrace(int id, int scanCount)
        : status(ms_read_total_intensity(id, scanCount, &totals, &times)) { }
    ~OwnedTrace()
    {
        ms_free(totals);
        ms_free(times);
    }
    Q_DISABLE_COPY(OwnedTrace)

    double *totals = nullptr;
    double *times = nullptr;
    int status;
};

#endif // OWNEDRECORDS_H
