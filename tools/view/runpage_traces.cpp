// The upper part of a run's page: its traces and its map.

#include "runpage.h"

#include "mappane.h"
#include "mapplot.h"
#include "masswindows.h"
#include "tracepane.h"
#include "traceplot.h"
#include "viewexport.h"

#include <QApplication>
#include <QStackedWidget>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace {

constexpr std::size_t largestTraced = 3;

} // namespace

void RunPage::fillSources()
{
    std::vector<Source> sources;
    for (const Source source : {Source::Stored, Source::Summed, Source::BasePeak}) {
        if (model_->summary().has(source))
            sources.push_back(source);
    }
    tracePane_->setSources(sources, source_);
}

void RunPage::setSource(Source source)
{
    if (!model_->summary().has(source))
        return;
    source_ = source;
    hasChosenSource_ = true;
    if (source != Source::Stored)
        model_->requestRest();
    fillSources();
    showTraces(true);
    trace_->fitHeight();
}

void RunPage::showTraces(bool keepsView)
{
    const auto timesOf = [](const RunModel &run) {
        std::vector<double> times;
        times.reserve(std::size_t(run.summary().size));
        for (qint32 scan = 0; scan < run.summary().size; ++scan)
            times.push_back(run.shownTime(scan));
        return times;
    };
    if (model_->state() != RunModel::State::Open || model_->summary().kind == MsRun::Kind::Library)
        return;
    const std::vector<double> times = timesOf(*model_);
    const QString name = sourceName(source_);
    std::vector<TraceCurve> curves{
        {overlay_.runs.isEmpty() ? name : model_->shownName(), times, model_->trace(source_)}};
    for (const ExtractedTrace &trace : traces_)
        curves.push_back({QStringLiteral("m/z %1").arg(trace.name), times, trace.values});
    for (const QPointer<RunModel> &run : qAsConst(overlay_.runs)) {
        if (run && run->state() == RunModel::State::Open)
            curves.push_back({run->shownName(), timesOf(*run), run->trace(source_)});
    }
    trace_->setLabels(model_->summary().timeLabel, name);
    trace_->setCurves(curves, keepsView);
    fillMap();
}

void RunPage::fillMap()
{
    const MsModulation &guess = model_->modulation();
    std::vector<MapPane::Values> values;
    values.push_back({trace_->yAxis->label(), model_->trace(source_)});
    for (const ExtractedTrace &trace : traces_)
        values.push_back({QStringLiteral("m/z %1").arg(trace.name), trace.values});
    map_->setValues(values);
    map_->setGuess(guess);
    if (!guess.isConfident || hasChosenView_ || showsMap())
        return;
    // A stack would give the focus to the map's first field, where keys of the plots are numbers.
    const bool hasFocus = tracePane_->isAncestorOf(QApplication::focusWidget());
    views_->setCurrentWidget(map_);
    if (hasFocus)
        focusUpper();
}

void RunPage::showMap(bool isShown)
{
    hasChosenView_ = true;
    if (model_->summary().kind == MsRun::Kind::Library)
        return;
    views_->setCurrentWidget(isShown ? static_cast<QWidget *>(map_) : tracePane_);
    focusUpper();
}

bool RunPage::showsMap() const
{
    return views_->currentWidget() == map_;
}

void RunPage::setModulation(double seconds)
{
    map_->setLength(seconds);
    showMap(true);
}

RunPlot *RunPage::upperPlot() const
{
    return showsMap() ? static_cast<RunPlot *>(map_->plot()) : trace_;
}

void RunPage::setMasses(const QString &text)
{
    QString fault;
    const std::optional<std::vector<ExtractedTrace>> windows = massWindows(text, &fault);
    say(fault);
    if (!windows)
        return;
    tracePane_->setMasses(text);
    model_->requestTraces(*windows);
}

QString RunPage::masses() const
{
    return tracePane_->masses();
}

void RunPage::addMasses(const std::vector<double> &masses)
{
    if (model_->summary().kind != MsRun::Kind::Spectra)
        return;
    const QString added = withMasses(this->masses(), masses);
    if (added != this->masses())
        setMasses(added);
}

void RunPage::removeCurve(int curve)
{
    if (curve < 1 || curve > int(traces_.size()))
        return;
    std::vector<ExtractedTrace> left = traces_;
    left.erase(left.begin() + (curve - 1));
    setMasses(textOf(left));
}

void RunPage::traceLargest(const SpectrumData &spectrum)
{
    addMasses(spectrum.largestMasses(largestTraced));
}

void RunPage::setOverlay(const Overlay &overlay)
{
    overlay_ = overlay;
    trace_->setStacking(overlay.isOffset, overlay.isNormalised);
    showTraces(true);
    trace_->fitHeight();
}

QString RunPage::saveUpper(const QString &name)
{
    if (compounds_)
        return QStringLiteral("A library has no trace and no map.");
    return showsMap() ? writeMap(*map_->plot(), map_->values()->currentText(), model_->fileName(), name)
                      : writeTraces(*trace_, model_->fileName(), name);
}
