#include "tmath.h"

// Programs that were built to call the routine find it in the library: its address stands in a variable
// that other sources could read, so no compiler leaves it out.
extern int (*const exportedRound)(double);
int (*const exportedRound)(double) = &TMath::round;
