// What keeps the process of a look within its limits, from inside.
#ifndef WATCH_H
#define WATCH_H

#include "mslook.h"

// From this call on the process ends itself with MsLookTooLong or MsLookTooLarge once it goes beyond a
// limit of processor time or memory, whatever it is doing. It leaves no core file when it crashes, and it
// ends with the process that started it. All of this holds on Linux, the time and the core file on other
// Unix systems; elsewhere only the process that started this one limits its time.
void watchProcess(const MsLookLimits &limits);

// Whether half of the time is gone, of the processor's or by the clock.
bool isHalfTimeGone();

#endif // WATCH_H
