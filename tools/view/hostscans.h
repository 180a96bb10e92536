// Scans as the host gets them: the plugin is loaded and driven as the host does it. All of it happens on
// the reading thread.
#ifndef HOSTSCANS_H
#define HOSTSCANS_H

#include "importplugin.h"
#include "msrun.h"

#include <vector>

// A scan by the host's table of masses.
struct HostScan {
    QString fault; // a sentence that says why there is none; null where there is one
    std::vector<double> masses;
    std::vector<double> abundances;
};

class HostScans
{
public:
    explicit HostScans(const QString &fileName);

    // Imports the run as far as needed. Scans near to the one that was asked for last are at hand. Where
    // `progress` stops it, the scan is empty.
    HostScan scan(qint32 number, const MsRun::Progress &progress);

private:
    class Keeper;

    void import(qint32 number, const MsRun::Progress &progress);

    const QString fileName_;
    ImportPlugin plugin_;
    QString fault_;
    qint32 first_ = 0; // of those that are kept
    std::vector<HostScan> kept_;
};

#endif // HOSTSCANS_H
