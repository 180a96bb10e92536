#include "mzmlwriter.h"

#include "interruption.h"
#include "msattribute.h"
#include "mzmldocument.h"
#include "mzmlspectra.h"
#include "mzmlterms.h"
#include "outputstream.h"
#include "runmodulation.h"
#include "scanwalk.h"
#include "statedglobals.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

#include <boost/make_shared.hpp>
#include <pwiz/utility/misc/IterationListener.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

constexpr double secondsPerMinute = 60.0;

// Beyond this share, a stored total isn't the rounded sum of its scan.
constexpr double totalTolerance = 1e-6;

// What the template knows of a scan and mzML doesn't. A run has it as user parameters where it is the
// same in all scans.
class CommonNumbers
{
public:
    void add(const MsScanRecord &scan)
    {
        const double numbers[] = {scan.scan_duration, scan.inter_scan_time, scan.resolution,
                                  scan.a_d_sampling_rate, double(scan.a_d_coaddition_factor)};
        static_assert(std::size(numbers) == std::size(commonScanNumbers));
        for (std::size_t i = 0; i < std::size(numbers); ++i) {
            isSame[i] = isSame[i] && (isFirst || numbers[i] == values[i]);
            values[i] = numbers[i];
        }
        isFirst = false;
    }

    // Calls `use` with the name of each number and its value, which is no number where it changes.
    template <class Use> void forEach(Use &&use) const
    {
        for (std::size_t i = 0; i < std::size(commonScanNumbers); ++i) {
            const bool isGiven = std::isfinite(values[i]) && values[i] != MsMissingDouble
                && !ms_is_fill(NC_DOUBLE, values[i]) && values[i] != NC_FILL_SHORT;
            if (!isSame[i] || (isGiven && !isFirst))
                use(commonScanNumbers[i],
                    isSame[i] ? values[i] : std::numeric_limits<double>::quiet_NaN());
        }
    }

private:
    bool isFirst = true;
    double values[std::size(commonScanNumbers)] = {};
    bool isSame[std::size(commonScanNumbers)] = {true, true, true, true, true};
};

QByteArray checksum(const QString &name)
{
    QFile file(name);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex() : QByteArray();
}

CVID orElse(CVID term, CVID otherwise)
{
    return term == CVID_Unknown ? otherwise : term;
}

// The total ion current of the run, which is written behind the spectra.
class RunTrace : public ChromatogramListSimple
{
public:
    // Numbers of the trace are doubles, whatever the spectra's are. The library asks for this list after
    // the spectra and encodes what it gets by `config`.
    RunTrace(const SpectrumFacts &spectra, BinaryDataEncoder::Config *config)
        : facts(spectra), encoding(config)
    {
        auto identity = boost::make_shared<Chromatogram>();
        identity->index = 0;
        identity->id = "TIC";
        chromatograms.push_back(identity);
    }

    // The library's own would refer to a chromatogram that is gone.
    const ChromatogramIdentity &chromatogramIdentity(size_t) const override { return *chromatograms[0]; }

    ChromatogramPtr chromatogram(size_t, bool) const override
    {
        encoding->precisionOverrides.clear();
        auto trace = boost::make_shared<Chromatogram>(*chromatograms[0]);
        trace->set(MS_total_ion_current_chromatogram);
        std::vector<double> times;
        std::vector<double> totals;
        for (std::size_t i = 0; i < facts.times.size(); ++i) {
            if (!std::isfinite(facts.times[i]) || !std::isfinite(facts.totals[i]))
                continue;
            times.push_back(facts.times[i]);
            totals.push_back(facts.totals[i]);
        }
        trace->setTimeIntensityArrays(times, totals, facts.timeUnit, facts.intensityUnit);
        return trace;
    }

private:
    const SpectrumFacts &facts;
    BinaryDataEncoder::Config *encoding;
};

class Listener : public pwiz::util::IterationListener
{
public:
    Listener(const RunSpectra *list, OutputFile *file, ProgressBar *bar)
        : spectra(list), output(file), progress(bar)
    {
    }

    Status update(const UpdateMessage &message) override
    {
        const auto count = int(message.iterationCount);
        progress->show(count / 2 + int(message.iterationIndex / 2), count);
        const bool isVain = isInterrupted() || output->hasFailed()
            || (spectra && (spectra->isExhausted() || spectra->isLacking()));
        return isVain ? Status_Cancel : Status_Ok;
    }

private:
    const RunSpectra *spectra;
    OutputFile *output;
    ProgressBar *progress;
};

class MzMlWriter
{
public:
    MzMlWriter(const MsRun &source, const ConversionOptions &wanted, ProgressBar *bar,
               ConversionLog *messages)
        : run(source), options(wanted), progress(bar), log(messages)
    {
    }

    bool write(OutputFile *output, OutputBuffer::Packing packing)
    {
        if (!gather())
            return log->fail(QStringLiteral("it was interrupted"));
        if (facts.scans.empty())
            return log->fail(whyNoScan(run));
        sha1 = checksum(run.name());
        if (sha1.isEmpty())
            return log->fail(QStringLiteral("it can't be read anew for its checksum"));
        sayWhatIsLeftOut();
        describe();
        OutputBuffer buffer(output, packing);
        std::ostream stream(&buffer);
        writeDocument(stream, output);
        if (spectra && spectra->hasSorted())
            log->warn(QStringLiteral("The points of some scans are put in the order of their masses."));
        if (spectra && spectra->isExhausted())
            throw std::bad_alloc();
        if (spectra && spectra->isLacking())
            return log->fail(whyScansWent());
        if (isInterrupted())
            return log->fail(QStringLiteral("it was interrupted"));
        return buffer.finish();
    }

private:
    bool isTrace() const { return run.kind() == MsRun::Kind::Trace; }

    // ------------------------------------------------------------------------------------------------
    // What each scan says
    // ------------------------------------------------------------------------------------------------

    bool gather()
    {
        std::vector<double> times = run.times();
        std::vector<double> totals(times.size(), std::numeric_limits<double>::quiet_NaN());
        std::vector<qint32> numbers(times.size(), -1);
        qint32 differing = 0;
        const bool isWhole = forEachScan(run, ScanWalk::First, progress, [&](const MsSpectrum &spectrum) {
            const auto place = std::size_t(spectrum.index());
            const double stored = spectrum.storedTotal();
            const double summed = spectrum.summedTotal();
            totals[place] = std::isnan(stored) ? summed : stored;
            differing += !isTrace() && std::abs(stored - summed) > totalTolerance * std::abs(summed);
            numbers[place] = spectrum.number();
            if (spectrum.size() > 0) {
                isFloatMasses = isFloatMasses && spectrum.storedMasses();
                isFloatIntensities = isFloatIntensities && spectrum.storedIntensities();
            }
            common.add(spectrum.record());
            hasFlags = hasFlags || !spectrum.flaggedPeaks().isEmpty();
            hasPointTimes = hasPointTimes || spectrum.pointTimes().size() > 1;
            const MsInterval window = spectrum.massRange();
            hasHalfWindows = hasHalfWindows || std::isnan(window.from) != std::isnan(window.to);
            const MsInterval range = spectrum.timeRange();
            hasTimeRanges = hasTimeRanges || !std::isnan(range.from) || !std::isnan(range.to);
            facts.scans.push_back(spectrum.index());
            return true;
        });
        const QList<MsDoubt> doubts = run.doubts();
        const bool isSaid = std::any_of(doubts.begin(), doubts.end(), [](const MsDoubt &doubt) {
            return qstrcmp(doubt.code, "wrong-totals") == 0;
        });
        if (differing > 0 && !isSaid)
            log->warn(
                QStringLiteral("In %1 of %2 scans, the total ion current that the file gives isn't the "
                               "sum of the intensities.")
                    .arg(differing)
                    .arg(run.size()));
        sortByTime(times);
        for (const qint32 scan : facts.scans) {
            const auto place = std::size_t(scan);
            facts.times.push_back(options.inMinutes ? times[place] / secondsPerMinute : times[place]);
            facts.totals.push_back(totals[place]);
            facts.numbers.push_back(numbers[place]);
        }
        makeUnique();
        return isWhole;
    }

    void sortByTime(const std::vector<double> &times)
    {
        const auto isEarlier = [&times](qint32 one, qint32 other) {
            return times[std::size_t(one)] < times[std::size_t(other)];
        };
        std::vector<qint32> &scans = facts.scans;
        const bool hasAllTimes = std::none_of(scans.begin(), scans.end(), [&times](qint32 scan) {
            return std::isnan(times[std::size_t(scan)]);
        });
        if (run.kind() == MsRun::Kind::Library || !hasAllTimes
            || std::is_sorted(scans.begin(), scans.end(), isEarlier))
            return;
        std::stable_sort(scans.begin(), scans.end(), isEarlier);
        log->warn(QStringLiteral("The scans are put in the order of their times."));
    }

    // The numbers of scans become names, which mustn't be repeated.
    void makeUnique()
    {
        std::vector<qint32> sorted = facts.numbers;
        std::sort(sorted.begin(), sorted.end());
        const bool isUnique = std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
        if (sorted.empty() || (isUnique && sorted.front() >= 0))
            return;
        facts.numbers = facts.scans;
        log->warn(QStringLiteral(
            "The numbers that the file gives its scans aren't different numbers from 0 on; "
            "the scans are counted from 0 in their place."));
    }

    // ------------------------------------------------------------------------------------------------
    // What the run says
    // ------------------------------------------------------------------------------------------------

    void describe()
    {
        globals = statedGlobals(run, log);
        const MsRunFacts &said = run.facts();
        facts.isSelectedIons = said.scan == MsRunFacts::Scan::SelectedIons;
        const bool isProfile = said.spectra == MsRunFacts::Spectra::Profile;
        facts.representation =
            isProfile ? MS_profile_spectrum : MS_centroid_spectrum; // one has to be named
        if (said.spectra == MsRunFacts::Spectra::Unknown && run.kind() == MsRun::Kind::Spectra)
            log->warn(QStringLiteral(
                "The file doesn't say whether its spectra are centroided; they are taken for "
                "centroided ones."));
        if (said.polarity != MsRunFacts::Polarity::Unknown)
            facts.polarity =
                said.polarity == MsRunFacts::Polarity::Positive ? MS_positive_scan : MS_negative_scan;
        facts.intensityUnit = orElse(mzmlTerm(TermFamily::IntensityUnit, globals.raw.intensity_units),
                                     MS_number_of_detector_counts);
        facts.timeUnit = options.inMinutes ? UO_minute : UO_second;

        data.id = xmlText(baseName(run.name()));
        data.cvs = defaultCVList();
        describeFile();
        describeSample();
        describeInstrument();
        describeProcessing();
        describeRun();
    }

    void describeFile()
    {
        const QFileInfo input(run.name());
        auto source = boost::make_shared<SourceFile>(
            "SF1", xmlText(input.fileName()),
            QUrl::fromLocalFile(input.absolutePath()).toEncoded().toStdString());
        source->set(MS_Andi_MS_format);
        source->set(MS_SHA_1, sha1.toStdString());
        source->set(isTrace() ? MS_no_nativeID_format : MS_scan_number_only_nativeID_format);
        FileDescription &description = data.fileDescription;
        description.sourceFilePtrs.push_back(source);
        if (!isTrace()) {
            description.fileContent.set(facts.isSelectedIons ? MS_SIM_spectrum : MS_MS1_spectrum);
            description.fileContent.set(facts.representation);
        }
        description.fileContent.set(MS_total_ion_current_chromatogram);
        const MsRunFacts &said = run.facts();
        const QString organisation = said.owner.isNull() ? said.origin : said.owner;
        if (said.operatorName.isNull() || organisation.isNull())
            return;
        description.contacts.emplace_back();
        description.contacts.back().set(MS_contact_name, xmlText(said.operatorName));
        description.contacts.back().set(MS_contact_affiliation, xmlText(organisation));
    }

    void describeSample()
    {
        if (run.facts().sampleName.isNull())
            return;
        auto sample = boost::make_shared<Sample>("sample", xmlText(run.facts().sampleName));
        const CVID state = mzmlTerm(TermFamily::SampleState, globals.sample.sample_state);
        if (state != CVID_Unknown)
            sample->set(state);
        data.samplePtrs.push_back(sample);
        data.run.samplePtr = sample;
    }

    void describeInstrument()
    {
        auto instrument = boost::make_shared<InstrumentConfiguration>("IC1");
        instrument->set(MS_instrument_model);
        const std::vector<MsInstrument> components = run.instruments();
        for (std::size_t i = 0; i < components.size(); ++i) {
            for (const MsVariableRow &row : ms_instrument_table) {
                const char *record = reinterpret_cast<const char *>(
                    static_cast<const MsInstrumentRecord *>(&components[i]));
                const QString text = textFromFile(*reinterpret_cast<char *const *>(record + row.field));
                const std::string name =
                    row.name + (i == 0 ? std::string() : ' ' + std::to_string(i + 1));
                if (!text.trimmed().isEmpty())
                    instrument->userParams.emplace_back(name, xmlText(text));
            }
        }
        const MsTestRecord &test = globals.test;
        instrument->componentList.emplace_back(ComponentType_Source, 1);
        instrument->componentList.emplace_back(ComponentType_Analyzer, 2);
        instrument->componentList.emplace_back(ComponentType_Detector, 3);
        Component &source = instrument->componentList[0];
        source.set(
            orElse(mzmlTerm(TermFamily::Ionisation, test.test_ionization_mode), MS_ionization_type));
        const CVID inlet = mzmlTerm(TermFamily::Inlet, test.test_ms_inlet);
        if (inlet != CVID_Unknown)
            source.set(inlet);
        instrument->componentList[1].set(MS_mass_analyzer_type);
        instrument->componentList[2].set(
            orElse(mzmlTerm(TermFamily::Detector, test.test_detector_type), MS_detector_type));
        data.instrumentConfigurationPtrs.push_back(instrument);
        data.run.defaultInstrumentConfigurationPtr = instrument;
    }

    void describeProcessing()
    {
        const std::string program = QCoreApplication::applicationName().toStdString();
        auto software = boost::make_shared<Software>(program);
        software->set(MS_custom_unreleased_software_tool, program);
        software->version = QCoreApplication::applicationVersion().toStdString();
        data.softwarePtrs.push_back(software);
        auto processing = boost::make_shared<DataProcessing>("conversion");
        ProcessingMethod method;
        method.softwarePtr = software;
        method.set(MS_Conversion_to_mzML);
        processing->processingMethods.push_back(method);
        data.dataProcessingPtrs.push_back(processing);
        if (!isTrace()) {
            spectra = boost::make_shared<RunSpectra>(run, facts);
            spectra->setDataProcessingPtr(processing);
            data.run.spectrumListPtr = spectra;
        }
        auto trace = boost::make_shared<RunTrace>(facts, &encoding);
        trace->dp = processing;
        data.run.chromatogramListPtr = trace;
    }

    void describeRun()
    {
        const MsRunFacts &said = run.facts();
        data.run.id = "run";
        data.run.defaultSourceFilePtr = data.fileDescription.sourceFilePtrs[0];
        if (said.acquired.hasZone && said.acquired.time.isValid())
            data.run.startTimeStamp = said.acquired.time.toUTC().toString(Qt::ISODate).toStdString();
        const double modulation = modulationOf(run, options, log);
        if (modulation > 0.0) {
            data.run.set(MS_two_dimensional_gas_chromatography_with_fixed_modulation_time);
            data.run.userParams.emplace_back("modulation length", exactText(modulation), "xsd:double",
                                             UO_second);
        } else {
            const CVID separation = mzmlTerm(TermFamily::Separation, globals.test.test_separation_type);
            if (separation != CVID_Unknown)
                data.run.set(separation);
        }
        forEachDescription(globals, [this](const QByteArray &name, const QString &text) {
            data.run.userParams.emplace_back(name.constData(), xmlText(text));
        });
        common.forEach([this](const char *name, double number) {
            if (std::isnan(number))
                leaveOut(QLatin1String(name));
            else
                data.run.userParams.emplace_back(name, exactText(number), "xsd:double");
        });
        for (const MsDoubt &doubt : run.doubts())
            data.run.userParams.emplace_back("doubt", xmlText(doubt.text));
        for (const QString &warning : log->warnings())
            data.run.userParams.emplace_back("doubt", xmlText(warning));
    }

    void leaveOut(const QString &what)
    {
        log->warn(QStringLiteral("mzML has no place for what the file has of this: %1.").arg(what));
    }

    void sayWhatIsLeftOut()
    {
        if (hasFlags)
            leaveOut(QStringLiteral("flags of peaks"));
        if (hasPointTimes)
            leaveOut(QStringLiteral("times of points"));
        if (hasHalfWindows)
            leaveOut(QStringLiteral("ranges of masses with one end"));
        if (hasTimeRanges)
            leaveOut(QStringLiteral("ranges of times"));
        if (!run.groups().empty())
            leaveOut(QStringLiteral("groups of monitored masses"));
        if (run.kind() == MsRun::Kind::Library)
            leaveOut(QStringLiteral("compounds but for their names"));
    }

    void writeDocument(std::ostream &stream, OutputFile *output)
    {
        encoding.precision = BinaryDataEncoder::Precision_64;
        encoding.compression = options.isCompressed ? BinaryDataEncoder::Compression_Zlib
                                                    : BinaryDataEncoder::Compression_None;
        if (isFloatMasses)
            encoding.precisionOverrides[MS_m_z_array] = BinaryDataEncoder::Precision_32;
        if (isFloatIntensities)
            encoding.precisionOverrides[MS_intensity_array] = BinaryDataEncoder::Precision_32;
        pwiz::util::IterationListenerRegistry listeners;
        const std::size_t period = std::max<std::size_t>(facts.scans.size() / 100, 1);
        listeners.addListener(boost::make_shared<Listener>(spectra.get(), output, progress), period);
        writeMzMlDocument(data, encoding, listeners, stream);
    }

    const MsRun &run;
    const ConversionOptions &options;
    ProgressBar *progress;
    ConversionLog *log;
    SpectrumFacts facts;
    bool isFloatMasses = true;
    bool isFloatIntensities = true;
    bool hasFlags = false;
    bool hasPointTimes = false;
    bool hasHalfWindows = false;
    bool hasTimeRanges = false;
    CommonNumbers common;
    QByteArray sha1; // of the input
    StatedGlobals globals;
    MSData data;
    BinaryDataEncoder::Config encoding;
    boost::shared_ptr<RunSpectra> spectra; // null for a trace
};

} // namespace

bool writeMzMl(const MsRun &run, OutputFile *output, Packing packing, const ConversionOptions &options,
               ProgressBar *progress, ConversionLog *log)
{
    MzMlWriter writer(run, options, progress, log);
    return writer.write(
        output, packing == Packing::Gzip ? OutputBuffer::Packing::Gzip : OutputBuffer::Packing::Plain);
}
