#include "importsummary.h"

#include "countedtext_p.h"
#include "dvheader.h"
#include "terminaltext.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QString absent = QStringLiteral("-");

QString number(double value, int digits = 6)
{
    return QString::number(value, 'g', digits);
}

QString latin1(const char *text)
{
    return text ? QString::fromLatin1(text) : absent;
}

QString told(const QString &fact)
{
    constexpr int longest = 150; // a file may have a text of any length
    return fact.isNull() ? QStringLiteral("not given") : shortened(fact, longest);
}

QString timeText(std::optional<double> time, const QString &unit)
{
    return time ? QStringLiteral("%1 %2").arg(number(*time), unit) : told(QString());
}

// Returns how fast scans follow each other. The times of fewer than two scans don't tell.
QString rateText(const RunFacts &facts, int scanCount)
{
    if (scanCount < 2 || !facts.start || !facts.end || !(*facts.end > *facts.start))
        return QStringLiteral("not known");
    const double rate = (scanCount - 1) / (*facts.end - *facts.start);
    const QString shown = number(facts.inMinutes ? rate / 60.0 : rate);
    return ms_counted_text(
        "%1 [scan|scans] per %2", shown == QLatin1String("1") ? 1 : 2,
        {shown, facts.inMinutes ? QStringLiteral("second") : QStringLiteral("unit of time")});
}

bool liesOnGrid(float mass, double step)
{
    const double perUnit = 1.0 / step;
    return float(std::round(double(mass) * perUnit) / perUnit) == mass;
}

// Returns the coarsest of the steps to which an import rounds masses that all masses are multiples of.
QString grid(const float *table, int size)
{
    for (const double step : {10.0, 1.0, 0.1}) {
        if (std::all_of(table, table + size, [&](float mass) { return liesOnGrid(mass, step); }))
            return number(step);
    }
    return number(0.01);
}

QString masses(const float *table, int size)
{
    if (size < 1)
        return QStringLiteral("0, a total-ion trace");
    QString range = QStringLiteral("%1, from %2 to %3, on a grid of %4")
                        .arg(QString::number(size), QString::number(double(table[0])),
                             QString::number(double(table[size - 1])), grid(table, size));
    if (size < std::numeric_limits<quint16>::max())
        return range;
    return range + QStringLiteral("; there is room for no more, so others may count in the totals only");
}

// The import makes a date that it can't understand the largest number.
QString date(quint32 seconds)
{
    if (seconds == std::numeric_limits<quint32>::max())
        return absent;
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(Qt::ISODate);
}

QString detector(const DVHeader &header)
{
    if (!header.isSet(DVHeader::DetectorType))
        return absent;
    const char *words = "unknown";
    switch (header.getDetectorType()) {
    case 256:
        words = "total ion";
        break;
    case 512:
        words = "mass spectra";
        break;
    case 1792:
        words = "GCxGC, total ion";
        break;
    case 2048:
        words = "GCxGC, mass spectra";
        break;
    }
    return QStringLiteral("%1 (%2)").arg(QLatin1String(words)).arg(header.getDetectorType());
}

QString abundanceCoding(const DVHeader &header)
{
    const QString coefficient =
        header.isSet(DVHeader::CoeffAbund) ? QString::number(header.getCoeffAbund()) : absent;
    return QStringLiteral("%1 bits, coefficient %2")
        .arg(QString::number(header.getNbBitsAbund()), coefficient);
}

void writeFields(std::FILE *stream, const std::vector<std::pair<QString, QString>> &fields)
{
    constexpr int labelWidth = 24;
    for (const auto &[label, value] : fields)
        writeLine(stream, (label + QLatin1Char(':')).leftJustified(labelWidth) + value);
}

} // namespace

void ImportSummary::start(const QString &fileName, const std::optional<RunFacts> &runFacts,
                          const DVHeader &header, const float *table, int tableSize)
{
    facts = runFacts;
    scanCount = header.getNbScans();
    lines.emplace_back("File", fileName);
    if (facts)
        addFacts(*facts);
    lines.emplace_back("Scans", QString::number(scanCount));
    if (facts)
        addTimes(*facts);
    if (header.getModulation() > 0.0f)
        addModulation(header);
    lines.emplace_back("Masses", masses(table, tableSize));
    addHeader(header);
}

void ImportSummary::addFacts(const RunFacts &said)
{
    lines.insert(lines.end(),
                 {{"Title", told(said.title)},
                  {"Acquired", told(said.acquired)},
                  {"Operator", told(said.operatorName)},
                  {"Instrument", told(said.instrument)},
                  {"Method", told(said.method)},
                  {"Separation", told(said.separation)},
                  {"Inlet", told(said.inlet)},
                  {"Ionisation", told(said.ionisation)},
                  {"Polarity", told(said.polarity)},
                  {"Spectra", told(said.spectra)},
                  {"Scan function", told(said.scanFunction)}});
}

void ImportSummary::addTimes(const RunFacts &said)
{
    lines.insert(lines.end(),
                 {{"Start", timeText(said.start, said.timeUnit)},
                  {"End", timeText(said.end, said.timeUnit)},
                  {"Scan rate", rateText(said, scanCount)}});
}

// Modulation lengths are in seconds, as usual in the field, whatever the unit of the header.
void ImportSummary::addModulation(const DVHeader &header)
{
    const double modulation = double(header.getModulation());
    const bool inMinutes = header.getRetentionUnit() == QLatin1String("minutes");
    const double step = header.getSamplingInterval() * (inMinutes ? 60.0 : 1.0);
    const double scansInOne = modulation / step;
    const bool known = step > 0.0 && std::isfinite(step);
    lines.emplace_back("Modulation length", number(modulation) + QStringLiteral(" s"));
    lines.emplace_back("Scans in a modulation", known ? number(scansInOne) : absent);
    lines.emplace_back("Modulations", known ? number(header.getNbScans() / scansInOne) : absent);
    lines.emplace_back("Second-dimension step", known ? number(step) + QStringLiteral(" s") : absent);
}

void ImportSummary::addHeader(const DVHeader &header)
{
    const QString unit = QLatin1Char(' ') + header.getRetentionUnit();
    const bool isPresent = facts && facts->acquired.isNull();
    headerLines = {
        {"Experiment name", latin1(header.getExpName())},
        {"Device", latin1(header.getDevice())},
        {"Date",
         isPresent ? QStringLiteral("the present, as the file has none") : date(header.getDate())},
        {"Scans", QString::number(header.getNbScans())},
        {"Modulation", number(double(header.getModulation()))},
        {"Retention unit", header.getRetentionUnit()},
        {"Delay", number(header.getDelay()) + unit},
        {"Run length", number(header.getRunTimeLength()) + unit},
        {"Sampling interval", number(header.getSamplingInterval()) + unit},
        {"Detector type", detector(header)},
        {"Abundance coding", abundanceCoding(header)},
    };
}

void ImportSummary::addScan(int scan, double time, double total, int pointCount, const QString &failure)
{
    constexpr int named = 10;
    ++added;
    points += pointCount;
    if (!failure.isNull()) {
        if (++unread.count == 1)
            unread.reason = failure;
        if (unread.count <= named)
            unread.first += QString::number(scan);
        return;
    }
    pauses.add(scan, time);
    if (std::isfinite(total) && (largest.scan == -1 || total > largest.total))
        largest = {scan, total};
}

// Null where there is none.
QString ImportSummary::pauseText() const
{
    const auto pause = pauses.pause();
    if (!pause || !facts)
        return QString();
    const bool inSeconds = facts->inMinutes;
    const double length = pause->length * (inSeconds ? 60.0 : 1.0);
    return QStringLiteral("%1 before scan %2")
        .arg(timeText(length, inSeconds ? QStringLiteral("s") : facts->timeUnit),
             QString::number(pause->scan));
}

QString ImportSummary::unreadText() const
{
    const int left = scanCount - added;
    if (left > 0) {
        const QString stopped = ms_counted_text("%1 of %2, as the import stopped before [it|them]", left,
                                                {QString::number(left), QString::number(scanCount)});
        return unread.count == 0
            ? stopped
            : QStringLiteral("%1, and %2 more").arg(stopped, QString::number(unread.count));
    }
    if (unread.count == 0)
        return QStringLiteral("none");
    if (unread.count == added)
        return QStringLiteral("all %1: %2").arg(QString::number(added), unread.reason);
    return QStringLiteral("%1 (counted from 0: number %2%3)")
        .arg(QString::number(unread.count), unread.first.join(QLatin1String(", ")),
             unread.count > unread.first.size() ? QStringLiteral(", ...") : QString());
}

void ImportSummary::write(std::FILE *stream, std::optional<double> largestTime,
                          const std::vector<RunDoubt> &doubts, int otherWarnings) const
{
    Lines all = lines;
    if (const QString pause = pauseText(); !pause.isNull())
        all.emplace_back("Longest pause", pause);
    all.emplace_back("Points read", QString::number(points));
    const QString value = number(largest.total, 8);
    const QString scan = QString::number(largest.scan);
    if (largest.scan == -1)
        all.emplace_back("Trace maximum", "none");
    else if (facts && largestTime)
        all.emplace_back("Trace maximum",
                         QStringLiteral("%1 at %2, in scan %3")
                             .arg(value, timeText(largestTime, facts->timeUnit), scan));
    else
        all.emplace_back("Trace maximum", QStringLiteral("%1 in scan %2").arg(value, scan));
    all.emplace_back("Scans not read", unreadText());
    if (doubts.empty() && otherWarnings == 0)
        all.emplace_back("Warnings", added < scanCount ? "none so far" : "none");
    for (const RunDoubt &doubt : doubts)
        all.emplace_back("Warning", doubt.text);
    if (otherWarnings > 0)
        all.emplace_back(
            "Warnings",
            QStringLiteral("%1%2 on standard error")
                .arg(QString::number(otherWarnings), QLatin1String(doubts.empty() ? "" : " more")));
    writeFields(stream, all);
    writeLine(stream, QString());
}

void ImportSummary::writeHeader(std::FILE *stream) const
{
    writeLine(stream, QStringLiteral("Header as the host gets it"));
    writeFields(stream, headerLines);
    writeLine(stream, QString());
}
