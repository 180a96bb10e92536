#include "tmath.h"

// The library has the routine, too, for programs that were built to call it. Another source could read
// this address, so no compiler leaves the routine out.
extern int (*const exportedRound)(double);
int (*const exportedRound)(double) = &TMath::round;
