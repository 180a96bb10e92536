// Writes a run of three scans with the toolkit, reads it back and prints it.
#include <cstdio>
#include <msfile.h>

static bool writeRun(const char *path)
{
    MsFileLayout layout; // with masses and intensities as float
    layout.scan_count = 3;
    MsFile file = MsFile::create(path, layout);

    MsGlobalsDraft globals;
    char title[] = "Three scans of decane",
         time[] = "20240312142530+0000"; // stay ours: a draft owns nothing
    globals.admin.experiment_title = title;
    globals.admin.experiment_date_time_stamp = globals.admin.netcdf_file_date_time_stamp = time;
    globals.raw.raw_data_mass_format = globals.raw.raw_data_intensity_format = MsFloatFormat;
    bool written = file.write(globals);
    for (int i = 0; i < layout.scan_count && written; ++i) {
        float masses[] = {57.1f, 71.1f, 142.2f}, intensities[] = {1000.0f + float(i), 450.0f, 60.0f};
        MsScanDraft scan(i);
        scan.scan_acquisition_time = 300.0 + 0.5 * i;
        scan.point_count = 3;
        scan.mass_values = masses;
        scan.intensity_values = intensities;
        written = file.write(scan);
    }
    return written && file.finish();
}

static bool printRun(const char *path)
{
    const MsFile file(path);
    const MsGlobals globals = file.globals();
    const char *title = globals.admin.experiment_title; // null if there is none
    std::printf("%s\n", title ? title : "No title");
    bool read = globals.isRead();
    for (const MsScan &scan : file) {
        read = read && scan.isRead(); // one that isn't has no points
        const MsNumbers masses = scan.masses(), intensities = scan.intensities();
        std::printf("%g s, %d points\n", scan.scan_acquisition_time, intensities.size());
        for (int i = 0; i < masses.size() && i < intensities.size(); ++i)
            std::printf("    %g: %g\n", globals.mass(masses[i]), globals.intensity(intensities[i]));
    }
    return read;
}

int main(int argc, char *argv[])
{
    return argc == 2 && writeRun(argv[1]) && printRun(argv[1]) ? 0 : 1;
}
