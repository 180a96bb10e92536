#include "msrunfacts.h"

#include "msattribute.h"
#include "msfile.h"
#include "numbers_p.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cstddef>

namespace {

constexpr qint32 shownComponents = 4; // of the instrument

MsTerm termOf(const MsFile &file, const MsTable<MsAttributeRow> &table, std::size_t field)
{
    return ms_read_term(file.id(), attributeRow(table, field));
}

// Returns a component's name, with its maker and model in parentheses; null if it has none of them.
QString componentText(const MsInstrument &component)
{
    const QString name = textOf(component.instrument_name);
    QStringList make{textOf(component.instrument_mfr), textOf(component.instrument_model)};
    make.removeAll(QString());
    const QString maker = make.join(QLatin1Char(' '));
    if (name.isNull() || maker.isEmpty())
        return name.isNull() ? maker : name;
    return QStringLiteral("%1 (%2)").arg(name, maker);
}

QString instrumentText(const MsFile &file)
{
    QStringList components;
    const qint32 count = file.instrumentCount();
    for (qint32 i = 0; i < std::min(count, shownComponents); ++i)
        components += componentText(file.instrument(i));
    components.removeAll(QString());
    if (components.isEmpty())
        return QString();
    if (count > shownComponents)
        components += QStringLiteral("...");
    return components.join(QLatin1String(", "));
}

// The zone of a stamp: "Z", "+0200", "-05:30" or "+02".
bool parseZone(const QString &text, int *seconds)
{
    static const QRegularExpression offset(QStringLiteral("^([+-])(\\d\\d):?(\\d\\d)?$"));
    if (text == QLatin1String("Z") || text == QLatin1String("UTC") || text == QLatin1String("GMT")) {
        *seconds = 0;
        return true;
    }
    const QRegularExpressionMatch match = offset.match(text);
    const int hours = match.captured(2).toInt();
    const int minutes = match.captured(3).toInt();
    *seconds = (hours * 60 + minutes) * 60 * (match.captured(1) == QLatin1String("-") ? -1 : 1);
    return match.hasMatch() && hours <= 14 && minutes < 60; // no zone is farther from UTC
}

void addTexts(const MsFile &file, const MsGlobals &globals, MsRunFacts *facts)
{
    const auto from = [&file](const auto &table, const auto &record) {
        return [&file, &table, &record](std::size_t field) {
            return textOfAttribute(file.id(), attributeRow(table, field), &record);
        };
    };
    const auto admin = from(ms_admin_table, globals.admin);
    const auto sample = from(ms_sample_table, globals.sample);
    const auto test = from(ms_test_table, globals.test);
    const auto raw = from(ms_raw_table, globals.raw);
    facts->title = admin(offsetof(MsAdminRecord, experiment_title));
    facts->operatorName = admin(offsetof(MsAdminRecord, operator_name));
    facts->owner = admin(offsetof(MsAdminRecord, dataset_owner));
    facts->origin = admin(offsetof(MsAdminRecord, dataset_origin));
    facts->comments = admin(offsetof(MsAdminRecord, administrative_comments));
    facts->acquired = ms_moment_of(admin(offsetof(MsAdminRecord, experiment_date_time_stamp)));
    facts->written = ms_moment_of(admin(offsetof(MsAdminRecord, netcdf_file_date_time_stamp)));
    facts->sourceFile = admin(offsetof(MsAdminRecord, source_file_reference));
    facts->sourceFormat = admin(offsetof(MsAdminRecord, source_file_format));
    facts->acquiredWith = admin(offsetof(MsAdminRecord, pre_experiment_program_name));
    facts->exportedWith = admin(offsetof(MsAdminRecord, post_experiment_program_name));
    facts->sampleId = sample(offsetof(MsSampleRecord, sample_internal_id));
    const QString external = sample(offsetof(MsSampleRecord, sample_external_id));
    facts->sampleName = external.isNull() ? facts->sampleId : external;
    facts->sampleOwner = sample(offsetof(MsSampleRecord, sample_owner));
    facts->sampleComments = sample(offsetof(MsSampleRecord, sample_comments));
    facts->testComments = test(offsetof(MsTestRecord, test_comments));
    facts->rawDataComments = raw(offsetof(MsRawGlobalRecord, raw_data_comments));
    facts->reagentGas = test(offsetof(MsTestRecord, test_reagent_gas));
}

void addTerms(const MsFile &file, MsRunFacts *facts)
{
    const auto test = [&file](std::size_t field) { return termOf(file, ms_test_table, field); };
    const auto raw = [&file](std::size_t field) { return termOf(file, ms_raw_table, field); };
    facts->experiment = termOf(file, ms_admin_table, offsetof(MsAdminRecord, experiment_type));
    facts->sampleState = termOf(file, ms_sample_table, offsetof(MsSampleRecord, sample_state));
    facts->separation = test(offsetof(MsTestRecord, test_separation_type));
    facts->inlet = test(offsetof(MsTestRecord, test_ms_inlet));
    facts->ionisation = test(offsetof(MsTestRecord, test_ionization_mode));
    facts->ionisationSign = test(offsetof(MsTestRecord, test_ionization_polarity));
    facts->detector = test(offsetof(MsTestRecord, test_detector_type));
    facts->resolution = test(offsetof(MsTestRecord, test_resolution_type));
    facts->scanFunction = test(offsetof(MsTestRecord, test_scan_function));
    facts->scanDirection = test(offsetof(MsTestRecord, test_scan_direction));
    facts->scanLaw = test(offsetof(MsTestRecord, test_scan_law));
    facts->massUnits = raw(offsetof(MsRawGlobalRecord, mass_units));
    facts->timeUnits = raw(offsetof(MsRawGlobalRecord, time_units));
    facts->intensityUnits = raw(offsetof(MsRawGlobalRecord, intensity_units));
    facts->totalUnits = raw(offsetof(MsRawGlobalRecord, total_intensity_units));
}

// Whether a term has a phrase of the vocabulary.
bool says(const MsTerm &term, const char *phrase)
{
    return term.code != -1 && term.code == ms_enum_code(phrase);
}

void addChoices(MsRunFacts *facts)
{
    if (says(facts->ionisationSign, "Positive Polarity"))
        facts->polarity = MsRunFacts::Polarity::Positive;
    else if (says(facts->ionisationSign, "Negative Polarity"))
        facts->polarity = MsRunFacts::Polarity::Negative;
    if (says(facts->experiment, "Centroided Mass Spectrum"))
        facts->spectra = MsRunFacts::Spectra::Centroid;
    else if (says(facts->experiment, "Continuum Mass Spectrum"))
        facts->spectra = MsRunFacts::Spectra::Profile;
    const bool isSilent = !facts->scanFunction.isStated();
    if (says(facts->scanFunction, "Mass Scan"))
        facts->scan = MsRunFacts::Scan::FullScan;
    else if (says(facts->scanFunction, "Selected Ion Detection") || (isSilent && facts->groups > 0))
        facts->scan = MsRunFacts::Scan::SelectedIons;
}

} // namespace

MsTerm ms_read_term(int ncid, const MsAttributeRow &row)
{
    MsTerm term;
    term.text = statedText(ncid, row);
    term.code = ms_enum_code(term.isStated() ? term.text.toLatin1().constData() : nullptr);
    if (const char *phrase = ms_enum_text(term.code))
        term.text = QString::fromLatin1(phrase);
    return term;
}

MsRunFacts ms_read_run_facts(const MsFile &file, const MsGlobals &globals)
{
    MsRunFacts facts;
    addTexts(file, globals, &facts);
    facts.methodName =
        statedText(file.id(), attributeRow(ms_admin_table, offsetof(MsAdminRecord, external_file_ref_0)));
    facts.instrument = instrumentText(file);
    facts.groups = file.groupCount();
    facts.electronEnergy = known(double(globals.test.test_electron_energy));
    facts.sourceTemperature = known(double(globals.test.test_source_temperature));
    facts.inletTemperature = known(double(globals.test.test_ms_inlet_temperature));
    facts.detectorPotential = known(double(globals.test.test_detector_potential));
    addTerms(file, &facts);
    addChoices(&facts);
    return facts;
}

MsMoment ms_moment_of(const QString &stamp)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{4})(?|(\\d\\d)(\\d\\d)[T, ]*|[-/.,](\\d\\d?)[-/.,](\\d\\d?)[T, ]+)" // date
                       "(\\d\\d?)[:.,]?(\\d\\d)(?:[:.,]?(\\d\\d)(?:[.,]\\d+)?)?" // time of day
                       " *(Z|UTC|GMT|[+-]\\d\\d:?(?:\\d\\d)?)?$"),               // zone
        QRegularExpression::CaseInsensitiveOption);
    MsMoment moment{stamp};
    if (stamp.isNull())
        return moment;
    const QRegularExpressionMatch match = form.match(stamp);
    const auto number = [&](int group) { return match.captured(group).toInt(); };
    const QDate date(number(1), number(2), number(3));
    const QTime time(number(4), number(5), number(6));
    int offset = 0;
    const QString zone = match.captured(7).toUpper();
    if (!match.hasMatch() || !date.isValid() || !time.isValid()
        || (!zone.isEmpty() && !parseZone(zone, &offset)))
        return moment;
    moment.hasZone = !zone.isEmpty();
    moment.time = moment.hasZone ? QDateTime(date, time, Qt::OffsetFromUTC, offset).toUTC()
                                 : QDateTime(date, time, Qt::UTC);
    return moment;
}
