#include "runpage.h"

#include "compoundlist.h"
#include "conversion.h"
#include "countedtext_p.h"
#include "filetree.h"
#include "mappane.h"
#include "mapplot.h"
#include "masswindows.h"
#include "peaktable.h"
#include "spectrumplot.h"
#include "tracepane.h"
#include "traceplot.h"
#include "typedplace.h"
#include "viewexport.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr MsInterval noInterval = {unknown, unknown};
constexpr qint32 fewScans = 1;
constexpr qint32 manyScans = 10;
constexpr double zoomStep = 0.7;
constexpr double moveStep = 0.2;
constexpr std::size_t largestTraced = 3;

QCPRange rangeOf(const MsInterval &interval)
{
    return {interval.from, interval.to};
}

} // namespace

RunPage::RunPage(ReadingThread &thread, const QString &fileName, QWidget *parent)
    : QWidget(parent), model_(new RunModel(thread, fileName, this)), stack_(new QStackedWidget),
      sentence_(new QLabel), conversion_(new Conversion(this)), average_(noInterval),
      background_(noInterval)
{
    sentence_->setText(QStringLiteral("Opening %1 \u2026").arg(model_->shownName()));
    sentence_->setTextFormat(Qt::PlainText);
    sentence_->setAlignment(Qt::AlignCenter);
    sentence_->setWordWrap(true);
    sentence_->setMargin(24);
    sentence_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    spectrum_ = new SpectrumPlot;
    down_ = new QSplitter(Qt::Vertical);
    views_ = new QStackedWidget;
    tracePane_ = new TracePane;
    trace_ = tracePane_->plot();
    views_->addWidget(tracePane_);
    map_ = new MapPane;
    views_->addWidget(map_);
    down_->addWidget(views_);
    down_->addWidget(spectrum_);
    down_->setChildrenCollapsible(false);
    across_ = new QSplitter(Qt::Horizontal);
    across_->addWidget(down_);
    across_->addWidget(makeSide());
    down_->setSizes({3000, 2000}); // as parts
    across_->setSizes({2000, 1000});
    across_->setStretchFactor(0, 2);
    across_->setStretchFactor(1, 1);
    remark_ = new QLabel;
    remark_->setTextFormat(Qt::RichText);
    remark_->setWordWrap(true);
    remark_->setMargin(4);
    remark_->hide();
    auto *content = new QWidget;
    auto *contentLayout = new QVBoxLayout(content);
    contentLayout->setContentsMargins(0, 0, 0, 0);
    contentLayout->setSpacing(0);
    contentLayout->addWidget(across_, 1);
    contentLayout->addWidget(remark_);

    stack_->addWidget(sentence_);
    stack_->addWidget(content);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(stack_);
    connectParts();
}

QWidget *RunPage::makeSide()
{
    tree_ = new FileTree;
    peaks_ = new PeakTable;
    side_ = new QTabWidget;
    side_->addTab(tree_, QStringLiteral("File"));
    side_->addTab(peaks_, QStringLiteral("Peaks"));
    side_->setDocumentMode(true);
    side_->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 24);
    return side_;
}

void RunPage::connectParts()
{
    connect(model_, &RunModel::opened, this, &RunPage::takeRun);
    connect(model_, &RunModel::refused, this, [this](const QString &sentence) {
        sentence_->setText(sentence);
        emit idle();
    });
    connect(model_, &RunModel::attributesRead, this,
            [this] { tree_->setAttributes(model_->attributes()); });
    connect(model_, &RunModel::doubtsChanged, this,
            [this] { tree_->setDoubts(model_->doubts(), model_->fileName()); });
    connect(model_, &RunModel::compoundsRead, this, [this] {
        if (compounds_)
            compounds_->setCompounds(model_->compounds(), model_->summary().size);
    });
    connect(model_, &RunModel::sumsRead, this, [this] {
        fillSources();
        showTraces(hasChosenSource_ || model_->summary().hasStored);
        if (wanted_ == -1)
            showHighest();
    });
    connect(model_, &RunModel::spectrumRead, this, &RunPage::takeSpectrum);
    connect(model_, &RunModel::tracesRead, this, [this](const std::vector<ExtractedTrace> &traces) {
        traces_ = traces;
        showTraces(true);
    });
    connect(model_, &RunModel::hostScanRead, this, [this](qint32 scan, const HostScan &hostScan) {
        if (!showsHost_ || scan != shown_.scan)
            return;
        spectrum_->setHost(hostScan);
        say(hostScan.fault);
    });
    connect(model_, &RunModel::progressed, this, &RunPage::progressed);
    connect(model_, &RunModel::failed, this, &RunPage::say);
    connect(model_, &RunModel::idle, this, [this](bool wasCancelled) {
        if (wasCancelled && model_->sums().totals.empty())
            remark_->setText(
                QStringLiteral("Reading was cancelled, so not all doubts and sums are known. "
                               "<a href=\"read\">Read all scans</a>"));
        remark_->setVisible(!remark_->text().isEmpty());
        emit idle();
    });
    connect(remark_, &QLabel::linkActivated, this, [this] {
        say(QString());
        model_->requestRest();
    });
    connect(trace_, &TracePlot::timePicked, this,
            [this](double time) { showScan(model_->scanAt(time)); });
    connect(trace_, &TracePlot::rangePicked, this, [this](const QCPRange &times, bool isBackground) {
        showAverage({times.lower, times.upper}, isBackground);
    });
    connect(trace_, &TracePlot::curveRemoved, this, &RunPage::removeCurve);
    connect(spectrum_, &SpectrumPlot::massPicked, this, [this](double mass) { addMasses({mass}); });
    connect(peaks_, &PeakTable::massPicked, this, [this](double mass) { addMasses({mass}); });
    connect(tree_, &FileTree::scanNamed, this, &RunPage::showScan);
    connect(tracePane_, &TracePane::massesTyped, this, &RunPage::setMasses);
    connect(tracePane_, &TracePane::placeTyped, this, &RunPage::goTo);
    connect(tracePane_, &TracePane::sourceChosen, this, &RunPage::setSource);
    connect(conversion_, &Conversion::said, this, &RunPage::say);
    connect(map_->plot(), &MapPlot::scanPicked, this, &RunPage::showScan);
    trace_->setDescription([this](double time, double *nearest) { return describe(time, nearest); });
}

void RunPage::takeRun()
{
    const RunSummary &summary = model_->summary();
    if (summary.kind == MsRun::Kind::Library) {
        compounds_ = new CompoundList;
        connect(compounds_, &CompoundList::entryChosen, this, &RunPage::showScan);
        connect(compounds_, &CompoundList::tracesAsked, this, [this] { emit tracesAsked(shown_); });
        views_->hide();
        down_->insertWidget(0, compounds_);
        down_->setSizes({1000, 0, 1000});
    }
    spectrum_->setVisible(summary.kind != MsRun::Kind::Trace);
    tracePane_->setMassesVisible(summary.kind != MsRun::Kind::Trace);
    side_->setTabEnabled(1, summary.kind != MsRun::Kind::Trace);
    trace_->setTitle(summary.title.isEmpty()
                         ? model_->shownName()
                         : QStringLiteral("%1: %2").arg(model_->shownName(), summary.title));
    tree_->setDoubts(model_->doubts(), model_->fileName());
    map_->setTimes(model_->seconds());
    map_->plot()->setTitle(trace_->title());
    source_ = summary.hasStored || summary.kind == MsRun::Kind::Trace ? Source::Stored : Source::Summed;
    fillSources();
    showTraces(false);
    stack_->setCurrentIndex(1);
    if (summary.hasStored)
        showHighest();
    if (summary.kind == MsRun::Kind::Spectra && summary.size == 0)
        say(QStringLiteral("The run has no scans."));
}

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
    if (guess.isConfident && !hasChosenView_)
        views_->setCurrentWidget(map_);
}

void RunPage::showMap(bool isShown)
{
    hasChosenView_ = true;
    if (model_->summary().kind == MsRun::Kind::Library)
        return;
    views_->setCurrentWidget(isShown ? static_cast<QWidget *>(map_) : tracePane_);
    upperPlot()->setFocus();
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

void RunPage::showHighest()
{
    if (model_->summary().kind == MsRun::Kind::Spectra)
        showScan(model_->highestScan(source_));
}

void RunPage::showScan(qint32 scan)
{
    if (scan < 0 || scan >= model_->summary().size)
        return;
    wanted_ = scan;
    average_ = background_ = noInterval;
    if (model_->summary().kind != MsRun::Kind::Trace) {
        model_->requestSpectrum(scan);
        return;
    }
    shown_.scan = scan;
    shown_.time = model_->shownTime(scan);
    markShown();
}

void RunPage::stepScans(qint32 by)
{
    const qint32 last = model_->summary().size - 1;
    if (last < 0)
        return;
    const qint64 wanted = std::clamp<qint64>(qint64(std::max(wanted_, 0)) + by, 0, last);
    if (compounds_)
        compounds_->choose(qint32(wanted));
    showScan(qint32(wanted));
}

void RunPage::stepModulations(int by)
{
    const double time = model_->shownTime(wanted_) + by * map_->length() / model_->summary().timeUnit;
    const qint32 scan = model_->scanAt(time);
    const double reached = model_->shownTime(scan) * model_->summary().timeUnit;
    const double length = map_->length();
    // Not at the ends of the run, where the nearest scan is one of the same modulation.
    if (scan != -1 && std::abs(reached - time * model_->summary().timeUnit) < length / 2.0)
        showScan(scan);
}

void RunPage::goTo(const QString &text)
{
    const std::optional<TypedPlace> place = typedPlace(text);
    say(QString());
    if (!place)
        say(QStringLiteral("\"%1\" is neither a scan, such as 344, nor a time, such as 6.44, nor a range "
                           "of times, such as 6.4-6.5.")
                .arg(text));
    else if (place->kind == TypedPlace::Kind::Time)
        showScan(model_->scanAt(place->time));
    else if (place->kind == TypedPlace::Kind::Average) {
        background_ = place->background.value_or(noInterval);
        showAverage(place->average, false);
    } else if (place->scan < model_->summary().size)
        showScan(place->scan);
    else
        say(ms_counted_text("There is no scan %1: the run has %2 [scan|scans], counted from 0.",
                            model_->summary().size,
                            {QString::number(place->scan), QString::number(model_->summary().size)}));
}

void RunPage::showAverage(const MsInterval &times, bool isBackground)
{
    (isBackground ? background_ : average_) = times;
    if (std::isnan(average_.from)) {
        say(QStringLiteral("The background is known. Drag with Shift over the range to take it from."));
        markShown();
        return;
    }
    say(QString());
    model_->requestAverage(average_, background_);
}

void RunPage::takeSpectrum(const SpectrumData &spectrum)
{
    shown_ = spectrum;
    spectrum_->setSpectrum(spectrum);
    peaks_->setSpectrum(spectrum);
    markShown();
    askHost();
}

void RunPage::markShown()
{
    const QCPRange average = rangeOf(average_);
    const QCPRange background = rangeOf(background_);
    trace_->markTime(shown_.scan != -1 ? shown_.time : unknown);
    if (shown_.scan != -1)
        map_->choose(shown_.time * model_->summary().timeUnit);
    trace_->markRanges(std::isnan(average_.from) ? nullptr : &average,
                       std::isnan(background_.from) ? nullptr : &background);
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

void RunPage::showSide(bool isShown)
{
    side_->setVisible(isShown);
}

void RunPage::setMirrored(const std::optional<SpectrumData> &spectrum)
{
    spectrum_->setMirrored(spectrum);
}

void RunPage::setHost(bool isShown)
{
    showsHost_ = isShown;
    if (!isShown)
        say(QString());
    askHost();
}

void RunPage::askHost()
{
    spectrum_->setHost({});
    if (showsHost_ && shown_.scan != -1 && model_->summary().kind != MsRun::Kind::Trace)
        model_->requestHostScan(shown_.scan);
}

QString RunPage::saveUpper(const QString &name)
{
    if (compounds_)
        return QStringLiteral("A library has no trace and no map.");
    return showsMap() ? writeMap(*map_->plot(), map_->values()->currentText(), model_->fileName(), name)
                      : writeTraces(*trace_, model_->fileName(), name);
}

QString RunPage::saveSpectrum(const QString &name)
{
    MspEntry about;
    if (shown_.scan >= 0 && std::size_t(shown_.scan) < model_->compounds().size())
        about = entryOf(model_->compounds()[std::size_t(shown_.scan)], shown_.scan);
    else {
        about.name = QStringLiteral("%1, %2").arg(model_->shownName(), shown_.title);
        if (shown_.scan != -1 && model_->summary().timeUnit != 1.0)
            about.minutes = shown_.time;
    }
    return writeSpectrum(*spectrum_, shown_, about, model_->fileName(), name);
}

void RunPage::convertTo(const QString &name)
{
    conversion_->start(model_->fileName(), name);
}

void RunPage::say(const QString &sentence)
{
    remark_->setText(sentence.toHtmlEscaped());
    remark_->setVisible(!sentence.isEmpty());
}

QString RunPage::remark() const
{
    return stack_->currentIndex() == 0 ? sentence_->text() : remark_->text();
}

QString RunPage::describe(double time, double *nearest) const
{
    const qint32 scan = model_->scanAt(time);
    if (scan == -1)
        return QString();
    *nearest = model_->shownTime(scan);
    const std::vector<double> &totals = model_->trace(source_);
    const double total = std::size_t(scan) < totals.size() ? totals[std::size_t(scan)] : unknown;
    QStringList parts;
    if (model_->summary().hasTimes)
        parts += timeText(*nearest, model_->summary());
    parts += QStringLiteral("scan %1").arg(scan);
    if (!std::isnan(total))
        parts +=
            QStringLiteral("%1 %2").arg(sourceName(source_).toLower(), QString::number(total, 'g', 7));
    return parts.join(QStringLiteral(", "));
}

void RunPage::focusSearch()
{
    if (compounds_) {
        compounds_->focusSearch();
        return;
    }
    side_->setCurrentWidget(tree_);
    tree_->focusSearch();
}

QByteArray RunPage::layoutState() const
{
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream << across_->saveState() << down_->saveState();
    return state;
}

void RunPage::restoreLayout(const QByteArray &state)
{
    QByteArray across;
    QByteArray down;
    QDataStream stream(state);
    stream >> across >> down;
    across_->restoreState(across);
    down_->restoreState(down);
}

void RunPage::keyPressEvent(QKeyEvent *event)
{
    RunPlot *plot = spectrum_->hasFocus() ? spectrum_ : upperPlot();
    const bool isControl = event->modifiers().testFlag(Qt::ControlModifier);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int sign = event->key() == Qt::Key_Left ? -1 : 1;
        if (isControl)
            return plot->move(sign * moveStep);
        if (plot == map_->plot())
            return stepModulations(sign);
        return stepScans(sign * fewScans);
    }
    case Qt::Key_Up:
    case Qt::Key_Down: {
        const bool isUp = event->key() == Qt::Key_Up;
        if (plot == map_->plot())
            return stepScans(isUp ? fewScans : -fewScans);
        if (plot == trace_)
            return trace_->zoomHeight(isUp ? zoomStep : 1.0 / zoomStep);
        return QWidget::keyPressEvent(event);
    }
    case Qt::Key_N:
        return trace_->bringForward((trace_->inFront() + 1) % std::max(trace_->graphCount(), 1));
    case Qt::Key_PageUp:
        return stepScans(-manyScans);
    case Qt::Key_PageDown:
        return stepScans(manyScans);
    case Qt::Key_Home:
        return stepScans(-model_->summary().size);
    case Qt::Key_End:
        return stepScans(model_->summary().size);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return plot->zoom(zoomStep);
    case Qt::Key_Minus:
        return plot->zoom(1.0 / zoomStep);
    case Qt::Key_0:
        return plot->showAll();
    case Qt::Key_H:
        return trace_->fitHeight();
    case Qt::Key_Escape:
        upperPlot()->setFocus(); // out of a field
        return model_->cancel();
    default:
        QWidget::keyPressEvent(event);
    }
}
