#include "runtomsp.h"

#include "countedtext_p.h"
#include "fileformat.h"
#include "mspwriter.h"
#include "scanwalk.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

constexpr double secondsPerMinute = 60.0;
constexpr int mostNamed = 10; // entries that one sentence names
constexpr int longestName = 60;

QString minuteText(double minutes)
{
    return QString::number(minutes, 'f', 3) + QStringLiteral(" min");
}

QString rangeText(const MinuteRange &range)
{
    return QStringLiteral("%1 to %2").arg(minuteText(range.from), minuteText(range.to));
}

class Spectra
{
public:
    Spectra(const MsRun &source, OutputFile *file, const ConversionOptions &wanted, ProgressBar *bar,
            ConversionLog *messages)
        : run(source), options(wanted), output(*file), progress(bar), log(messages)
    {
    }

    bool write()
    {
        const bool isWritten = run.kind() == MsRun::Kind::Library ? writeLibrary() : writeChosen();
        if (!isWritten)
            return false;
        if (!leftOut.isEmpty())
            log->warn(ms_counted_text(
                "%1 [spectrum|spectra] without peaks [is|are] left out: %2%3.", leftOut.size(),
                {QString::number(leftOut.size()), leftOut.mid(0, mostNamed).join(QLatin1String(", ")),
                 leftOut.size() > mostNamed ? QStringLiteral(", ...") : QString()}));
        if (wrongCasNumbers > 0)
            log->warn(ms_counted_text(
                "%1 CAS [number|numbers] can't be right, as the last digit doesn't fit the others; "
                "the first is %2.",
                wrongCasNumbers, {QString::number(wrongCasNumbers), firstWrongCas}));
        if (pointsLeftOut > 0)
            log->warn(ms_counted_text(
                "%1 [point|points] below m/z 1 or of a negative intensity [is|are] left out.",
                pointsLeftOut));
        if (written == 0)
            return log->fail(QStringLiteral("there is no spectrum with peaks"));
        return output.finish();
    }

private:
    bool writeLibrary()
    {
        if (!options.scans.empty() || !options.minutes.empty() || !options.sums.empty())
            return log->fail(QStringLiteral(
                "it is a library, whose entries are all taken, without --scan, --at and --sum"));
        return forEachScan(run, ScanWalk::Only, progress, [this](const MsSpectrum &spectrum) {
            put(compoundOf(spectrum));
            return !output.hasFailed();
        });
    }

    MspEntry compoundOf(const MsSpectrum &spectrum)
    {
        const MsCompound compound = run.compound(spectrum.index());
        MspEntry entry = entryOf(compound, spectrum.index());
        if (compound.casNumber > 0 && !isCasNumber(compound.casNumber) && wrongCasNumbers++ == 0)
            firstWrongCas = entry.casNumber;
        MspEntry points = pointsOf(spectrum);
        entry.masses = std::move(points.masses);
        entry.intensities = std::move(points.intensities);
        return entry;
    }

    bool writeChosen()
    {
        if (run.kind() == MsRun::Kind::Trace)
            return log->fail(QStringLiteral("it has no masses, so it has no spectra"));
        if (options.scans.empty() && options.minutes.empty() && options.sums.empty())
            return log->fail(
                QStringLiteral("it is a run, of which --scan, --at or --sum chooses spectra"));
        if (!run.hasSeconds() && (!options.minutes.empty() || !options.sums.empty()))
            return log->fail(
                QStringLiteral("its times aren't in seconds, so --at and --sum can't find scans"));
        for (const int scan : options.scans) {
            if (!writeScan(scan))
                return false;
        }
        for (const double minutes : options.minutes) {
            const qint32 nearest = run.scanAt(minutes * secondsPerMinute);
            const double found = run.spectrum(nearest).time() / secondsPerMinute;
            const QString remark = remarkOnTime(minutes, nearest, run.size(), found);
            if (!remark.isNull())
                log->warn(remark);
            if (!writeScan(nearest))
                return false;
        }
        for (const MinuteRange &range : options.sums) {
            if (!writeSum(range))
                return false;
        }
        return true;
    }

    bool writeScan(qint32 index)
    {
        if (index < 0)
            return log->fail(QStringLiteral("its scans have no times"));
        if (index >= run.size())
            return log->fail(
                ms_counted_text("there is no scan %1: the run has %2 [scan|scans], counted from 0",
                                run.size(), {QString::number(index), QString::number(run.size())}));
        const MsSpectrum spectrum = run.spectrum(index);
        if (!spectrum.isRead())
            return log->fail(QStringLiteral("scan %1 can't be read: %2")
                                 .arg(QString::number(index), spectrum.failure()));
        MspEntry entry = pointsOf(spectrum);
        entry.name = title() + QStringLiteral(", scan %1").arg(index);
        if (run.hasSeconds() && !std::isnan(spectrum.time())) {
            entry.minutes = spectrum.time() / secondsPerMinute;
            entry.name += QStringLiteral(", ") + minuteText(entry.minutes);
        }
        put(entry);
        return true;
    }

    bool writeSum(const MinuteRange &range)
    {
        MinuteRange scans = range;
        if (!keepToRun(&scans))
            return false;
        MsPeaks peaks = run.summed({range.from * secondsPerMinute, range.to * secondsPerMinute}, 0.0,
                                   [this](double part) {
                                       progress->show(int(part * 100.0), 100);
                                       return !isInterrupted();
                                   });
        if (isInterrupted())
            return false;
        MspEntry entry;
        entry.name = QStringLiteral("%1, sum from %2").arg(title(), rangeText(range));
        entry.minutes = (scans.from + scans.to) / 2.0;
        entry.masses = std::move(peaks.masses);
        entry.intensities = std::move(peaks.intensities);
        put(entry);
        return true;
    }

    // Makes of a range the part from the run's first scan to its last one. Returns false, with a failure,
    // where no scan lies in it.
    bool keepToRun(MinuteRange *range)
    {
        std::vector<double> times = run.times();
        times.erase(
            std::remove_if(times.begin(), times.end(), [](double time) { return std::isnan(time); }),
            times.end());
        if (times.empty())
            return log->fail(QStringLiteral("its scans have no times"));
        const auto ends = std::minmax_element(times.begin(), times.end());
        const MinuteRange all = {*ends.first / secondsPerMinute, *ends.second / secondsPerMinute};
        const bool hasScan = std::any_of(times.begin(), times.end(), [range](double time) {
            return time >= range->from * secondsPerMinute && time <= range->to * secondsPerMinute;
        });
        if (!hasScan)
            return log->fail(QStringLiteral("there is no scan from %1: those of the run are from %2")
                                 .arg(rangeText(*range), rangeText(all)));
        const QString wanted = rangeText(*range);
        *range = {std::max(range->from, all.from), std::min(range->to, all.to)};
        if (rangeText(*range) != wanted)
            log->warn(QStringLiteral("The sum from %1 has scans from %2 only, as the run has no others.")
                          .arg(wanted, rangeText(*range)));
        return true;
    }

    static MspEntry pointsOf(const MsSpectrum &spectrum)
    {
        MspEntry entry;
        entry.masses.assign(spectrum.masses(), spectrum.masses() + spectrum.size());
        entry.intensities.assign(spectrum.intensities(), spectrum.intensities() + spectrum.size());
        return entry;
    }

    QString title() const
    {
        return run.facts().title.isNull() ? baseName(run.name()) : run.facts().title;
    }

    void put(const MspEntry &entry)
    {
        for (std::size_t i = 0; i < entry.masses.size(); ++i)
            pointsLeftOut +=
                entry.intensities[i] != 0.0 && !isMspPeak(entry.masses[i], entry.intensities[i]);
        if (writeMspEntry(output, entry))
            ++written;
        else
            leftOut += QStringLiteral("\"%1\"").arg(shortened(entry.name, longestName));
    }

    const MsRun &run;
    const ConversionOptions &options;
    TextOutput output;
    ProgressBar *progress;
    ConversionLog *log;
    QStringList leftOut;
    qint64 pointsLeftOut = 0; // of spectra
    qint64 wrongCasNumbers = 0;
    QString firstWrongCas;
    int written = 0;
};

} // namespace

bool writeMsp(const MsRun &run, OutputFile *output, const ConversionOptions &options,
              ProgressBar *progress, ConversionLog *log)
{
    Spectra spectra(run, output, options, progress, log);
    return spectra.write();
}
