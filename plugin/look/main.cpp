// The first look at a file of a newer kind: reads all that an import and aia-info would read, and throws
// it away. How it ends tells the program that started it whether the file can be opened; see mslook.h.
//     Hsk.Dorvane.ImportAiaMs.Look PATH
// PATH is percent-encoded. The exit status is one of MsLookStatus, or 2 for another number of arguments.

#include "msdoubts.h"
#include "msfile.h"
#include "mslook.h"
#include "watch.h"

#include <QByteArray>
#include <QString>

#include <limits>
#include <new>

namespace {

// aia-info shows no more of a list.
constexpr int mostListed = 10000;

// Stops at half time: a file may claim any number of records that nobody wrote, and whoever reads them
// can stop between two. The other half is for one reading that takes long or never comes back.
template <class Record>
void readEach(const MsRange<Record> &records, int most = std::numeric_limits<int>::max())
{
    int count = 0;
    for (auto record = records.begin(); record != records.end() && count < most; ++record) {
        static_cast<void>(*record);
        ++count;
        if (isHalfTimeGone())
            return;
    }
}

// In the order of the import, with what it doesn't read before the scans.
void readAll(const MsFile &file)
{
    const MsGlobals globals = file.globals();
    file.scanHeader(0);
    file.scanHeader(file.scanCount() - 1);
    file.census(2, globals.mass(1.0));
    file.trace();

    readEach(file.instruments(), mostListed);
    readEach(file.groups(), mostListed);
    readEach(file.entries(), mostListed);
    readEach(file.scans());
    if (!isHalfTimeGone())
        ms_list_doubts(file.id(), QString());
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        return 2;
    try {
        const QByteArray path = QByteArray::fromPercentEncoding(argv[1]);
        watchProcess(ms_look_limits(path.constData()));
        fillMemory();
        if (const MsFile file(path.constData()); file)
            readAll(file);
    } catch (const std::bad_alloc &) {
        return MsLookTooLarge;
    }
    return MsLookWell;
}
