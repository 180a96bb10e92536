#include "runfacts.h"

#include "countedtext_p.h"
#include "messageredirection.h"
#include "msrunfacts.h"

#include <algorithm>
#include <iterator>

namespace {

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

// Returns what an analyst calls it; words that the template doesn't know stand in quotes.
QString wordsOf(const MsTerm &term)
{
    if (term.isStated() && term.code == -1)
        return QStringLiteral("\"%1\"").arg(term.text);
    const auto *wording = std::find_if(std::begin(wordings), std::end(wordings), [&](const Wording &one) {
        return term.text == QLatin1String(one.phrase);
    });
    return wording == std::end(wordings) ? term.text : QString::fromLatin1(wording->words);
}

QString scanFunctionText(const MsRunFacts &facts)
{
    const QString words = wordsOf(facts.scanFunction);
    if (facts.groups < 1)
        return words;
    const QString lists = ms_counted_text("%1 [group|groups] of ions", facts.groups);
    return words.isNull() ? lists : QStringLiteral("%1, in %2").arg(words, lists);
}

// Returns the stamp as it stands, and behind it the same in UTC if its time zone is known. Of a stamp
// without a zone, or one that isn't understood, it says so.
QString momentText(const MsMoment &moment)
{
    if (moment.text.isNull())
        return QString();
    if (!moment.time.isValid())
        return QStringLiteral("%1 (not understood)").arg(moment.text);
    if (!moment.hasZone)
        return QStringLiteral("%1 (without a time zone)").arg(moment.text);
    return QStringLiteral("%1 (%2 UTC)")
        .arg(moment.text, moment.time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
}

void addTimes(const MsFile &file, const MsGlobals &globals, const MsTerm &unit, RunFacts *facts)
{
    facts->inMinutes = globals.raw.time_units == MsSeconds;
    if (facts->inMinutes)
        facts->timeUnit = QStringLiteral("minutes");
    else
        facts->timeUnit = unit.isStated() ? QStringLiteral("in %1").arg(wordsOf(unit))
                                          : QStringLiteral("in an unknown unit");
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
    if (!header.isRead() || !ms_is_given(time))
        return std::nullopt;
    return inMinutes ? time / 60.0 : time;
}

RunFacts readRunFacts(const MsFile &file)
{
    const Silence silence;
    const MsGlobals globals = file.globals();
    const MsRunFacts said = ms_read_run_facts(file, globals);
    RunFacts facts;
    facts.title = said.title;
    facts.acquired = momentText(said.acquired);
    facts.operatorName = said.operatorName;
    facts.instrument = said.instrument;
    if (!said.methodName.isNull())
        facts.method = QStringLiteral("%1 (external_file_ref_0)").arg(said.methodName);
    facts.separation = wordsOf(said.separation);
    facts.inlet = wordsOf(said.inlet);
    facts.ionisation = wordsOf(said.ionisation);
    facts.polarity = wordsOf(said.ionisationSign);
    facts.spectra = wordsOf(said.experiment);
    facts.scanFunction = scanFunctionText(said);
    addTimes(file, globals, said.timeUnits, &facts);
    return facts;
}
