// All scans of a run, from front to back, with progress and an end at an interruption.
#ifndef SCANWALK_H
#define SCANWALK_H

#include "interruption.h"
#include "msrun.h"
#include "progressbar.h"

#include <algorithm>

// Which of a conversion's two walks this is, for the progress.
enum class ScanWalk { Only, First, Second };

// Calls `use` with each scan that can be read, until it returns false. Returns whether the walk came to
// its end: not where `use` or an interruption stopped it.
template <class Use> bool forEachScan(const MsRun &run, ScanWalk walk, ProgressBar *progress, Use &&use)
{
    const int share = walk == ScanWalk::Only ? 1 : 2;
    const int before = walk == ScanWalk::Second ? run.size() / 2 : 0;
    const int step = std::max(run.size() / 100, 1);
    for (const MsSpectrum &spectrum : run) {
        if (isInterrupted() || (spectrum.isRead() && !use(spectrum)))
            return false;
        if (spectrum.index() % step == 0)
            progress->show(before + spectrum.index() / share, run.size());
    }
    return true;
}

#endif // SCANWALK_H
