#include "mzmldescription.h"

#include "msattribute.h"
#include "mzmlterms.h"
#include "runmodulation.h"
#include "statedglobals.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include <boost/make_shared.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

CVID orElse(CVID term, CVID otherwise)
{
    return term == CVID_Unknown ? otherwise : term;
}

class Description
{
public:
    Description(const MsRun &source, const ConversionOptions &wanted, MzMlSurvey *found, MSData *document,
                ConversionLog *messages)
        : run(source), options(wanted), survey(*found), facts(found->facts), data(document), log(messages)
    {
    }

    void describe(const std::string &sha1)
    {
        sayWhatIsLeftOut();
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
        facts.intensityUnit =
            orElse(mzmlTerm(TermFamily::IntensityUnit, globals.raw.intensity_units), standInUnit);

        data->id = xmlText(baseName(run.name()));
        data->cvs = defaultCVList();
        describeFile(sha1);
        describeSample();
        describeInstrument();
        describeProcessing();
        describeRun();
    }

private:
    bool isTrace() const { return run.kind() == MsRun::Kind::Trace; }

    void describeFile(const std::string &sha1)
    {
        const QFileInfo input(run.name());
        auto source = boost::make_shared<SourceFile>(
            "SF1", xmlText(input.fileName()),
            QUrl::fromLocalFile(input.absolutePath()).toEncoded().toStdString());
        source->set(MS_Andi_MS_format);
        source->set(MS_SHA_1, sha1);
        source->set(isTrace() ? MS_no_nativeID_format : MS_scan_number_only_nativeID_format);
        FileDescription &description = data->fileDescription;
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
        data->samplePtrs.push_back(sample);
        data->run.samplePtr = sample;
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
        data->instrumentConfigurationPtrs.push_back(instrument);
        data->run.defaultInstrumentConfigurationPtr = instrument;
    }

    void describeProcessing()
    {
        const std::string program = QCoreApplication::applicationName().toStdString();
        auto software = boost::make_shared<Software>(program);
        software->set(MS_custom_unreleased_software_tool, program);
        software->version = QCoreApplication::applicationVersion().toStdString();
        data->softwarePtrs.push_back(software);
        auto processing = boost::make_shared<DataProcessing>("conversion");
        ProcessingMethod method;
        method.softwarePtr = software;
        method.set(MS_Conversion_to_mzML);
        processing->processingMethods.push_back(method);
        data->dataProcessingPtrs.push_back(processing);
    }

    void describeRun()
    {
        const MsRunFacts &said = run.facts();
        data->run.id = standInTitle;
        data->run.defaultSourceFilePtr = data->fileDescription.sourceFilePtrs[0];
        if (said.acquired.hasZone && said.acquired.time.isValid())
            data->run.startTimeStamp = said.acquired.time.toUTC().toString(Qt::ISODate).toStdString();
        const double modulation = modulationOf(run, options, log);
        if (modulation > 0.0) {
            data->run.set(modulatedRun);
            data->run.userParams.emplace_back("modulation length", exactText(modulation), "xsd:double",
                                              UO_second);
        } else {
            const CVID separation = mzmlTerm(TermFamily::Separation, globals.test.test_separation_type);
            if (separation != CVID_Unknown)
                data->run.set(separation);
        }
        forEachDescription(globals, [this](const QByteArray &name, const QString &text) {
            data->run.userParams.emplace_back(name.constData(), xmlText(text));
        });
        survey.common.forEach([this](const char *name, double number) {
            if (std::isnan(number))
                leaveOut(QLatin1String(name));
            else
                data->run.userParams.emplace_back(name, exactText(number), "xsd:double");
        });
        for (const MsDoubt &doubt : run.doubts())
            data->run.userParams.emplace_back("doubt", xmlText(doubt.text));
        for (const QString &warning : log->warnings())
            data->run.userParams.emplace_back("doubt", xmlText(warning));
    }

    void leaveOut(const QString &what)
    {
        log->warn(QStringLiteral("mzML has no place for what the file has of this: %1.").arg(what));
    }

    void sayWhatIsLeftOut()
    {
        if (survey.hasFlags)
            leaveOut(QStringLiteral("flags of peaks"));
        if (survey.hasPointTimes)
            leaveOut(QStringLiteral("times of points"));
        if (survey.hasHalfWindows)
            leaveOut(QStringLiteral("ranges of masses with one end"));
        if (survey.hasTimeRanges)
            leaveOut(QStringLiteral("ranges of times"));
        if (!run.groups().empty())
            leaveOut(QStringLiteral("groups of monitored masses"));
        if (run.kind() == MsRun::Kind::Library)
            leaveOut(QStringLiteral("compounds but for their names"));
    }

    const MsRun &run;
    const ConversionOptions &options;
    const MzMlSurvey &survey;
    SpectrumFacts &facts;
    MSData *data;
    ConversionLog *log;
    StatedGlobals globals;
};

} // namespace

void describeRun(const MsRun &run, const ConversionOptions &options, const std::string &sha1,
                 MzMlSurvey *survey, MSData *data, ConversionLog *log)
{
    Description(run, options, survey, data, log).describe(sha1);
}
