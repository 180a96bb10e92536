#include "viewexport.h"

#include "csvwriter.h"
#include "modulationmap.h"

#include <cmath>

namespace {

constexpr char comma = ',';
constexpr double secondsOfMinute = 60.0;

void putHeadings(CsvWriter &table, const QStringList &headings)
{
    for (const QString &heading : headings)
        table.text(heading);
    table.endRow();
}

QString finish(TextOutput &text, OutputFile *output)
{
    return text.finish() && output->commit() ? QString() : output->errorText();
}

} // namespace

QString writeSpectrumCsv(const SpectrumData &spectrum, OutputFile *output)
{
    if (!output->open())
        return output->errorText();
    CsvWriter table(*output, comma);
    putHeadings(table, {QStringLiteral("m/z"), QStringLiteral("Intensity")});
    for (std::size_t i = 0; i < spectrum.masses.size(); ++i) {
        table.number(spectrum.masses[i]);
        table.number(spectrum.intensities[i]);
        table.endRow();
    }
    return finish(table, output);
}

QString writeSpectrumMsp(const SpectrumData &spectrum, MspEntry about, OutputFile *output)
{
    if (!output->open())
        return output->errorText();
    about.masses = spectrum.masses;
    about.intensities = spectrum.intensities;
    TextOutput text(*output);
    if (!writeMspEntry(text, about))
        return QStringLiteral("The spectrum has no peaks that could be written.");
    return finish(text, output);
}

QString writeTracesCsv(const std::vector<TraceCurve> &curves, const QString &time, const QString &value,
                       OutputFile *output)
{
    if (!output->open())
        return output->errorText();
    CsvWriter table(*output, comma);
    putHeadings(table, {QStringLiteral("Trace"), time, value});
    for (const TraceCurve &curve : curves) {
        for (std::size_t i = 0; i < curve.times.size() && i < curve.values.size(); ++i) {
            table.text(curve.name);
            table.number(curve.times[i]);
            table.number(curve.values[i]);
            table.endRow();
        }
    }
    return finish(table, output);
}

QString writeMapCsv(const ModulationMap &map, const QString &value, OutputFile *output)
{
    if (!output->open())
        return output->errorText();
    CsvWriter table(*output, comma);
    putHeadings(table,
                {QStringLiteral("First dimension (min)"), QStringLiteral("Second dimension (s)"),
                 QStringLiteral("Scan"), value});
    for (int column = 0; column < map.columns; ++column) {
        for (int row = 0; row < map.rows; ++row) {
            if (map.scan(column, row) == -1)
                continue;
            table.number((map.start + (column + 0.5) * map.length) / secondsOfMinute);
            table.number((row + 0.5) * map.step);
            table.whole(map.scan(column, row));
            table.number(map.value(column, row));
            table.endRow();
        }
    }
    return finish(table, output);
}
