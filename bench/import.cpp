// The import of whole runs, beside the floor: the same bytes read with bare netCDF calls and nothing
// else.

#include "benchfiles.h"
#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"
#include "msfile.h"
#include "msrun.h"

#include <QPluginLoader>
#include <QtEndian>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <netcdf.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

class Receiver : public DVImportReceiver
{
public:
    void analysisStarted(const DVHeader &, const float *, int) override { }
    void scanImported(int, double, double total, int pointCount, const float *,
                      const unsigned short *) override
    {
        points += pointCount;
        sum += total;
    }
    void progressChanged(int, int) override { }

    long points = 0;
    double sum = 0;
};

DVImportAnalysisInterface *prototype()
{
    static QPluginLoader loader(QStringLiteral(AIA_PLUGIN));
    return dynamic_cast<DVImportAnalysisInterface *>(loader.instance());
}

void setCounters(benchmark::State &state, const BenchRun &run)
{
    state.counters["points"] = double(run.scans) * run.points;
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_kib"] = double(usage.ru_maxrss);
}

void importRun(benchmark::State &state, const BenchRun &run)
{
    const QString path = QString::fromStdString(benchFile(run));
    for (auto _ : state) {
        QString text;
        Receiver receiver;
        if (!prototype()->canImport(nullptr, path, text)) {
            state.SkipWithError("can't be opened");
            return;
        }
        const std::unique_ptr<DVImportAnalysisInterface> copy(prototype()->clone());
        copy->setReceiver(&receiver);
        if (!copy->import(path, QString(), QString(), nullptr)
            || receiver.points != long(run.scans) * run.points)
            state.SkipWithError("not imported in full");
        benchmark::DoNotOptimize(receiver.sum);
    }
    setCounters(state, run);
}

// All spectra of a run.
void spectraOfRun(benchmark::State &state, const BenchRun &run)
{
    const QString path = QString::fromStdString(benchFile(run));
    for (auto _ : state) {
        const MsRun opened(path);
        long points = 0;
        for (const MsSpectrum &spectrum : opened) {
            points += spectrum.size();
            benchmark::DoNotOptimize(spectrum.masses());
            benchmark::DoNotOptimize(spectrum.intensities());
        }
        if (points != long(run.scans) * run.points)
            state.SkipWithError("not read in full");
    }
    setCounters(state, run);
}

template <class Element> std::vector<Element> readWhole(int id, const char *name)
{
    int variable = -1;
    int dimension = -1;
    std::size_t length = 0;
    nc_inq_varid(id, name, &variable);
    nc_inq_vardimid(id, variable, &dimension);
    nc_inq_dimlen(id, dimension, &length);
    std::vector<Element> values(length);
    nc_get_var(id, variable, values.data());
    return values;
}

template <class Mass, class Intensity> double readFloor(const std::string &path)
{
    int id = -1;
    if (nc_open(path.c_str(), NC_NOWRITE, &id) != NC_NOERR)
        return -1;
    const MsFile file = MsFile::adopt(id); // closes it
    for (const char *name : benchNumbers)
        benchmark::DoNotOptimize(readWhole<double>(id, name).data());
    benchmark::DoNotOptimize(readWhole<short>(id, "a_d_coaddition_factor").data());
    benchmark::DoNotOptimize(readWhole<int>(id, "actual_scan_number").data());
    benchmark::DoNotOptimize(readWhole<int>(id, "flag_count").data());
    const std::vector<int> starts = readWhole<int>(id, "scan_index");
    const std::vector<int> counts = readWhole<int>(id, "point_count");
    benchmark::DoNotOptimize(readWhole<Mass>(id, "mass_values").data());

    int masses = -1;
    int intensities = -1;
    nc_inq_varid(id, "mass_values", &masses);
    nc_inq_varid(id, "intensity_values", &intensities);
    std::vector<Mass> mass(1 << 16);
    std::vector<Intensity> intensity(mass.size());
    for (std::size_t i = 0; i < starts.size(); ++i) {
        const std::size_t start = std::size_t(starts[i]);
        const std::size_t count = std::size_t(counts[i]);
        nc_get_vara(id, masses, &start, &count, mass.data());
        nc_get_vara(id, intensities, &start, &count, intensity.data());
    }
    return double(mass[0]) + double(intensity[0]);
}

double readFloorOf(const BenchRun &run, const std::string &path)
{
    switch (run.massType) {
    case NC_SHORT:
        return readFloor<short, int>(path);
    case NC_INT:
        return readFloor<int, short>(path);
    case NC_DOUBLE:
        return readFloor<double, double>(path);
    default:
        return readFloor<float, float>(path);
    }
}

void floorOfRun(benchmark::State &state, const BenchRun &run)
{
    const std::string path = benchFile(run);
    for (auto _ : state) {
        if (readFloorOf(run, path) < 0)
            state.SkipWithError("can't be read");
    }
    setCounters(state, run);
}

// As fast as a file can be had at all: one pass of read() over it, with the order of each word turned.
void limitOfRun(benchmark::State &state, const BenchRun &run)
{
    const std::string path = benchFile(run);
    std::vector<quint32> block(1 << 16);
    for (auto _ : state) {
        const int file = open(path.c_str(), O_RDONLY);
        ssize_t size = 0;
        while ((size = read(file, block.data(), block.size() * sizeof(quint32))) > 0) {
            for (quint32 &word : block)
                word = qbswap(word);
            benchmark::DoNotOptimize(block.data());
            benchmark::ClobberMemory();
        }
        close(file);
        if (size < 0)
            state.SkipWithError("can't be read");
    }
    setCounters(state, run);
}

} // namespace

int main(int argc, char **argv)
{
    std::freopen("/dev/null", "w", stderr); // the plugin's running account
    MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
    for (const BenchRun &run : benchRuns()) {
        const std::string name = run.name;
        benchmark::RegisterBenchmark(("floor/" + name).c_str(), floorOfRun, run)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("limit/" + name).c_str(), limitOfRun, run)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("spectra/" + name).c_str(), spectraOfRun, run)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("import/" + name).c_str(), importRun, run)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
