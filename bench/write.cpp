// ms_write_per_scan beside bare nc_put_vara of the same vectors and counters.

#include "mstoolkit.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <vector>

namespace {

constexpr int scans = 20000;
constexpr int points = 300;

int openWrite()
{
    std::filesystem::create_directories(BENCH_FILES);
    return ms_open_write(BENCH_FILES "/written.cdf", MsCentroidedSpectrum, scans, 0, MsFloatFormat,
                         MsFloatFormat, MsFloatFormat, 1, 0);
}

MsScanRecord scanOf(int number, float *masses, float *intensities)
{
    MsScanRecord scan;
    ms_init_per_scan(0, &scan, nullptr);
    scan.scan_number = number;
    scan.point_count = points;
    scan.mass_values = masses;
    scan.intensity_values = intensities;
    return scan;
}

void writeWithToolkit(benchmark::State &state)
{
    std::vector<float> vector(points, 1.5f);
    for (auto _ : state) {
        const int id = openWrite();
        if (id == -1)
            return state.SkipWithError("can't be created");
        for (int number = 0; number < scans; ++number) {
            const MsScanRecord scan = scanOf(number, vector.data(), vector.data());
            if (ms_write_per_scan(id, &scan, nullptr) == -1)
                state.SkipWithError("not written");
        }
        ms_close(id);
    }
}

// The same file and the same numbers, the toolkit's walkers aside.
void writeBare(benchmark::State &state)
{
    std::vector<float> vector(points, 1.5f);
    for (auto _ : state) {
        const int id = openWrite();
        if (id == -1)
            return state.SkipWithError("can't be created");
        const MsFileRecord &file = *ms_file_record(id);
        std::size_t start = 0;
        for (int number = 0; number < scans; ++number) {
            const MsScanRecord scan = scanOf(number, vector.data(), vector.data());
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
        ms_close(id);
    }
}

} // namespace

BENCHMARK(writeBare)->Name("floor/write")->Unit(benchmark::kMillisecond);
BENCHMARK(writeWithToolkit)->Name("toolkit/write")->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
