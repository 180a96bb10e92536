#include "benchfiles.h"
#include "msfile.h"

#include <algorithm>
#include <filesystem>
#include <netcdf.h>
#include <random>

namespace {

// Fails once, stays failed.
class Writer
{
public:
    Writer(const BenchRun &wanted, const std::string &path) : run(wanted)
    {
        int id = -1;
        check(nc_create(path.c_str(), NC_CLOBBER | NC_64BIT_OFFSET, &id));
        file = MsFile::adopt(id);
    }

    bool write()
    {
        define();
        writeNumbers();
        writePoints();
        return file.finish() && status == NC_NOERR;
    }

private:
    void check(int result)
    {
        if (status == NC_NOERR)
            status = result;
    }

    int variable(const char *name, int type, int dimension)
    {
        int result = -1;
        check(nc_def_var(file.id(), name, type, 1, &dimension, &result));
        return result;
    }

    void define()
    {
        const std::size_t total = std::size_t(run.scans) * std::size_t(run.points);
        int scan = -1;
        int point = -1;
        check(nc_def_dim(file.id(), "scan_number", std::size_t(run.scans), &scan));
        check(nc_def_dim(file.id(), "point_number", run.unlimited ? NC_UNLIMITED : total, &point));
        for (const char *name : benchNumbers)
            perScan.push_back(variable(name, NC_DOUBLE, scan));
        coaddition = variable("a_d_coaddition_factor", NC_SHORT, scan);
        actual = variable("actual_scan_number", NC_INT, scan);
        index = variable("scan_index", NC_INT, scan);
        count = variable("point_count", NC_INT, scan);
        flags = variable("flag_count", NC_INT, scan);
        masses = variable("mass_values", run.massType, point);
        intensities = variable("intensity_values", run.intensityType, point);
        const double scale = run.massType == NC_SHORT || run.massType == NC_INT ? 0.01 : 1.0;
        check(nc_put_att_double(file.id(), masses, "scale_factor", NC_DOUBLE, 1, &scale));
        check(nc_set_fill(file.id(), NC_NOFILL, nullptr));
        check(nc_enddef(file.id()));
    }

    void writeNumbers()
    {
        std::vector<double> values(std::size_t(run.scans));
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = double(i) * 0.25;
        for (const int each : perScan)
            check(nc_put_var_double(file.id(), each, values.data()));
        std::vector<int> whole(values.size());
        for (std::size_t i = 0; i < whole.size(); ++i)
            whole[i] = int(i) * run.points;
        check(nc_put_var_int(file.id(), index, whole.data()));
        std::fill(whole.begin(), whole.end(), run.points);
        check(nc_put_var_int(file.id(), count, whole.data()));
        std::fill(whole.begin(), whole.end(), 0);
        check(nc_put_var_int(file.id(), flags, whole.data()));
        check(nc_put_var_int(file.id(), actual, whole.data()));
        check(nc_put_var_int(file.id(), coaddition, whole.data()));
    }

    // Many scans at a time, each ascending in mass. Hundredths from 30 on, as the table keeps them;
    // masses stored as float or double lie within a few thousandths of these, as measured ones do.
    void writePoints()
    {
        std::mt19937 random(1);
        const bool measured = run.massType == NC_FLOAT || run.massType == NC_DOUBLE;
        const int spread = std::max(1, 65000 / run.masses / 2);
        const int block = std::max(1, 1000000 / run.points);
        for (int first = 0; first < run.scans; first += block) {
            const int scans = std::min(block, run.scans - first);
            std::vector<double> mass(std::size_t(scans) * std::size_t(run.points));
            std::vector<double> intensity(mass.size());
            for (std::size_t i = 0; i < mass.size(); ++i) {
                const int key = 3000 + int(random() % unsigned(run.masses)) * std::min(spread, 10);
                mass[i] = measured ? (key + double(random() % 9) / 10.0 - 0.4) / 100.0 : key;
                intensity[i] = double(1 + random() % 30000);
            }
            for (int scan = 0; scan < scans; ++scan)
                std::sort(mass.begin() + std::ptrdiff_t(scan) * run.points,
                          mass.begin() + std::ptrdiff_t(scan + 1) * run.points);
            const std::size_t start = std::size_t(first) * std::size_t(run.points);
            const std::size_t size = mass.size();
            check(nc_put_vara_double(file.id(), masses, &start, &size, mass.data()));
            check(nc_put_vara_double(file.id(), intensities, &start, &size, intensity.data()));
        }
    }

    const BenchRun &run;
    MsFile file;
    int status = NC_NOERR;
    std::vector<int> perScan;
    int coaddition = -1;
    int actual = -1;
    int index = -1;
    int count = -1;
    int flags = -1;
    int masses = -1;
    int intensities = -1;
};

} // namespace

const std::vector<BenchRun> &benchRuns()
{
    // clang-format off
    static const std::vector<BenchRun> runs = {
        {"long-fixed",         false,  20000, 300,  1000, NC_FLOAT,  NC_FLOAT},
        {"long-unlimited",     true,   20000, 300,  1000, NC_FLOAT,  NC_FLOAT},
        {"long-fixed-65000",   false,  20000, 300, 65000, NC_FLOAT,  NC_FLOAT},
        {"short-fixed",        false, 300000,  20,  1000, NC_FLOAT,  NC_FLOAT},
        {"short-unlimited",    true,  300000,  20,  1000, NC_FLOAT,  NC_FLOAT},
        {"shorts-longs",       false,  20000, 300,  1000, NC_SHORT,  NC_INT},
        {"longs-shorts",       false,  20000, 300,  1000, NC_INT,    NC_SHORT},
        {"doubles",            false,  20000, 300,  1000, NC_DOUBLE, NC_DOUBLE},
        {"million",            false,   3334, 300,  1000, NC_FLOAT,  NC_FLOAT},
        {"hundred-million",    false, 333334, 300,  1000, NC_FLOAT,  NC_FLOAT},
    };
    // clang-format on
    return runs;
}

std::string benchFile(const BenchRun &run)
{
    const std::filesystem::path folder = std::filesystem::path(BENCH_FILES);
    std::filesystem::create_directories(folder);
    const std::string path = (folder / (std::string(run.name) + ".cdf")).string();
    if (std::filesystem::exists(path))
        return path;
    const std::string unfinished = path + ".part";
    if (!Writer(run, unfinished).write())
        return std::string();
    std::filesystem::rename(unfinished, path);
    return path;
}
