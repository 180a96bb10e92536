// The toolkit's records for the length of a block, and the way through all of an open file.
#ifndef RECORDS_H
#define RECORDS_H

#include "ownedrecords.h"

#include <numeric>
#include <vector>

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

// Writes a run of these masses in scans of equal length, with ascending intensities; the total intensity is
// the scan's number. Whether all could be written.
inline bool writeRun(const QString &path, const std::vector<double> &masses, int scanCount)
{
    const int id = ms_open_write(path.toLatin1().constData(), 0, scanCount, 1, 77, 77, 75, 1, 0);
    std::vector<qint32> intensities(masses.size());
    std::iota(intensities.begin(), intensities.end(), 0);
    const int points = int(masses.size()) / scanCount;
    bool written = id != -1;
    for (int number = 0; number < scanCount; ++number) {
        Scan scan(number);
        scan.point_count = points;
        scan.total_intensity = number;
        scan.mass_values = const_cast<double *>(masses.data()) + number * points;
        scan.intensity_values = intensities.data() + number * points;
        written = ms_write_per_scan(id, &scan, nullptr) == 0 && written;
    }
    return ms_close(id) == 0 && written;
}

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
