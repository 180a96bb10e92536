// The toolkit's records for the length of a block: cleared at its beginning, released at its end.
#ifndef OWNEDRECORDS_H
#define OWNEDRECORDS_H

#include "mstoolkit.h"

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

#endif // OWNEDRECORDS_H
