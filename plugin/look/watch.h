// What keeps the process of a look within its limits, from inside.
#ifndef WATCH_H
#define WATCH_H

#include "mslook.h"

// From this call on the process ends itself with MsLookTooLong or MsLookTooLarge once it goes beyond a
// limit of processor time or memory, whatever it is doing. It leaves no core file when it crashes, and it
// ends with the process that started it. All of this holds on Linux, the time and the core file on other
// Unix systems; elsewhere only the process that started this one limits its time.
void watchProcess(const MsLookLimits &limits);

// From this call on memory comes filled with what is no address, where the system can (glibc), and is
// filled so when it is freed. On some damaged files the library frees addresses that it never wrote. In a
// process as young as a look's, memory is zeros, and that goes well; in a host that has run for an hour
// it doesn't.
void fillMemory();

// Whether half of the time is gone, of the processor's or by the clock.
bool isHalfTimeGone();

#endif // WATCH_H
