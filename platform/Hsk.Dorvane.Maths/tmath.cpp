#include "tmath.h"

// The library has the routine, too, for programs that were built to call it.
[[maybe_unused]] static int (*const exported)(double) = &TMath::round;
