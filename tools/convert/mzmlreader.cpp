#include "mzmlreader.h"

#include "arrayformats.h"
#include "cdfdescription.h"
#include "cdfwriter.h"
#include "commonnumbers.h"
#include "countedtext_p.h"
#include "interruption.h"
#include "mzmlchoice.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <deque>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <pwiz/data/msdata/MSDataFile.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

// Returns how many seconds a unit has; 0 for none that is known.
double secondsIn(CVID unit)
{
    switch (unit) {
    case UO_microsecond:
        return 1e-6;
    case UO_millisecond:
        return 1e-3;
    case UO_second:
        return 1.0;
    case UO_minute:
        return 60.0;
    case UO_hour:
        return 3600.0;
    default:
        return 0.0;
    }
}

// Returns a number of a parameter; missing where it has none.
double numberOf(const CVParam &parameter)
{
    if (parameter.empty())
        return MsMissingDouble;
    bool isNumber = false;
    const double number = textOf(parameter.value).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? number : MsMissingDouble;
}

// Returns the number of a time; missing where it has none. Of mzXML's PT1H2M3.5S the library leaves
// 1H2M3.5 and calls it seconds.
double timeOf(const CVParam &parameter)
{
    static const QRegularExpression parts(QRegularExpression::anchoredPattern(
        QStringLiteral("(?:(\\d+)H)?(?:(\\d+)M)?(\\d+(?:\\.\\d*)?)")));
    const double number = numberOf(parameter);
    const QRegularExpressionMatch duration = parts.match(textOf(parameter.value));
    if (number != MsMissingDouble || !duration.hasMatch())
        return number;
    const auto part = [&duration](int place) { return duration.captured(place).toDouble(); };
    return (part(1) * 60.0 + part(2)) * 60.0 + part(3);
}

// Readers of .cdf files take these for points that were never written. Not ms_is_given: a point may be
// -9999.
bool isNoData(double number)
{
    return !std::isfinite(number) || ms_is_fill(NC_DOUBLE, number);
}

// Whether the chromatogram is the total ion current of the run.
bool isTotal(const ChromatogramList &list, std::size_t place)
{
    return list.chromatogram(place, false)->hasCVParam(MS_total_ion_current_chromatogram);
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
        findTrace(); // the spectra have the total ion current
        const UntoldFormats untold = untoldFormats(input);
        warnOfKinds(untold.lacksKind);
        description.emplace(source, input, choice);
        formats = untold.arrays;
        bool doesFit = true;
        bool isWritten = false;
        do
            isWritten = writeAs(path, &doesFit);
        while (!doesFit); // with a wider format
        return isWritten;
    }

private:
    // The template has one word for the kind of all spectra.
    void warnOfKinds(bool isKindMadeUp) const
    {
        if (choice.isProfile && choice.isCentroided)
            log->warn(QStringLiteral(
                "Some spectra are centroided and some are profiles; all are taken for profiles."));
        if (choice.isOfUnsaidKind || isKindMadeUp)
            log->warn(QStringLiteral("The file doesn't say whether its spectra are centroided; they are "
                                     "taken for %1.")
                          .arg(choice.isProfile ? QStringLiteral("profiles")
                                                : QStringLiteral("centroided ones")));
    }

    // Returns the first chromatogram that is the total ion current, and warns of all others.
    ChromatogramPtr findTrace() const
    {
        ChromatogramPtr trace;
        std::size_t others = 0;
        const ChromatogramListPtr &list = source.run.chromatogramListPtr;
        for (std::size_t i = 0; list && i < list->size(); ++i) {
            if (!trace && isTotal(*list, i))
                trace = list->chromatogram(i, true);
            else
                ++others;
        }
        if (others > 0)
            log->warn(
                ms_counted_text("%1 [chromatogram is|chromatograms are] left out.", qint64(others)));
        return trace;
    }

    // Returns a time in seconds.
    double secondsOf(double time, CVID unit) const
    {
        const double factor = secondsIn(unit);
        if (factor == 0.0)
            log->warn(
                QStringLiteral("Its times have no unit that is known; they are taken for seconds."));
        return factor == 0.0 ? time : time * factor;
    }

    // A run without spectra becomes a trace: a time and a total for each scan.
    bool writeTrace(const QByteArray &path)
    {
        const ChromatogramPtr trace = findTrace();
        std::vector<TimeIntensityPair> pairs;
        if (trace)
            trace->getTimeIntensityPairs(pairs);
        constexpr std::size_t mostScans = 1 << 30;
        if (pairs.empty() || pairs.size() > mostScans)
            return log->fail(QStringLiteral("it has neither spectra nor a total ion current"));
        description.emplace(source, input, choice);
        const CVID timeUnit = trace->getTimeArray()->cvParam(MS_time_array).units;
        description->setUnit(trace->getIntensityArray()->cvParam(MS_intensity_array).units);
        CdfWriter::Head head = headOf(pairs.size());
        head.layout.has_mass_values = false;
        head.layout.has_time_values = true;
        CdfWriter writer(path, head, log);
        bool isWritten = writer.failure().isNull();
        for (std::size_t i = 0; isWritten && i < pairs.size(); ++i) {
            if (isInterrupted())
                return false;
            MsScanDraft scan{qint32(i)};
            takeCommonNumbers(source.run, &scan);
            scan.actual_scan_number = qint32(i);
            scan.point_count = 0;
            scan.flag_count = 0;
            scan.total_intensity = pairs[i].intensity;
            scan.scan_acquisition_time = secondsOf(pairs[i].time, timeUnit);
            isWritten = writer.add(scan);
        }
        return (isWritten && writer.finish()) || log->fail(writer.failure());
    }

    // Writes the file with points of those formats. Where a number needs more, its format becomes double
    // and `doesFit` false.
    bool writeAs(const QByteArray &path, bool *doesFit)
    {
        *doesFit = true;
        withoutData = 0;
        numbers.clear();
        unnumbered = 0;
        readUnit();
        CdfWriter writer(path, headOf(choice.spectra.size()), log);
        if (!writer.failure().isNull())
            return log->fail(writer.failure());
        const auto count = int(choice.spectra.size());
        const int step = std::max(count / 100, 1);
        for (int i = 0; i < count; ++i) {
            if (isInterrupted())
                return false;
            const SpectrumPtr spectrum = spectrumAt(i);
            if (!takePoints(*spectrum)) {
                *doesFit = false;
                return false;
            }
            warnOfRest(*spectrum);
            const MsScanDraft scan = scanOf(*spectrum, i);
            numbers.push_back(scan.actual_scan_number);
            if (!writer.add(scan))
                return log->fail(writer.failure());
            if (i % step == 0)
                progress->show(i, count);
        }
        warnOfNumbers();
        if (withoutData > 0)
            log->lose(ms_counted_text(
                "%1 [point|points] whose mass or intensity is infinite, no number or the fill value "
                "of netCDF [is|are] left out.",
                withoutData));
        return writer.finish() || log->fail(writer.failure());
    }

    // Returns a spectrum that was chosen, with its points.
    SpectrumPtr spectrumAt(int place) const
    {
        const std::size_t index = choice.spectra[std::size_t(place)];
        try {
            return source.run.spectrumListPtr->spectrum(index, true);
        } catch (const std::runtime_error &reason) {
            // The library takes packed arrays without numbers for damaged ones.
            const SpectrumPtr spectrum = source.run.spectrumListPtr->spectrum(index, false);
            if (spectrum->defaultArrayLength > 0 || !std::strstr(reason.what(), "Compression error"))
                throw;
            spectrum->binaryDataArrayPtrs.clear();
            return spectrum;
        }
    }

    // Says what of a spectrum has no place in the template.
    void warnOfRest(const Spectrum &spectrum) const
    {
        if (spectrum.binaryDataArrayPtrs.size() > 2)
            log->warn(QStringLiteral("What points have besides masses and intensities is left out."));
        if (!spectrum.precursors.empty())
            log->warn(QStringLiteral("The precursors of spectra are left out."));
        if (spectrum.scanList.scans.size() > 1)
            log->warn(QStringLiteral(
                "Of spectra that are made of several scans, the first one's time is taken."));
        if (!spectrum.scanList.scans.empty() && spectrum.scanList.scans.front().scanWindows.size() > 1)
            log->warn(QStringLiteral("The scan windows of a spectrum become one range."));
    }

    CdfWriter::Head headOf(std::size_t scanCount)
    {
        CdfWriter::Head head;
        head.layout.experiment_type = description->globals.admin.experiment_type;
        head.layout.scan_count = qint32(scanCount);
        head.layout.mass_format = formats[0];
        head.layout.time_format = MsDoubleFormat;
        head.layout.intensity_format = formats[1];
        head.globals = &description->globals;
        for (const auto &instrument : description->instruments)
            head.instruments.push_back(&instrument);
        return head;
    }

    void warnOfNumbers()
    {
        if (unnumbered > 0)
            log->note(ms_counted_text("%1 [spectrum has|spectra have] no scan number that a .cdf file "
                                      "holds; [its place|their places], "
                                      "counted from 0, [is|are] taken for it.",
                                      unnumbered));
        std::sort(numbers.begin(), numbers.end());
        const auto different = std::unique(numbers.begin(), numbers.end()) - numbers.begin();
        const qint64 repeated = qint64(numbers.size()) - different;
        if (repeated > 0)
            log->warn(ms_counted_text(
                "%1 [spectrum has|spectra have] the number of an earlier one, and [keeps|keep] it.",
                repeated));
    }

    void readUnit()
    {
        const SpectrumPtr spectrum = spectrumAt(0);
        const BinaryDataArrayPtr array = spectrum->getIntensityArray();
        description->setUnit(array ? array->cvParam(MS_intensity_array).units : CVID_Unknown);
    }

    // Puts the points in the order of their masses. Where a format can't hold one of their numbers, it
    // becomes double, and the result is false.
    bool takePoints(const Spectrum &spectrum)
    {
        const BinaryDataArrayPtr massArray = spectrum.getMZArray();
        const BinaryDataArrayPtr intensityArray = spectrum.getIntensityArray();
        const std::size_t massCount = massArray ? massArray->data.size() : 0;
        const std::size_t count = std::min(massCount, intensityArray ? intensityArray->data.size() : 0);
        if (massCount != (intensityArray ? intensityArray->data.size() : 0))
            log->lose(QStringLiteral(
                "In some spectra, masses and intensities aren't as many; the rest is left out."));
        points.clear();
        for (std::size_t i = 0; i < count; ++i) {
            if (isNoData(massArray->data[i]) || isNoData(intensityArray->data[i]))
                ++withoutData;
            else
                points.emplace_back(massArray->data[i], intensityArray->data[i]);
        }
        if (!std::is_sorted(points.begin(), points.end(), isLighter)) {
            std::stable_sort(points.begin(), points.end(), isLighter);
            log->warn(QStringLiteral("The points of some spectra are put in the order of their masses."));
        }
        for (std::size_t axis = 0; axis < formats.size(); ++axis) {
            doubles[axis].clear();
            floats[axis].clear();
            for (const auto &point : points) {
                const double number = axis == 0 ? point.first : point.second;
                if (formats[axis] == MsDoubleFormat) {
                    doubles[axis].push_back(number);
                    continue;
                }
                floats[axis].push_back(float(number));
                if (double(floats[axis].back()) != number) {
                    formats[axis] = MsDoubleFormat;
                    return false;
                }
            }
        }
        return true;
    }

    static bool isLighter(const std::pair<double, double> &one, const std::pair<double, double> &other)
    {
        return one.first < other.first;
    }

    MsScanDraft scanOf(const Spectrum &spectrum, int place)
    {
        MsScanDraft scan(place);
        takeCommonNumbers(source.run, &scan);
        scan.actual_scan_number = numberOfScan(spectrum, place);
        scan.point_count = qint32(points.size());
        scan.flag_count = 0;
        if (!points.empty()) {
            scan.mass_values = pointsOf(0);
            scan.intensity_values = pointsOf(1);
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
        const CVParam time = details.cvParam(MS_scan_start_time);
        const double number = timeOf(time);
        if (number != MsMissingDouble)
            scan.scan_acquisition_time = secondsOf(number, time.units);
        for (const ScanWindow &window : details.scanWindows) {
            const double least = numberOf(window.cvParam(MS_scan_window_lower_limit));
            const double most = numberOf(window.cvParam(MS_scan_window_upper_limit));
            if (scan.mass_range_min == MsMissingDouble
                || (least != MsMissingDouble && least < scan.mass_range_min))
                scan.mass_range_min = least;
            scan.mass_range_max = std::max(scan.mass_range_max, most); // the missing value is below all
        }
        return scan;
    }

    // Returns the masses or the intensities of the spectrum at hand, in the format of the file.
    void *pointsOf(std::size_t axis)
    {
        return formats[axis] == MsFloatFormat ? static_cast<void *>(floats[axis].data())
                                              : doubles[axis].data();
    }

    qint32 numberOfScan(const Spectrum &spectrum, int place)
    {
        bool isNumber = false;
        const qint32 number = textOf(id::value(spectrum.id, "scan")).toInt(&isNumber);
        unnumbered += !isNumber;
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
    qint64 withoutData = 0;                        // points of all spectra
    std::vector<qint32> numbers;                   // of all spectra
    qint64 unnumbered = 0;                         // spectra
    std::array<qint32, 2> formats = {MsDoubleFormat, MsDoubleFormat};
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
        const QString text = QString::fromUtf8(reason.what()).simplified();
        if (text.contains(QLatin1String("Unsupported file format")))
            return log->fail(QStringLiteral("it is neither mzML nor mzXML"));
        return log->fail(QStringLiteral("it can't be read, and may be cut off or damaged: %1").arg(text));
    }
}
