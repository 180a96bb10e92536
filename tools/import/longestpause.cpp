#include "longestpause.h"

#include <cmath>

void LongestPause::add(int scan, double time)
{
    if (!std::isfinite(time))
        return;
    if (added++ == 0)
        first = time;
    else if (time - before > longest.length)
        longest = {time - before, scan};
    before = time;
    last = scan;
}

std::optional<LongestPause::Pause> LongestPause::pause() const
{
    constexpr int enough = 10; // scans
    constexpr double far = 5.0;
    const double others = (before - first - longest.length) / (added - 2);
    if (added < enough || longest.scan < 2 || longest.scan == last || !(longest.length > far * others)
        || others <= 0.0)
        return std::nullopt;
    return longest;
}
