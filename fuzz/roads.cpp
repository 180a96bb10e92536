// The input is a file of the classic kinds, as it stands. The two ways to its numbers have to be equal.

#include "messageloggerinterface.h"
#include "scratchfile.h"
#include "tworoads.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    // The newer kinds have one way only.
    if (size < 4 || data[0] != 'C' || data[1] != 'D' || data[2] != 'F' || !writeScratchFile(data, size))
        return -1;
    bool isRefused = false; // by a system that refuses nothing here
    MessageLoggerInterface::setReceiver([&isRefused](MessageLoggerInterface::Level, const QString &text) {
        isRefused = isRefused || text.contains(QLatin1String("refused to read"));
    });
    const QByteArray difference = differenceOfRoads(scratchFile().toLatin1());
    if (isRefused || !difference.isEmpty()) {
        std::fprintf(stderr, "Not equal: %s\n", difference.constData());
        std::abort();
    }
    return 0;
}
