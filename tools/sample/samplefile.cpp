// The file that a sample is written to.

#include "samplefile.h"

#include "interruption.h"
#include "messageredirection.h"
#include "msformat.h"
#include "samplelibrary.h"
#include "samplerecords.h"
#include "samplerun.h"
#include "samplespectrum.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

// Numbers in a data format of the file, each divided by a scale.
class StoredVector
{
public:
    StoredVector(qint32 dataFormat, double scaleFactor) : format(dataFormat), scale(scaleFactor) { }

    // Null for no values.
    void *store(const std::vector<double> &numbers)
    {
        values.resize(numbers.size());
        std::transform(numbers.begin(), numbers.end(), values.begin(),
                       [this](double number) { return number / scale; });
        stored.resize(numbers.size());
        const auto count = qint32(values.size());
        ms_transcode_vector(values.data(), MsDoubleFormat, count, stored.data(), format, 1);
        ms_transcode_vector(stored.data(), format, count, values.data(), MsDoubleFormat, 0);
        return stored.empty() ? nullptr : stored.data();
    }

    // Returns what a reader makes of value i.
    double value(std::size_t i) const { return values[i] * scale; }

private:
    qint32 format;
    double scale;
    std::vector<double> stored; // room enough for elements of any format
    std::vector<double> values;
};

// Returns the first of the scales `scale`, `scale` x `step`, `scale` x `step` x `step`, ... with which
// `largest` fits in `format`.
double fittingScale(qint32 format, double largest, double scale, double step)
{
    const double limit = ms_with_format(format, [](auto *type) {
        return double(std::numeric_limits<std::remove_pointer_t<decltype(type)>>::max());
    });
    while (largest / scale > limit)
        scale *= step;
    return scale;
}

bool isWhole(qint32 format)
{
    return ms_with_format(
        format, [](auto *type) { return std::is_integral_v<std::remove_pointer_t<decltype(type)>>; });
}

SampleScales scalesFor(const SampleOptions &options, const SampleRun &run)
{
    SampleScales scales = {1.0, 1.0, 1.0};
    if (isWhole(options.massFormat))
        scales.mass = options.massFormat == MsShortFormat ? 0.05 : 0.0001;
    if (isWhole(options.timeFormat)) {
        const double end = run.clock().time(options.scans);
        const double finest = options.timeFormat == MsShortFormat ? 0.05 : 0.001;
        scales.time = fittingScale(options.timeFormat, end, finest, 10.0);
    }
    if (isWhole(options.intensityFormat))
        scales.intensity = fittingScale(options.intensityFormat, run.largestCount(), 1.0, 2.0);
    return scales;
}

struct Range {
    double min = 0.0;
    double max = 0.0;
    bool empty = true;

    void add(double value)
    {
        min = empty ? value : std::min(min, value);
        max = empty ? value : std::max(max, value);
        empty = false;
    }
};

class SampleFile
{
public:
    explicit SampleFile(const SampleOptions &wanted)
        : options(wanted), run(makeSampleRun(options)), scales(scalesFor(options, *run)),
          masses(options.massFormat, scales.mass), times(options.timeFormat, scales.time),
          counts(options.intensityFormat, scales.intensity)
    {
        describeSample(options, scales, &texts, &globals);
    }

    bool write(const QByteArray &path)
    {
        MsFileLayout layout;
        layout.experiment_type = options.isLibrary() ? MsLibrarySpectrum : MsCentroidedSpectrum;
        layout.scan_count = options.scans;
        layout.instrument_count = sampleComponentCount;
        layout.mass_format = options.massFormat;
        layout.time_format = options.timeFormat;
        layout.intensity_format = options.intensityFormat;
        layout.has_mass_values = options.hasMasses();
        layout.has_time_values = options.hasTimes();
        file = MsFile::create(path.constData(), layout);
        if (file)
            errno = 0; // from here on, it tells of a write that failed
        // Every number is written, so filling the file first would only take time: several times that of
        // the writing.
        int before = NC_FILL;
        if (!file || nc_set_fill(file.id(), NC_NOFILL, &before) != NC_NOERR)
            return false;
        // The ranges are known at the end only. The first writing makes room for them in the file's
        // header.
        return writeGlobal() && writeGroups() && writeComponents() && writeScans() && writeGlobal()
            && file.finish();
    }

private:
    bool writeGlobal()
    {
        MsRawGlobalRecord &raw = globals.raw;
        if (options.hasMasses()) {
            raw.global_mass_min = massRange.min;
            raw.global_mass_max = massRange.max;
        }
        raw.global_time_min = timeRange.min;
        raw.global_time_max = timeRange.max;
        raw.global_intensity_min = countRange.min;
        raw.global_intensity_max = countRange.max;
        raw.actual_run_time_length = run->clock().length();
        return file.write(globals);
    }

    bool writeComponents()
    {
        for (int i = 0; i < sampleComponentCount; ++i) {
            if (!file.write(sampleComponent(i, &texts)))
                return false;
        }
        return true;
    }

    bool writeGroups()
    {
        const std::vector<SampleGroup> &groups = run->groups();
        if (groups.empty())
            return true;
        std::size_t width = 0;
        for (const SampleGroup &group : groups)
            width = std::max(width, group.masses.size());
        if (!file.defineGroups(qint32(groups.size()), qint32(width)))
            return false;
        for (std::size_t i = 0; i < groups.size(); ++i) {
            if (!writeGroup(qint32(i), groups[i], width))
                return false;
        }
        return true;
    }

    bool writeGroup(qint32 number, const SampleGroup &group, std::size_t width)
    {
        const std::size_t count = group.masses.size();
        std::vector<double> groupMasses(width, MsMissingDouble);
        std::vector<double> samplingTimes(width, MsMissingDouble);
        std::vector<double> delayTimes(width, MsMissingDouble);
        for (std::size_t i = 0; i < count; ++i) {
            groupMasses[i] = samplePeakMass(group.masses[i]);
            // The masses share the half second of a scan. For a tenth of it the voltages settle.
            delayTimes[i] = onGrid(0.05 / double(count), 10000.0);
            samplingTimes[i] = onGrid(0.45 / double(count), 10000.0);
        }
        MsGroupDraft record(number);
        record.group_mass_count = qint32(count);
        record.group_starting_scan = group.startingScan;
        record.group_masses = groupMasses.data();
        record.group_sampling_times = samplingTimes.data();
        record.group_delay_times = delayTimes.data();
        return file.write(record);
    }

    bool writeScans()
    {
        SampleScan scan;
        SampleTexts entryTexts;
        for (int i = 0; i < options.scans; ++i) {
            run->scan(i, &scan);
            const MsScanDraft record = toRecord(i, scan);
            const bool written = options.isLibrary()
                ? file.write(record, sampleLibraryEntry(i, &entryTexts))
                : file.write(record);
            if (!written || isInterrupted())
                return false;
            entryTexts.clear();
        }
        return true;
    }

    MsScanDraft toRecord(int number, const SampleScan &scan)
    {
        MsScanDraft record(number);
        record.actual_scan_number = number;
        record.point_count = qint32(scan.counts.size());
        record.mass_values = masses.store(scan.masses);
        record.time_values = times.store(scan.times);
        record.intensity_values = counts.store(scan.counts);
        record.scan_acquisition_time = scan.time;
        record.scan_duration = onGrid(double(globals.test.test_scan_time), 1000.0);
        record.inter_scan_time = 0.0;
        record.a_d_coaddition_factor = 1;
        timeRange.add(scan.time);
        addPoints(scan, &record);

        flagValues.assign(scan.saturated.size(), 1);
        flaggedPeaks = scan.saturated;
        record.flag_count = qint32(flaggedPeaks.size());
        record.flagged_peaks = flaggedPeaks.empty() ? nullptr : flaggedPeaks.data();
        record.flag_values = flagValues.empty() ? nullptr : flagValues.data();
        return record;
    }

    // Adds the scan's sum and ranges, of the numbers as they are stored.
    void addPoints(const SampleScan &scan, MsScanRecord *record)
    {
        record->total_intensity = 0.0;
        for (std::size_t i = 0; i < scan.counts.size(); ++i) {
            const double count = counts.value(i);
            record->total_intensity += count;
            countRange.add(count);
        }
        if (!scan.masses.empty()) {
            record->mass_range_min = masses.value(0);
            record->mass_range_max = masses.value(scan.masses.size() - 1);
            massRange.add(record->mass_range_min);
            massRange.add(record->mass_range_max);
        }
        if (!scan.times.empty()) {
            record->time_range_min = times.value(0);
            record->time_range_max = times.value(scan.times.size() - 1);
        }
    }

    SampleOptions options;
    std::unique_ptr<SampleRun> run;
    SampleScales scales;
    StoredVector masses;
    StoredVector times;
    StoredVector counts;
    std::vector<qint32> flaggedPeaks;
    std::vector<qint16> flagValues;
    Range massRange;
    Range timeRange;
    Range countRange;
    SampleTexts texts;
    MsGlobalsDraft globals;
    MsFile file;
};

// Whether the file can be opened without a complaint, such as that its end is missing.
bool readsBack(const QByteArray &path)
{
    bool complained = false;
    const MessageRedirection redirection(
        [&complained](MessageLoggerInterface::Level, const QString &) { complained = true; });
    const MsFile file(path.constData());
    return file && !complained;
}

} // namespace

QString writeSample(const QByteArray &path, const SampleOptions &options)
{
    SampleFile file(options);
    if (!file.write(path)) {
        if (isInterrupted())
            return QStringLiteral("it was interrupted");
        return errno == 0 ? QStringLiteral("netCDF refuses it") : qt_error_string(errno);
    }
    return readsBack(path) ? QString() : QStringLiteral("what was written can't be read back");
}
