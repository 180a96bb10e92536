#include "viewexport.h"

#include "csvwriter.h"
#include "mapplot.h"
#include "plotimage.h"
#include "spectrumplot.h"
#include "traceplot.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <vector>

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

// A row for each peak, or point of a profile.
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

// A row for each point of each curve. `time` and `value` are the axes' labels.
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

// A row for each cell that has a scan.
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

QString writePlot(RunPlot &plot, const QString &name, OutputFile *output)
{
    constexpr double pixelsOfOne = 2.0; // fine enough for print
    return isImageName(name) ? writeImage(output, plotImage(&plot, name, pixelsOfOne))
                             : QStringLiteral("\"%1\" has to end in .png, .pdf, .svg or .csv.").arg(name);
}

QString endingOf(const QString &name)
{
    return QFileInfo(name).suffix().toLower();
}

// Has `write` fill the file of that name, unless that is the run's own.
template <class Write> QString replaceFile(const QString &name, const QString &run, Write write)
{
    OutputFile output(name, OutputFile::Existing::Replace);
    const QString objection = output.objection({run});
    return objection.isNull() ? write(&output) : objection;
}

// Returns the endings in words of a dialog such as "Images (*.png *.pdf)".
QStringList endingsOf(const QString &kinds)
{
    static const QRegularExpression pattern(QStringLiteral("\\*(\\.[^ )]+)"));
    QStringList endings;
    for (auto match = pattern.globalMatch(kinds); match.hasNext();)
        endings += match.next().captured(1);
    return endings;
}

} // namespace

QString writeTraces(TracePlot &plot, const QString &run, const QString &name)
{
    return replaceFile(name, run, [&](OutputFile *output) {
        return endingOf(name) == QLatin1String("csv")
            ? writeTracesCsv(plot.curves(), plot.xAxis->label(), plot.yAxis->label(), output)
            : writePlot(plot, name, output);
    });
}

QString writeMap(MapPlot &plot, const QString &value, const QString &run, const QString &name)
{
    return replaceFile(name, run, [&](OutputFile *output) {
        return endingOf(name) == QLatin1String("csv") ? writeMapCsv(plot.map(), value, output)
                                                      : writePlot(plot, name, output);
    });
}

QString writeSpectrum(SpectrumPlot &plot, const SpectrumData &spectrum, const MspEntry &about,
                      const QString &run, const QString &name)
{
    return replaceFile(name, run, [&](OutputFile *output) {
        if (endingOf(name) == QLatin1String("csv"))
            return writeSpectrumCsv(spectrum, output);
        return endingOf(name) == QLatin1String("msp") ? writeSpectrumMsp(spectrum, about, output)
                                                      : writePlot(plot, name, output);
    });
}

QString lackingEnd(const QString &name, const QString &kinds, const QString &chosen)
{
    const QStringList endings = endingsOf(kinds);
    const bool hasOne = std::any_of(endings.begin(), endings.end(), [&name](const QString &ending) {
        return name.endsWith(ending, Qt::CaseInsensitive);
    });
    return hasOne ? QString() : endingsOf(chosen).value(0);
}
