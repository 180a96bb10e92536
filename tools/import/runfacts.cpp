#include "runfacts.h"

#include "acquisitiontime.h"
#include "fileattribute.h"
#include "fillvalue.h"
#include "messageredirection.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace {

constexpr qint32 shownComponents = 4; // of the instrument

QString textOf(const char *latin1)
{
    const QString text = QString::fromLatin1(latin1).trimmed();
    return text.isEmpty() ? QString() : text;
}

// Returns the template's phrase for an attribute, or what the file has in its place, in quotes.
QString phraseOf(const MsFile &file, const MsTable<MsAttributeRow> &table, std::size_t field)
{
    const QString text = statedText(file.id(), attributeRow(table, field));
    if (text.isNull())
        return text;
    const char *phrase = ms_enum_text(ms_enum_code(text.toLatin1().constData()));
    return phrase ? QString::fromLatin1(phrase) : QStringLiteral("\"%1\"").arg(text);
}

struct Wording {
    const char *phrase;
    const char *words;
};

constexpr Wording wordings[] = {
    {"Centroided Mass Spectrum", "centroid"},    {"Continuum Mass Spectrum", "profile"},
    {"Library Mass Spectrum", "library"},        {"Mass Scan", "full scan"},
    {"Selected Ion Detection", "selected ions"}, {"Positive Polarity", "positive"},
    {"Negative Polarity", "negative"},
};

// Returns what an analyst calls it.
QString wordsOf(const QString &phrase)
{
    const auto *wording = std::find_if(std::begin(wordings), std::end(wordings), [&](const Wording &one) {
        return phrase == QLatin1String(one.phrase);
    });
    return wording == std::end(wordings) ? phrase : QString::fromLatin1(wording->words);
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

// The template has no attribute for the method. Instrument software names it as the first external file.
QString methodText(const MsFile &file)
{
    const QString text =
        statedText(file.id(), attributeRow(ms_admin_table, offsetof(MsAdminRecord, external_file_ref_0)));
    return text.isNull() ? text : QStringLiteral("%1 (external_file_ref_0)").arg(text);
}

QString scanFunctionText(const MsFile &file)
{
    const QString words =
        wordsOf(phraseOf(file, ms_test_table, offsetof(MsTestRecord, test_scan_function)));
    const qint32 groups = file.groupCount();
    if (groups < 1)
        return words;
    const QString lists =
        QStringLiteral("%1 of ions")
            .arg(groups == 1 ? QStringLiteral("1 group") : QStringLiteral("%1 groups").arg(groups));
    return words.isNull() ? lists : QStringLiteral("%1, in %2").arg(words, lists);
}

void addTimes(const MsFile &file, const MsGlobals &globals, RunFacts *facts)
{
    facts->inMinutes = globals.raw.time_units == MsSeconds;
    const QString unit = phraseOf(file, ms_raw_table, offsetof(MsRawGlobalRecord, time_units));
    if (facts->inMinutes)
        facts->timeUnit = QStringLiteral("minutes");
    else
        facts->timeUnit =
            unit.isNull() ? QStringLiteral("in an unknown unit") : QStringLiteral("in %1").arg(unit);
    if (file.scanCount() < 1)
        return;
    facts->start = timeOfScan(file, 0, facts->inMinutes);
    facts->end = timeOfScan(file, file.scanCount() - 1, facts->inMinutes);
}

} // namespace

std::optional<double> timeOfScan(const MsFile &file, qint32 scan, bool inMinutes)
{
    const Silence silence;
    const MsScanHeader header = file.scanHeader(scan);
    const double time = header.scan_acquisition_time;
    if (!header.isRead() || time == MsMissingDouble || !std::isfinite(time) || isFillValue(time))
        return std::nullopt;
    return inMinutes ? time / 60.0 : time;
}

RunFacts readRunFacts(const MsFile &file)
{
    const Silence silence;
    const MsGlobals globals = file.globals();
    RunFacts facts;
    facts.title = textOf(globals.admin.experiment_title);
    facts.acquired = acquisitionTime(textOf(globals.admin.experiment_date_time_stamp));
    facts.operatorName = textOf(globals.admin.operator_name);
    facts.instrument = instrumentText(file);
    facts.method = methodText(file);
    facts.separation = phraseOf(file, ms_test_table, offsetof(MsTestRecord, test_separation_type));
    facts.inlet = phraseOf(file, ms_test_table, offsetof(MsTestRecord, test_ms_inlet));
    facts.ionisation = phraseOf(file, ms_test_table, offsetof(MsTestRecord, test_ionization_mode));
    facts.polarity =
        wordsOf(phraseOf(file, ms_test_table, offsetof(MsTestRecord, test_ionization_polarity)));
    facts.spectra = wordsOf(phraseOf(file, ms_admin_table, offsetof(MsAdminRecord, experiment_type)));
    facts.scanFunction = scanFunctionText(file);
    addTimes(file, globals, &facts);
    return facts;
}
