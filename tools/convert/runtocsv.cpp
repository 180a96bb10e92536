#include "runtocsv.h"

#include "countedtext_p.h"
#include "csvwriter.h"
#include "runmodulation.h"
#include "scanwalk.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

class RunTables
{
public:
    RunTables(const MsRun &source, OutputFile *file, const ConversionOptions &wanted, ProgressBar *bar,
              ConversionLog *messages)
        : run(source), options(wanted), csv(*file, wanted.delimiter), progress(bar), log(messages)
    {
    }

    bool write()
    {
        if (!writeTable())
            return false;
        return csv.finish();
    }

private:
    bool writeTable()
    {
        const bool wantsMasses = options.table == CsvTable::Points || options.table == CsvTable::Matrix
            || (options.table == CsvTable::Trace && !options.masses.empty());
        if (wantsMasses && run.kind() == MsRun::Kind::Trace)
            return log->fail(QStringLiteral("the file has no masses, so there is no such table of it"));
        switch (options.table) {
        case CsvTable::Trace:
            return writeTrace();
        case CsvTable::Scans:
            return writeScans();
        case CsvTable::Points:
            return writePoints();
        case CsvTable::Matrix:
            return writeMatrix();
        case CsvTable::Map:
            break;
        }
        return writeMap();
    }

    QString timeHeader() const
    {
        return run.hasSeconds() ? QStringLiteral("time (s)") : QStringLiteral("time (as stored)");
    }

    QString intensityHeader(const QString &what, const MsTerm &unit) const
    {
        return unit.isStated() ? QStringLiteral("%1 (%2)").arg(what, unit.text) : what;
    }

    bool walk(ScanWalk kind, const std::function<void(const MsSpectrum &)> &use)
    {
        return forEachScan(run, kind, progress, [&](const MsSpectrum &spectrum) {
            use(spectrum);
            return !csv.hasFailed();
        });
    }

    static QString massText(double mass) { return QString::number(mass, 'g', 10); }

    bool writeTrace()
    {
        const std::vector<double> times = run.times();
        const std::vector<double> totals = run.storedTotals();
        std::vector<MsInterval> windows;
        for (const double mass : options.masses) // a unit around each, which the next one begins
            windows.push_back({mass - 0.5, std::nextafter(mass + 0.5, 0.0)});
        const MsRun::Progress step = [this](double part) {
            progress->show(int(part * 100.0), 100);
            return !isInterrupted();
        };
        const bool hasMasses = run.kind() != MsRun::Kind::Trace;
        const std::vector<double> sums = hasMasses ? run.summedTotals(step) : totals;
        const auto traces =
            windows.empty() ? std::vector<std::vector<double>>() : run.extractedTraces(windows, step);
        if (isInterrupted())
            return false;
        csv.text("scan");
        csv.text(timeHeader());
        csv.text(intensityHeader("total intensity", run.facts().totalUnits));
        if (hasMasses)
            csv.text(intensityHeader("sum of intensities", run.facts().intensityUnits));
        for (const double mass : options.masses)
            csv.text(intensityHeader("m/z " + massText(mass), run.facts().intensityUnits));
        csv.endRow();
        for (std::size_t i = 0; i < times.size(); ++i) {
            csv.whole(qint64(i));
            csv.number(times[i]);
            csv.number(totals[i]);
            if (hasMasses)
                csv.number(sums[i]);
            for (const std::vector<double> &trace : traces)
                csv.number(trace[i]);
            csv.endRow();
        }
        return true;
    }

    bool writeScans()
    {
        for (const char *name : {"scan", "number"})
            csv.text(name);
        csv.text(timeHeader());
        csv.text(intensityHeader("total intensity", run.facts().totalUnits));
        csv.text(intensityHeader("sum of intensities", run.facts().intensityUnits));
        for (const char *name : {"points", "base peak (m/z)"})
            csv.text(name);
        csv.text(intensityHeader("base peak intensity", run.facts().intensityUnits));
        for (const char *name : {"lowest mass (m/z)", "highest mass (m/z)", "scanned from (m/z)",
                                 "scanned to (m/z)", "flags"})
            csv.text(name);
        csv.endRow();
        return walk(ScanWalk::Only, [this](const MsSpectrum &spectrum) { writeScan(spectrum); });
    }

    void writeScan(const MsSpectrum &spectrum)
    {
        const auto count = std::size_t(spectrum.size());
        const bool hasPeaks = count > 0 && run.kind() != MsRun::Kind::Trace;
        const double *masses = hasPeaks ? spectrum.masses() : nullptr;
        const double *intensities = spectrum.intensities();
        const auto base = std::size_t(std::max_element(intensities, intensities + count) - intensities);
        csv.whole(spectrum.index());
        csv.whole(spectrum.number());
        csv.number(spectrum.time());
        csv.number(spectrum.storedTotal());
        csv.number(run.kind() == MsRun::Kind::Trace ? unknown : spectrum.summedTotal());
        csv.whole(qint64(count));
        csv.number(hasPeaks ? masses[base] : unknown);
        csv.number(hasPeaks ? intensities[base] : unknown);
        csv.number(hasPeaks ? *std::min_element(masses, masses + count) : unknown);
        csv.number(hasPeaks ? *std::max_element(masses, masses + count) : unknown);
        csv.number(spectrum.massRange().from);
        csv.number(spectrum.massRange().to);
        csv.whole(spectrum.flaggedPeaks().size());
        csv.endRow();
    }

    bool writePoints()
    {
        csv.text("scan");
        csv.text(timeHeader());
        csv.text("mass (m/z)");
        csv.text(intensityHeader("intensity", run.facts().intensityUnits));
        csv.endRow();
        return walk(ScanWalk::Only, [this](const MsSpectrum &spectrum) {
            const double *masses = spectrum.masses();
            const double *intensities = spectrum.intensities();
            for (qint32 i = 0; i < spectrum.size(); ++i) {
                csv.whole(spectrum.index());
                csv.number(spectrum.time());
                csv.number(masses[i]);
                csv.number(intensities[i]);
                csv.endRow();
            }
        });
    }

    // Returns the number of the column that a mass belongs to: of unit masses the nearest whole number,
    // of wider or narrower ones how often the width goes into it.
    double binOf(double mass) const
    {
        return options.binWidth > 0.0 ? std::floor(mass / options.binWidth) : std::floor(mass + 0.5);
    }

    bool writeMatrix()
    {
        constexpr std::size_t mostColumns = 100000;
        std::map<double, std::size_t> columns; // by the bins that have points
        const bool isSurveyed = walk(ScanWalk::First, [&](const MsSpectrum &spectrum) {
            for (qint32 i = 0; i < spectrum.size() && columns.size() <= mostColumns; ++i)
                columns.emplace(binOf(spectrum.masses()[i]), 0);
        });
        if (!isSurveyed)
            return false;
        if (columns.size() > mostColumns)
            return log->fail(
                QStringLiteral("the matrix would have more than %1 columns").arg(mostColumns));
        csv.text("scan");
        csv.text(timeHeader());
        std::size_t next = 0;
        for (auto &column : columns) {
            column.second = next++;
            const double width = options.binWidth;
            csv.text(width > 0.0 ? QStringLiteral("m/z %1-%2")
                                       .arg(massText(column.first * width),
                                            massText((column.first + 1.0) * width))
                                 : QStringLiteral("m/z ") + massText(column.first));
        }
        csv.endRow();
        std::vector<double> row(columns.size());
        return walk(ScanWalk::Second, [&](const MsSpectrum &spectrum) {
            std::fill(row.begin(), row.end(), 0.0);
            for (qint32 i = 0; i < spectrum.size(); ++i) {
                const auto column = columns.find(binOf(spectrum.masses()[i]));
                if (column != columns.end()) // none where the file was changed meanwhile, which is told
                    row[column->second] += spectrum.intensities()[i];
            }
            csv.whole(spectrum.index());
            csv.number(spectrum.time());
            for (const double cell : row)
                csv.number(cell);
            csv.endRow();
        });
    }

    // The trace of a modulated run, folded: a column for each modulation, a row for each place in it.
    bool writeMap()
    {
        const double length = modulationOf(run, options, log);
        if (!(length > 0.0))
            return log->fail(
                QStringLiteral("its trace doesn't show the length of a modulation, which the option "
                               "--modulation takes for a map"));
        const std::vector<double> times = run.times();
        std::vector<double> totals = run.storedTotals();
        const bool lacksTotals =
            std::all_of(totals.begin(), totals.end(), [](double total) { return std::isnan(total); });
        if (lacksTotals && run.kind() != MsRun::Kind::Trace)
            totals = run.summedTotals();
        const std::size_t count = times.size();
        const double span = count > 1 ? times.back() - times.front() : unknown;
        const double step = span / double(count - 1);
        if (!run.hasSeconds() || !(step > 0.0) || !std::isfinite(step))
            return log->fail(QStringLiteral("a map needs times in seconds that rise"));
        constexpr double mostCells = 1e8;
        const double rows = std::round(length / step);
        const double modulations = std::floor(span / length) + 1.0;
        if (!(rows >= 2.0) || rows * modulations > mostCells)
            return log->fail(
                QStringLiteral("its scans are too far apart for modulations of %1 s").arg(length));
        const auto height = std::size_t(rows);
        const auto width = std::size_t(modulations);
        std::vector<double> cells(height * width, unknown);
        std::size_t unplaced = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const double since = times[i] - times.front();
            const double column =
                std::floor(since / length + 0.5 / rows); // rounding mustn't cross the edge
            const double row = std::round((since - column * length) / step);
            const bool isInside = column >= 0.0 && column < modulations && row >= 0.0 && row < rows;
            if (isInside && std::isnan(cells[std::size_t(row) * width + std::size_t(column)]))
                cells[std::size_t(row) * width + std::size_t(column)] = totals[i];
            else
                ++unplaced;
        }
        if (unplaced > 0)
            log->warn(ms_counted_text(
                "%1 [scan has no place of its|scans have no place of their] own in the map, "
                "as the times aren't evenly spaced.",
                qint64(unplaced)));
        csv.text("second dimension (s) by first dimension (s)");
        for (std::size_t column = 0; column < width; ++column)
            csv.number(times.front() + double(column) * length);
        csv.endRow();
        for (std::size_t row = 0; row < height && !csv.hasFailed(); ++row) {
            csv.number(double(row) * step);
            for (std::size_t column = 0; column < width; ++column)
                csv.number(cells[row * width + column]);
            csv.endRow();
        }
        return true;
    }

    const MsRun &run;
    const ConversionOptions &options;
    CsvWriter csv;
    ProgressBar *progress;
    ConversionLog *log;
};

} // namespace

bool writeCsv(const MsRun &run, OutputFile *output, const ConversionOptions &options,
              ProgressBar *progress, ConversionLog *log)
{
    RunTables tables(run, output, options, progress, log);
    return tables.write();
}
