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

// Returns why there is nothing to convert, as a part of a sentence, where no scan can be read.
inline QString whyNoScan(const MsRun &run)
{
    return run.size() == 0
        ? QStringLiteral("it has no scans")
        : QStringLiteral("no scan can be read; of the first one, %1").arg(run.spectrum(0).failure());
}

// Why a conversion ends whose second walk lacks scans of the first one, as a part of a sentence.
inline QString whyScansWent()
{
    return QStringLiteral(
        "scans that were read once can't be read again, as the file was changed meanwhile");
}

#endif // SCANWALK_H
