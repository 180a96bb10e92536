#include "cdfdescription.h"

#include "cdfwriter.h"
#include "fileformat.h"
#include "mzmlterms.h"
#include "namecodec.h"
#include "statedglobals.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>

#include <algorithm>

using namespace pwiz::cv;
using namespace pwiz::msdata;

namespace {

class Describer
{
public:
    Describer(const MSData &document, const QString &name, CdfDescription *description)
        : source(document), input(name), target(*description)
    {
    }

    void describe(const MzMlChoice &choice)
    {
        clearTerms(&target.globals);
        target.globals.admin.experiment_type =
            choice.isProfile ? MsContinuumSpectrum : MsCentroidedSpectrum;
        target.isOwn = isOwn();
        target.globals.raw.time_units = MsSeconds;
        if (!target.isOwn)
            target.globals.raw.mass_units = ms_enum_code("M/Z");
        if (choice.isSelectedIons || !target.isOwn)
            target.globals.test.test_scan_function =
                ms_enum_code(choice.isSelectedIons ? "Selected Ion Detection" : "Mass Scan");
        target.globals.test.test_ionization_polarity = choice.polarity == MS_positive_scan
            ? ms_enum_code("Positive Polarity")
            : choice.polarity == MS_negative_scan ? ms_enum_code("Negative Polarity")
                                                  : -1;
        if (!target.isOwn || !source.run.hasCVParam(modulatedRun))
            target.globals.test.test_separation_type = templateCode(TermFamily::Separation, source.run);
        describeFile();
        describeInstrument();
        // What this program wrote of another .cdf file says it in the template's own words.
        for (const UserParam &parameter : source.run.userParams)
            setDescription(parameter.name.c_str(), textOf(parameter.value), &target.globals);
    }

private:
    void set(const char *attribute, const QString &text)
    {
        if (!text.isEmpty())
            setDescription(attribute, text, &target.globals);
    }

    // Whether this program made the document.
    bool isOwn() const
    {
        const std::string program = QCoreApplication::applicationName().toStdString();
        return std::any_of(source.softwarePtrs.begin(), source.softwarePtrs.end(),
                           [&program](const SoftwarePtr &software) { return software->id == program; });
    }

    void describeFile()
    {
        set("source_file_reference", shownName(QFileInfo(input).fileName()));
        const bool isMzXml = formatOfName(input) == FileFormat::MzXml;
        set("source_file_format", isMzXml ? QStringLiteral("mzXML") : QStringLiteral("mzML"));
        if (!target.isOwn || source.run.id != standInTitle)
            set("experiment_title", textOf(source.run.id.empty() ? source.id : source.run.id));
        const QDateTime start = QDateTime::fromString(textOf(source.run.startTimeStamp), Qt::ISODate);
        if (start.isValid()) // a local time is one without a zone, and stays so
            set("experiment_date_time_stamp",
                start.timeSpec() == Qt::LocalTime ? start.toString(QStringLiteral("yyyyMMddhhmmss"))
                                                  : QString::fromLatin1(stampOf(start)));
        if (!source.fileDescription.contacts.empty()) {
            const Contact &contact = source.fileDescription.contacts.front();
            set("operator_name", textOf(contact.cvParam(MS_contact_name).value));
            if (!target.isOwn) // it may be the origin
                set("dataset_owner", textOf(contact.cvParam(MS_contact_affiliation).value));
        }
        const SamplePtr sample = !source.run.samplePtr && !source.samplePtrs.empty()
            ? source.samplePtrs.front()
            : source.run.samplePtr;
        if (sample) {
            if (!target.isOwn) // it may be the internal id
                set("sample_external_id", textOf(sample->name.empty() ? sample->id : sample->name));
            target.globals.sample.sample_state = templateCode(TermFamily::SampleState, *sample);
        }
        const SoftwarePtr software =
            source.softwarePtrs.empty() ? SoftwarePtr() : source.softwarePtrs.front();
        if (software)
            set("post_experiment_program_name", textOf(software->id + ' ' + software->version));
    }

    void describeInstrument()
    {
        InstrumentConfigurationPtr configuration = source.run.defaultInstrumentConfigurationPtr;
        if (!configuration && !source.instrumentConfigurationPtrs.empty())
            configuration = source.instrumentConfigurationPtrs.front();
        if (!configuration)
            return;
        for (const Component &component : configuration->componentList) {
            if (component.type == ComponentType_Source) {
                target.globals.test.test_ionization_mode =
                    templateCode(TermFamily::Ionisation, component);
                target.globals.test.test_ms_inlet = templateCode(TermFamily::Inlet, component);
            } else if (component.type == ComponentType_Detector) {
                target.globals.test.test_detector_type = templateCode(TermFamily::Detector, component);
            }
        }
        const CVParam model = configuration->cvParamChild(MS_instrument_model);
        auto &first = component(0);
        if (model.cvid != CVID_Unknown && model.cvid != MS_instrument_model)
            storeText(&first, "instrument_name", textOf(model.name()));
        storeText(&first, "instrument_serial_no",
                  textOf(configuration->cvParam(MS_instrument_serial_number).value));
        for (const UserParam &parameter : configuration->userParams) {
            const QStringList words = templateName(textOf(parameter.name)).split(QLatin1Char(' '));
            constexpr int mostComponents = 100;
            const int number = words.size() > 1 ? words[1].toInt() : 1;
            if (number >= 1 && number <= mostComponents)
                storeText(&component(std::size_t(number - 1)), words[0].toLatin1().constData(),
                          textOf(parameter.value));
        }
    }

    // The library's names of what mzXML says of the instrument, in the template's words.
    static QString templateName(const QString &name)
    {
        if (name == QLatin1String("msManufacturer"))
            return QStringLiteral("instrument_mfr");
        return name == QLatin1String("msModel") ? QStringLiteral("instrument_model") : name;
    }

    MsInstrument &component(std::size_t place)
    {
        while (target.instruments.size() <= place)
            target.instruments.emplace_back().component_index = qint32(target.instruments.size() - 1);
        return target.instruments[place];
    }

    static void storeText(MsInstrument *instrument, const char *name, const QString &text)
    {
        for (const MsVariableRow &row : ms_instrument_table) {
            if (text.isEmpty() || qstrcmp(row.name, name) != 0)
                continue;
            replaceText(static_cast<MsInstrumentRecord *>(instrument), row.field, bytesOfText(text));
        }
    }

    const MSData &source;
    const QString &input;
    CdfDescription &target;
};

} // namespace

CdfDescription::CdfDescription(const MSData &source, const QString &input, const MzMlChoice &choice)
{
    Describer(source, input, this).describe(choice);
}

void CdfDescription::setUnit(CVID unit)
{
    if (isOwn && unit == standInUnit)
        return;
    ParamContainer unitTerm;
    if (unit != CVID_Unknown)
        unitTerm.set(unit);
    const qint32 code = templateCode(TermFamily::IntensityUnit, unitTerm);
    for (qint32 *unknown : {&globals.raw.intensity_units, &globals.raw.total_intensity_units})
        *unknown = *unknown == -1 ? code : *unknown; // the template's own words say more
}

QString textOf(const std::string &utf8)
{
    return QString::fromStdString(utf8).trimmed();
}
