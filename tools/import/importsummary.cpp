#include "importsummary.h"

#include "dvheader.h"
#include "terminaltext.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QString absent = QStringLiteral("-");

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

QString latin1(const char *text)
{
    return text ? QString::fromLatin1(text) : absent;
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

} // namespace

void ImportSummary::add(const char *label, const QString &value)
{
    lines.emplace_back(QLatin1String(label), value);
}

void ImportSummary::start(const QString &fileName, const DVHeader &header, const float *table,
                          int tableSize)
{
    const QString unit = QLatin1Char(' ') + header.getRetentionUnit();
    add("File", fileName);
    add("Title", latin1(header.getExpName()));
    add("Device", latin1(header.getDevice()));
    add("Date", date(header.getDate()));
    add("Scans", QString::number(header.getNbScans()));
    add("Retention unit", header.getRetentionUnit());
    add("Delay", number(header.getDelay()) + unit);
    add("Run length", number(header.getRunTimeLength()) + unit);
    add("Sampling interval", number(header.getSamplingInterval()) + unit);
    if (header.getModulation() > 0.0f)
        addModulation(header);
    add("Masses", masses(table, tableSize));
    add("Detector type", detector(header));
    add("Abundance coding", abundanceCoding(header));
}

// Modulation lengths are in seconds, as usual in the field, whatever the unit of the header.
void ImportSummary::addModulation(const DVHeader &header)
{
    const double modulation = double(header.getModulation());
    const bool inMinutes = header.getRetentionUnit() == QLatin1String("minutes");
    const double step = header.getSamplingInterval() * (inMinutes ? 60.0 : 1.0);
    const double scansInOne = modulation / step;
    const bool known = step > 0.0 && std::isfinite(step);
    add("Modulation length", number(modulation) + QStringLiteral(" s"));
    add("Scans in a modulation", known ? number(scansInOne) : absent);
    add("Modulations", known ? number(header.getNbScans() / scansInOne) : absent);
    add("Second-dimension step", known ? number(step) + QStringLiteral(" s") : absent);
}

void ImportSummary::write(std::FILE *stream, const QString &unreadScans) const
{
    constexpr int labelWidth = 24;
    const auto writeField = [&](const QString &label, const QString &value) {
        writeLine(stream, (label + QLatin1Char(':')).leftJustified(labelWidth) + value);
    };
    for (const auto &[label, value] : lines)
        writeField(label, value);
    writeField(QStringLiteral("Points read"), QString::number(points));
    writeField(QStringLiteral("Scans not read"), unreadScans);
    writeLine(stream, QString());
}
