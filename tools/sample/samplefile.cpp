// The file that a sample is written to.

#include "samplefile.h"

#include "messagelist.h"
#include "samplelibrary.h"
#include "samplerecords.h"
#include "samplerun.h"
#include "samplespectrum.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

namespace {

// Numbers in a data format of the file, each divided by a scale.
class StoredVector
{
public:
    StoredVector(qint32 format, double scale) : format_(format), scale_(scale) { }

    // Null for no values.
    void *store(const std::vector<double> &values)
    {
        values_.resize(values.size());
        std::transform(values.begin(), values.end(), values_.begin(),
                       [this](double value) { return value / scale_; });
        stored_.resize(values.size());
        const auto count = qint32(values.size());
        ms_transcode_vector(values_.data(), MsDoubleFormat, count, stored_.data(), format_, 1);
        ms_transcode_vector(stored_.data(), format_, count, values_.data(), MsDoubleFormat, 0);
        return stored_.empty() ? nullptr : stored_.data();
    }

    // What a reader makes of value i.
    double value(std::size_t i) const { return values_[i] * scale_; }

private:
    qint32 format_;
    double scale_;
    std::vector<double> stored_; // room enough for elements of any format
    std::vector<double> values_;
};

// The first scale from `scale` on, each `step` times the one before, with which `largest` fits in
// `format`.
double fitting_scale(qint32 format, double largest, double scale, double step)
{
    const double limit =
        format == MsShortFormat ? std::numeric_limits<qint16>::max() : std::numeric_limits<qint32>::max();
    while (largest / scale > limit)
        scale *= step;
    return scale;
}

bool is_whole(qint32 format)
{
    return format == MsShortFormat || format == MsLongFormat;
}

SampleScales scales_for(const SampleOptions &options, const SampleRun &run)
{
    SampleScales scales = {1.0, 1.0, 1.0};
    if (is_whole(options.mass_format))
        scales.mass = options.mass_format == MsShortFormat ? 0.05 : 0.0001;
    if (is_whole(options.time_format)) {
        const double end = run.clock().time(options.scans);
        const double finest = options.time_format == MsShortFormat ? 0.05 : 0.001;
        scales.time = fitting_scale(options.time_format, end, finest, 10.0);
    }
    if (is_whole(options.intensity_format))
        scales.intensity = fitting_scale(options.intensity_format, run.largest_count(), 1.0, 2.0);
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
    explicit SampleFile(const SampleOptions &options)
        : options_(options), run_(make_sample_run(options)), scales_(scales_for(options, *run_)),
          masses_(options.mass_format, scales_.mass), times_(options.time_format, scales_.time),
          counts_(options.intensity_format, scales_.intensity)
    {
        describe_sample(options, scales_, &texts_, &admin_, &sample_, &test_, &raw_);
    }
    ~SampleFile() { close(); }
    Q_DISABLE_COPY(SampleFile)

    bool write(const QByteArray &path)
    {
        ncid_ = ms_open_write(
            path.constData(), options_.is_library() ? MsLibrarySpectrum : MsCentroidedSpectrum,
            options_.scans, sample_component_count, options_.mass_format, options_.time_format,
            options_.intensity_format, options_.has_masses(), options_.has_times());
        // All is written, so filling it before would only take time, several times that of the writing.
        int before = NC_FILL;
        if (ncid_ == -1 || nc_set_fill(ncid_, NC_NOFILL, &before) != NC_NOERR)
            return false;
        // The ranges are known at the end; the first writing keeps room for them in the file's head.
        return write_global() && write_groups() && write_components() && write_scans() && write_global()
            && nc_sync(ncid_) == NC_NOERR;
    }

    void close()
    {
        if (ncid_ != -1)
            ms_close(ncid_);
        ncid_ = -1;
    }

private:
    bool write_global()
    {
        if (options_.has_masses()) {
            raw_.global_mass_min = mass_range_.min;
            raw_.global_mass_max = mass_range_.max;
        }
        raw_.global_time_min = time_range_.min;
        raw_.global_time_max = time_range_.max;
        raw_.global_intensity_min = count_range_.min;
        raw_.global_intensity_max = count_range_.max;
        raw_.actual_run_time_length = run_->clock().length();
        return ms_write_global(ncid_, &admin_, &sample_, &test_, &raw_) == 0;
    }

    bool write_components()
    {
        for (int i = 0; i < sample_component_count; ++i) {
            const MsInstrumentRecord component = sample_component(i, &texts_);
            if (ms_write_instrument(ncid_, &component) == -1)
                return false;
        }
        return true;
    }

    bool write_groups()
    {
        const std::vector<SampleGroup> &groups = run_->groups();
        if (groups.empty())
            return true;
        std::size_t width = 0;
        for (const SampleGroup &group : groups)
            width = std::max(width, group.masses.size());
        if (ms_define_groups(ncid_, qint32(groups.size()), qint32(width)) == -1)
            return false;
        for (std::size_t i = 0; i < groups.size(); ++i) {
            if (!write_group(qint32(i), groups[i], width))
                return false;
        }
        return true;
    }

    bool write_group(qint32 number, const SampleGroup &group, std::size_t width)
    {
        const std::size_t count = group.masses.size();
        std::vector<double> masses(width, MsMissingDouble);
        std::vector<double> sampling_times(width, MsMissingDouble);
        std::vector<double> delay_times(width, MsMissingDouble);
        for (std::size_t i = 0; i < count; ++i) {
            masses[i] = sample_peak_mass(group.masses[i]);
            // The masses share the half second of a scan; a tenth of it, the voltages settle.
            delay_times[i] = on_grid(0.05 / double(count), 10000.0);
            sampling_times[i] = on_grid(0.45 / double(count), 10000.0);
        }
        const MsGroupRecord record = {number,        qint32(count),         group.starting_scan,
                                      masses.data(), sampling_times.data(), delay_times.data()};
        return ms_write_group(ncid_, &record) == 0;
    }

    bool write_scans()
    {
        SampleScan scan;
        SampleTexts texts;
        for (int i = 0; i < options_.scans; ++i) {
            run_->scan(i, &scan);
            const MsScanRecord record = to_record(i, scan);
            if (!options_.is_library()) {
                if (ms_write_per_scan(ncid_, &record, nullptr) == -1)
                    return false;
                continue;
            }
            const MsLibraryRecord entry = sample_library_entry(i, &texts);
            if (ms_write_per_scan(ncid_, &record, &entry) == -1)
                return false;
            texts.clear();
        }
        return true;
    }

    MsScanRecord to_record(int number, const SampleScan &scan)
    {
        MsScanRecord record;
        ms_init_per_scan(0, &record, nullptr);
        record.scan_number = number;
        record.actual_scan_number = number;
        record.point_count = qint32(scan.counts.size());
        record.mass_values = masses_.store(scan.masses);
        record.time_values = times_.store(scan.times);
        record.intensity_values = counts_.store(scan.counts);
        record.scan_acquisition_time = scan.time;
        record.scan_duration = on_grid(double(test_.test_scan_time), 1000.0);
        record.inter_scan_time = 0.0;
        record.a_d_coaddition_factor = 1;
        time_range_.add(scan.time);
        add_points(scan, &record);

        flag_values_.assign(scan.saturated.size(), 1);
        flagged_peaks_ = scan.saturated;
        record.flag_count = qint32(flagged_peaks_.size());
        record.flagged_peaks = flagged_peaks_.empty() ? nullptr : flagged_peaks_.data();
        record.flag_values = flag_values_.empty() ? nullptr : flag_values_.data();
        return record;
    }

    // The scan's sum and ranges, of the numbers as they are stored.
    void add_points(const SampleScan &scan, MsScanRecord *record)
    {
        record->total_intensity = 0.0;
        for (std::size_t i = 0; i < scan.counts.size(); ++i) {
            const double count = counts_.value(i);
            record->total_intensity += count;
            count_range_.add(count);
        }
        if (!scan.masses.empty()) {
            record->mass_range_min = masses_.value(0);
            record->mass_range_max = masses_.value(scan.masses.size() - 1);
            mass_range_.add(record->mass_range_min);
            mass_range_.add(record->mass_range_max);
        }
        if (!scan.times.empty()) {
            record->time_range_min = times_.value(0);
            record->time_range_max = times_.value(scan.times.size() - 1);
        }
    }

    SampleOptions options_;
    std::unique_ptr<SampleRun> run_;
    SampleScales scales_;
    StoredVector masses_;
    StoredVector times_;
    StoredVector counts_;
    std::vector<qint32> flagged_peaks_;
    std::vector<qint16> flag_values_;
    Range mass_range_;
    Range time_range_;
    Range count_range_;
    SampleTexts texts_;
    MsAdminRecord admin_;
    MsSampleRecord sample_;
    MsTestRecord test_;
    MsRawGlobalRecord raw_;
    int ncid_ = -1;
};

// Whether the file can be opened without a complaint, such as that its end is missing.
bool reads_back(const QByteArray &path)
{
    bool complained = false;
    const MessageRedirection redirection(
        [&complained](MessageLoggerInterface::Level, const QString &) { complained = true; });
    const int ncid = ms_open_read(path.constData());
    ms_close(ncid);
    return ncid != -1 && !complained;
}

} // namespace

QString write_sample(const QString &path, const SampleOptions &options)
{
    // netCDF takes some names for addresses of a server.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return QStringLiteral("is no file that could be written over");
    if (info.exists() && !info.isWritable())
        return QStringLiteral("may not be written over");

    const QByteArray name = QFile::encodeName(info.absoluteFilePath());
    SampleFile file(options);
    const bool written = file.write(name);
    file.close();
    if (written && reads_back(name))
        return QString();
    if (!QFile::exists(info.absoluteFilePath()))
        return QStringLiteral("can't be created");
    if (!QFile::remove(info.absoluteFilePath()))
        return QStringLiteral("can't be written whole; what is there of it is incomplete");
    return QStringLiteral("can't be written whole (no room left?), and was removed");
}
