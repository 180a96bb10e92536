// A run to read, and the way through all of an open file.
#ifndef RECORDS_H
#define RECORDS_H

#include "msfile.h"

#include <numeric>
#include <vector>

// Writes a run of these masses in scans of equal length, with ascending intensities; the total intensity is
// the scan's number. Whether all could be written.
inline bool writeRun(const QString &path, const std::vector<double> &masses, int scanCount)
{
    MsFileLayout layout;
    layout.scan_count = scanCount;
    layout.instrument_count = 1;
    layout.mass_format = layout.time_format = MsDoubleFormat;
    layout.intensity_format = MsLongFormat;
    MsFile file = MsFile::create(path.toLatin1().constData(), layout);
    std::vector<qint32> intensities(masses.size());
    std::iota(intensities.begin(), intensities.end(), 0);
    const int points = int(masses.size()) / scanCount;
    bool written = file.isOpen();
    for (int number = 0; number < scanCount; ++number) {
        MsScanDraft scan(number);
        scan.point_count = points;
        scan.total_intensity = number;
        scan.mass_values = const_cast<double *>(masses.data()) + number * points;
        scan.intensity_values = intensities.data() + number * points;
        written = file.write(scan) && written;
    }
    return file.finish() && written;
}

// Reads all that a file can have. How many routines reported a failure; -1 if one handed something out
// all the same.
inline int readAll(const MsFile &file, int scanCount)
{
    int groups = 0;
    int width = 0;
    int failures = !file.globals().isRead() + !file.instrument(0).isRead()
        + (ms_inquire_groups(file.id(), &groups, &width) == -1) + !file.group(0).isRead();
    for (int number = 0; number < scanCount; ++number)
        failures += !file.scan(number).isRead() + (file.isLibrary() && !file.entry(number).isRead());
    const MsTrace trace(file.id(), scanCount);
    const MsCensus census = file.census(2, 1.0);
    if ((!trace.isRead() && !(trace.totalIntensities().isEmpty() && trace.times().isEmpty()))
        || (!census.isRead() && !census.keys.isEmpty()))
        return -1;
    return failures + !trace.isRead() + !census.isRead();
}

#endif // RECORDS_H
