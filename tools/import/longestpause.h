// The longest time within a run in which no scan was taken.
#ifndef LONGESTPAUSE_H
#define LONGESTPAUSE_H

#include <optional>

class LongestPause
{
public:
    struct Pause {
        double length; // in the unit of the times
        int scan;      // the first one behind it
    };

    // Takes the times of the scans in their order.
    void add(int scan, double time);

    // Returns a step in time that is far longer than those between the other scans; none of a run of only
    // a few scans, or at either end of one.
    std::optional<Pause> pause() const;

private:
    double first = 0.0;
    double before = 0.0;
    int added = 0;
    int last = -1;
    Pause longest{0.0, -1};
};

#endif // LONGESTPAUSE_H
