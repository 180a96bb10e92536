// Writes a run of three scans with the toolkit, reads it back and prints it.
#include <cstdio>
#include <mstoolkit.h>

// The four global records in one: no two have a field of the same name.
struct Global : MsAdminRecord, MsSampleRecord, MsTestRecord, MsRawGlobalRecord {
    Global() { ms_init_global(0, this, this, this, this); }
};

static bool writeRun(const char *path)
{
    const int file = ms_open_write(path, MsCentroidedSpectrum, 3, 0, MsFloatFormat, MsFloatFormat,
                                   MsFloatFormat, 1, 0); // with masses, without flight times
    Global global;
    char title[] = "Three scans of decane"; // stays ours: nothing releases these records
    global.experiment_title = title;
    global.raw_data_mass_format = global.raw_data_intensity_format = MsFloatFormat;
    bool written = ms_write_global(file, &global, &global, &global, &global) == 0;
    for (int i = 0; i < 3 && written; ++i) {
        float masses[] = {57.1f, 71.1f, 142.2f}, intensities[] = {1000.0f + float(i), 450.0f, 60.0f};
        MsScanRecord scan;
        ms_init_per_scan(0, &scan, nullptr);
        scan.scan_number = i;
        scan.scan_acquisition_time = 300.0 + 0.5 * i;
        scan.point_count = 3;
        scan.mass_values = masses;
        scan.intensity_values = intensities;
        written = ms_write_per_scan(file, &scan, nullptr) == 0;
    }
    written = written && nc_sync(file) == NC_NOERR; // ms_close doesn't tell of a full disk
    return ms_close(file) == 0 && written;
}

static bool printRun(const char *path)
{
    const int file = ms_open_read(path);
    Global global;
    bool read = ms_read_global(file, &global, &global, &global, &global) == 0;
    std::printf("%s\n", read ? global.experiment_title : "No run");
    for (int i = 0; i < global.scan_count && read; ++i) {
        MsScanRecord scan;
        ms_init_per_scan(0, &scan, nullptr);
        scan.scan_number = i;
        read = ms_read_per_scan(file, &scan, nullptr) == 0;
        std::printf("%g s, %d points\n", scan.scan_acquisition_time, scan.point_count);
        for (int j = 0; j < scan.point_count && read; ++j) // floats, as they were written
            std::printf("    %g: %g\n", static_cast<float *>(scan.mass_values)[j],
                        static_cast<float *>(scan.intensity_values)[j]);
        ms_init_per_scan(1, &scan, nullptr);
    }
    ms_init_global(1, &global, &global, &global, &global);
    ms_free(global.error_log);
    return ms_close(file) == 0 && read;
}

int main(int argc, char *argv[])
{
    return argc == 2 && writeRun(argv[1]) && printRun(argv[1]) ? 0 : 1;
}
