#include "road.h"

#include "dvheader.h"
#include "importaiams.h"
#include "infogather.h"
#include "messageloggerinterface.h"
#include "msfile.h"
#include "mslook.h"
#include "msrun.h"
#include "msrunlimit.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <sys/mman.h>

namespace {

// Scans, groups and components that are looked at: what comes behind them is read the same way.
constexpr int most = 8;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Memory that the leak checker doesn't search for pointers, which would take most of the time.
template <class T> T *makeArray()
{
    void *memory = mmap(nullptr, sizeof(T) * DVImportAnalysisInterface::scanCapacity,
                        PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED);
    return static_cast<T *>(memory);
}

// The host's run, of the first scans, with one pair of arrays for the whole process: the checkers would
// take most of the time for the host's own.
class Run : public ImportAiaMs
{
public:
    ~Run() override { delete header; }

    void go()
    {
        importHeader();
        float *masses = nullptr;
        const int size = importMassTable(&masses);
        const std::unique_ptr<float[]> table(masses);
        for (int i = 0; i + 1 < size; ++i)
            require(table[std::size_t(i)] <= table[std::size_t(i + 1)]);

        static float *const abundances = makeArray<float>();
        static unsigned short *const positions = makeArray<unsigned short>();
        for (int scan = 0; scan < std::min(header->getNbScans(), most); ++scan) {
            double time = 0.0;
            int points = 0;
            importScan(scan, &time, size, table.get(), &points, abundances, positions);
            require(points >= 0 && points <= scanCapacity);
            for (int i = 0; i < points; ++i)
                require(positions[i] < size);
        }
    }
};

void importFile(const QString &path)
{
    ImportAiaMs prototype;
    QString text;
    prototype.canImport(nullptr, path, text);
    const std::unique_ptr<ImportAiaMs> copy(prototype.clone());
    Run run;
    if (run.reopenForFile(path))
        run.go();
}

// Reads each number in both ways.
void look(const MsNumbers &numbers)
{
    numbers.visit([&numbers](const auto *first, qint32 count) {
        require(count == numbers.size());
        for (const double number : numbers) {
            require(number == double(*first) || (std::isnan(number) && std::isnan(double(*first))));
            ++first;
        }
    });
}

void readScans(const MsFile &file)
{
    for (int number = -1; number < most; ++number) {
        const MsScan scan = file.scan(number);
        look(scan.masses());
        look(scan.times());
        look(scan.intensities());
        look(scan.flaggedPeaks());
        look(scan.flagValues());
        const bool isEntryRead = file.entry(number).isRead();
        if (number > 0 && !scan.isRead() && !isEntryRead)
            break;
    }
}

void readGroups(const MsFile &file)
{
    for (int number = 0; number < std::min(file.groupCount(), 4); ++number) {
        const MsGroup group = file.group(number);
        look(group.masses());
        look(group.samplingTimes());
        look(group.delayTimes());
    }
}

void readInstruments(const MsFile &file)
{
    for (int component = -1; component < 4; ++component)
        file.instrument(component);
}

void readWithToolkit(const QString &path)
{
    const MsFile file(path.toLatin1().constData());
    if (!file)
        return;
    readScans(file);
    readGroups(file);
    readInstruments(file);
    const MsTrace trace = file.trace();
    look(trace.totalIntensities());
    look(trace.times());
    InfoOptions options;
    options.scan = 1;
    const InfoResult info = gatherInfo(file, path, options);
    infoText(info.report);
    infoJson(info.report);
}

// Whether the file claims so many scans that going through their counters takes most of a second. A
// damaged header often does, so only some of such files are read.
bool isLongWork(const QString &path)
{
    constexpr int manyScans = 1 << 14;
    constexpr int oneOf = 32;
    return MsFile(path.toLatin1().constData()).scanCount() > manyScans
        && QFileInfo(path).size() % oneOf != 0;
}

void readWithJudgement(const QString &path)
{
    if (isLongWork(path))
        return;
    const MsRun run(path);
    require(run.isOpen() == run.error().isNull());
    for (qint32 number = -1; number < std::min(run.size(), most) + 1; ++number) {
        const MsSpectrum scan = run.spectrum(number);
        require(scan.isRead() ? scan.size() >= 0 : scan.size() == 0);
        const double *masses = scan.masses();
        const double *intensities = scan.intensities();
        double sum = 0.0;
        for (qint32 i = 0; i < scan.size(); ++i) {
            require(!std::isnan(masses[i]) && !std::isnan(intensities[i]));
            sum += intensities[i];
        }
        require(!scan.isRead() || sum == scan.summedTotal() || std::isnan(scan.summedTotal())
                || std::isnan(sum));
        run.compound(number);
    }
    run.spectrum(run.size() - 1);
    run.doubts();
    run.instruments();
    // More groups and scans take time, and are read the same way.
    constexpr qint32 fewGroups = 64;
    constexpr qint32 fewScans = 1 << 9;
    if (run.facts().groups <= fewGroups)
        run.groups();
    if (run.size() > fewScans)
        return;
    const std::vector<double> times = run.times();
    run.scanAt(times.empty() ? 0.0 : times.back());
    run.extractedTraces({{0.0, 100.0}});
    const MsPeaks peaks = run.averaged({-1e300, 1e300}, 0.5);
    require(peaks.masses.size() == peaks.intensities.size()
            && std::is_sorted(peaks.masses.begin(), peaks.masses.end()));
    run.modulation();
}

} // namespace

// The fuzzer's process is one that may die, so no other has to look at a file first.
int ms_look_first(const char *, const QString &, int)
{
    return 0;
}

// The real limit comes after 2^20 claimed scans, which take a second. A few show as much.
void RunLimit::start(const MsFile &, qint64)
{
    empty = 0;
    mostEmpty = 64;
    pointsLeft = 1 << 20;
}

QString RunLimit::add(int pointCount, double)
{
    pointsLeft -= pointCount;
    const bool isOver = ++empty > mostEmpty || pointsLeft < 0;
    return isOver ? QStringLiteral("more aren't looked at here") : QString();
}

void followRoad(const QString &path)
{
    MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
    importFile(path);
    readWithToolkit(path);
    readWithJudgement(path);
}
