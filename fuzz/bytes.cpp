// The input is a file of the classic kinds, as it stands.

#include "road.h"
#include "scratchfile.h"

#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    std::freopen("/dev/null", "w", stdout); // libFuzzer itself writes to a copy of standard error
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    // The newer kinds' inside is another library's to survive.
    if (size < 4 || data[0] != 'C' || data[1] != 'D' || data[2] != 'F' || !writeScratchFile(data, size))
        return -1;
    followRoad(scratchFile());
    return 0;
}
