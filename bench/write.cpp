// ms_write_per_scan beside bare nc_put_vara of the same vectors and counters.

#include "msfile.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <vector>

namespace {

constexpr int scans = 20000;
constexpr int points = 300;

MsFile openWrite()
{
    std::filesystem::create_directories(BENCH_FILES);
    MsFileLayout layout;
    layout.scan_count = scans;
    return MsFile::create(BENCH_FILES "/written.cdf", layout);
}

MsScanDraft scanOf(int number, float *masses, float *intensities)
{
    MsScanDraft scan(number);
    scan.point_count = points;
    scan.mass_values = masses;
    scan.intensity_values = intensities;
    return scan;
}

void writeWithToolkit(benchmark::State &state)
{
    std::vector<float> vector(points, 1.5f);
    for (auto _ : state) {
        MsFile file = openWrite();
        if (!file)
            return state.SkipWithError("can't be created");
        for (int number = 0; number < scans; ++number) {
            if (!file.write(scanOf(number, vector.data(), vector.data())))
                state.SkipWithError("not written");
        }
    }
}

// The same file and the same numbers, the toolkit's walkers aside.
void writeBare(benchmark::State &state)
{
    std::vector<float> vector(points, 1.5f);
    for (auto _ : state) {
        const MsFile opened = openWrite();
        if (!opened)
            return state.SkipWithError("can't be created");
        const int id = opened.id();
        const MsFileRecord &file = *opened.record();
        std::size_t start = 0;
        for (int number = 0; number < scans; ++number) {
            const MsScanDraft scan = scanOf(number, vector.data(), vector.data());
            const std::size_t at = std::size_t(number);
            const std::size_t one = 1;
            for (const MsVariableRow &row : ms_per_scan_table)
                nc_put_vara(id, file.variables[row.slot], &at, &one,
                            reinterpret_cast<const char *>(&scan) + row.field);
            const int index = int(start);
            nc_put_vara(id, file.variables[MsVar_point_count], &at, &one, &scan.point_count);
            nc_put_vara(id, file.variables[MsVar_flag_count], &at, &one, &scan.flag_count);
            nc_put_vara(id, file.variables[MsVar_scan_index], &at, &one, &index);
            const std::size_t count = points;
            nc_put_vara(id, file.variables[MsVar_intensity_values], &start, &count,
                        scan.intensity_values);
            nc_put_vara(id, file.variables[MsVar_mass_values], &start, &count, scan.mass_values);
            start += count;
        }
    }
}

} // namespace

BENCHMARK(writeBare)->Name("floor/write")->Unit(benchmark::kMillisecond);
BENCHMARK(writeWithToolkit)->Name("toolkit/write")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
