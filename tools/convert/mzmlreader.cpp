#include "mzmlreader.h"

#include "cdfdescription.h"
#include "cdfwriter.h"
#include "commonnumbers.h"
#include "countedtext_p.h"
#include "interruption.h"
#include "mzmlchoice.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include <pwiz/data/msdata/MSDataFile.hpp>
#include <pwiz/utility/misc/random_access_compressed_ifstream.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

constexpr double secondsPerMinute = 60.0;

// Returns a number of a parameter; missing where it has none.
double numberOf(const CVParam &parameter)
{
    if (parameter.empty())
        return MsMissingDouble;
    bool isNumber = false;
    const double number = textOf(parameter.value).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? number : MsMissingDouble;
}

double secondsOf(const CVParam &time)
{
    const double number = numberOf(time);
    return number != MsMissingDouble && time.units == UO_minute ? number * secondsPerMinute : number;
}

// Whether the first arrays of the file are of 32 bits: the library makes doubles of all and doesn't tell.
// The answer is a guess where a file names the precision elsewhere; the numbers themselves decide then.
bool hasNarrowArrays(const QString &input)
{
    pwiz::util::random_access_compressed_ifstream file(QFile::encodeName(input).constData());
    constexpr std::size_t enough = 1 << 18;
    std::string beginning(enough, '\0');
    file.read(&beginning[0], std::streamsize(enough));
    beginning.resize(std::size_t(std::max<std::streamsize>(file.gcount(), 0)));
    const auto has = [&beginning](const char *text) { return beginning.find(text) != std::string::npos; };
    return (has("MS:1000521") || has("precision=\"32\"")) && !has("MS:1000523")
        && !has("precision=\"64\"");
}

class MzMlConversion
{
public:
    MzMlConversion(const QString &name, const ConversionOptions &wanted, ProgressBar *bar,
                   ConversionLog *messages)
        : input(name), options(wanted), progress(bar), log(messages),
          source(QFile::encodeName(name).constData())
    {
    }

    bool write(const QByteArray &path)
    {
        if (!source.run.spectrumListPtr || source.run.spectrumListPtr->size() == 0)
            return writeTrace(path);
        if (!chooseSpectra(*source.run.spectrumListPtr, options, &choice, log))
            return false;
        warnOfOtherTraces();
        description.emplace(source, input, choice);
        const bool isNarrow = hasNarrowArrays(input);
        bool doesFit = true;
        bool isWritten = writeAs(path, isNarrow ? MsFloatFormat : MsDoubleFormat, &doesFit);
        if (!doesFit)
            isWritten = writeAs(path, MsDoubleFormat, &doesFit);
        return isWritten;
    }

private:
    // All chromatograms but that of the total ion current.
    void warnOfOtherTraces()
    {
        std::size_t others = 0;
        const ChromatogramListPtr &list = source.run.chromatogramListPtr;
        for (std::size_t i = 0; list && i < list->size(); ++i)
            others += list->chromatogramIdentity(i).id != "TIC";
        if (others > 0)
            log->warn(
                ms_counted_text("%1 [chromatogram is|chromatograms are] left out.", qint64(others)));
    }

    // A run without spectra becomes a trace: a time and a total for each scan.
    bool writeTrace(const QByteArray &path)
    {
        const ChromatogramListPtr &list = source.run.chromatogramListPtr;
        const std::size_t place = list ? list->find("TIC") : 0;
        const ChromatogramPtr trace =
            list && place < list->size() ? list->chromatogram(place, true) : ChromatogramPtr();
        std::vector<TimeIntensityPair> pairs;
        if (trace)
            trace->getTimeIntensityPairs(pairs);
        constexpr std::size_t mostScans = 1 << 30;
        if (pairs.empty() || pairs.size() > mostScans)
            return log->fail(QStringLiteral("it has neither spectra nor a total ion current"));
        warnOfOtherTraces();
        description.emplace(source, input, choice);
        const bool inMinutes = trace->getTimeArray()->cvParam(MS_time_array).units == UO_minute;
        description->setUnit(trace->getIntensityArray()->cvParam(MS_intensity_array).units);
        CdfWriter::Head head = headOf(pairs.size(), MsDoubleFormat);
        head.layout.has_mass_values = false;
        head.layout.has_time_values = true;
        CdfWriter writer(path, head, log);
        bool isWritten = writer.failure().isNull();
        for (std::size_t i = 0; isWritten && i < pairs.size(); ++i) {
            if (isInterrupted())
                return log->fail(QStringLiteral("it was interrupted"));
            MsScanDraft scan{qint32(i)};
            takeCommonNumbers(source.run, &scan);
            scan.actual_scan_number = qint32(i);
            scan.point_count = 0;
            scan.flag_count = 0;
            scan.total_intensity = pairs[i].intensity;
            scan.scan_acquisition_time = inMinutes ? pairs[i].time * secondsPerMinute : pairs[i].time;
            isWritten = writer.add(scan);
        }
        return (isWritten && writer.finish()) || log->fail(writer.failure());
    }

    // Writes the file with points of that format. `doesFit` becomes false where a number needs more.
    bool writeAs(const QByteArray &path, qint32 format, bool *doesFit)
    {
        *doesFit = true;
        readUnit();
        CdfWriter writer(path, headOf(choice.spectra.size(), format), log);
        if (!writer.failure().isNull())
            return log->fail(writer.failure());
        const auto count = int(choice.spectra.size());
        const int step = std::max(count / 100, 1);
        for (int i = 0; i < count; ++i) {
            if (isInterrupted())
                return log->fail(QStringLiteral("it was interrupted"));
            const SpectrumPtr spectrum =
                source.run.spectrumListPtr->spectrum(choice.spectra[std::size_t(i)], true);
            if (!takePoints(*spectrum, format)) {
                *doesFit = false;
                return false;
            }
            if (!writer.add(scanOf(*spectrum, i, format)))
                return log->fail(writer.failure());
            if (i % step == 0)
                progress->show(i, count);
        }
        return writer.finish() || log->fail(writer.failure());
    }

    CdfWriter::Head headOf(std::size_t scanCount, qint32 format)
    {
        CdfWriter::Head head;
        head.layout.experiment_type = description->globals.admin.experiment_type;
        head.layout.scan_count = qint32(scanCount);
        head.layout.mass_format = format;
        head.layout.time_format = MsDoubleFormat;
        head.layout.intensity_format = format;
        head.globals = &description->globals;
        for (const auto &instrument : description->instruments)
            head.instruments.push_back(&instrument);
        return head;
    }

    void readUnit()
    {
        const SpectrumPtr spectrum = source.run.spectrumListPtr->spectrum(choice.spectra.front(), true);
        const BinaryDataArrayPtr array = spectrum->getIntensityArray();
        description->setUnit(array ? array->cvParam(MS_intensity_array).units : CVID_Unknown);
    }

    // Puts the points in the order of their masses. Returns false where the format can't hold one.
    bool takePoints(const Spectrum &spectrum, qint32 format)
    {
        const BinaryDataArrayPtr massArray = spectrum.getMZArray();
        const BinaryDataArrayPtr intensityArray = spectrum.getIntensityArray();
        const std::size_t massCount = massArray ? massArray->data.size() : 0;
        const std::size_t count = std::min(massCount, intensityArray ? intensityArray->data.size() : 0);
        if (massCount != (intensityArray ? intensityArray->data.size() : 0))
            log->lose(QStringLiteral(
                "In some spectra, masses and intensities aren't as many; the rest is left out."));
        points.resize(count);
        for (std::size_t i = 0; i < count; ++i)
            points[i] = {massArray->data[i], intensityArray->data[i]};
        if (!std::is_sorted(points.begin(), points.end(), isLighter)) {
            std::stable_sort(points.begin(), points.end(), isLighter);
            log->warn(QStringLiteral("The points of some spectra are put in the order of their masses."));
        }
        doubles[0].clear();
        doubles[1].clear();
        floats[0].clear();
        floats[1].clear();
        for (const auto &point : points) {
            if (format == MsDoubleFormat) {
                doubles[0].push_back(point.first);
                doubles[1].push_back(point.second);
                continue;
            }
            floats[0].push_back(float(point.first));
            floats[1].push_back(float(point.second));
            if (double(floats[0].back()) != point.first || double(floats[1].back()) != point.second)
                return false;
        }
        return true;
    }

    static bool isLighter(const std::pair<double, double> &one, const std::pair<double, double> &other)
    {
        return one.first < other.first;
    }

    MsScanDraft scanOf(const Spectrum &spectrum, int place, qint32 format)
    {
        MsScanDraft scan(place);
        takeCommonNumbers(source.run, &scan);
        scan.actual_scan_number = numberOfScan(spectrum, place);
        scan.point_count = qint32(points.size());
        scan.flag_count = 0;
        if (!points.empty()) {
            scan.mass_values =
                format == MsFloatFormat ? static_cast<void *>(floats[0].data()) : doubles[0].data();
            scan.intensity_values =
                format == MsFloatFormat ? static_cast<void *>(floats[1].data()) : doubles[1].data();
        }
        scan.total_intensity = numberOf(spectrum.cvParam(MS_total_ion_current));
        if (scan.total_intensity == MsMissingDouble) {
            scan.total_intensity = 0.0;
            for (const auto &point : points)
                scan.total_intensity += point.second;
        }
        if (spectrum.scanList.scans.empty())
            return scan;
        const Scan &details = spectrum.scanList.scans.front();
        scan.scan_acquisition_time = secondsOf(details.cvParam(MS_scan_start_time));
        if (!details.scanWindows.empty()) {
            scan.mass_range_min =
                numberOf(details.scanWindows.front().cvParam(MS_scan_window_lower_limit));
            scan.mass_range_max =
                numberOf(details.scanWindows.front().cvParam(MS_scan_window_upper_limit));
        }
        return scan;
    }

    static qint32 numberOfScan(const Spectrum &spectrum, int place)
    {
        bool isNumber = false;
        const qint32 number = textOf(id::value(spectrum.id, "scan")).toInt(&isNumber);
        return isNumber ? number : place;
    }

    const QString input;
    const ConversionOptions &options;
    ProgressBar *progress;
    ConversionLog *log;
    MSDataFile source;
    MzMlChoice choice;
    std::optional<CdfDescription> description;
    std::vector<std::pair<double, double>> points; // of the spectrum at hand
    std::vector<double> doubles[2];
    std::vector<float> floats[2];
};

} // namespace

bool convertToCdf(const QString &input, const QByteArray &path, const ConversionOptions &options,
                  ProgressBar *progress, ConversionLog *log)
{
    try {
        MzMlConversion conversion(input, options, progress, log);
        return conversion.write(path);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &reason) { // all that the library throws
        return log->fail(QStringLiteral("it can't be read, and may be cut off or damaged: %1")
                             .arg(QString::fromUtf8(reason.what()).simplified()));
    }
}
