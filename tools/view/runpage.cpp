#include "runpage.h"

#include "compoundlist.h"
#include "filetree.h"
#include "mappane.h"
#include "mapplot.h"
#include "masswindows.h"
#include "outputfile.h"
#include "peaktable.h"
#include "plotimage.h"
#include "spectrumplot.h"
#include "traceplot.h"
#include "viewexport.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>
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

struct SourceRow {
    RunPage::Source source;
    const char *name; // in the list of sources and at the axis
};

constexpr SourceRow sourceRows[] = {
    // clang-format off
    {RunPage::Source::Stored,   "Total, stored"},
    {RunPage::Source::Summed,   "Total, summed"},
    {RunPage::Source::BasePeak, "Base peak"},
    // clang-format on
};

const SourceRow &rowOf(RunPage::Source source)
{
    return *std::find_if(std::begin(sourceRows), std::end(sourceRows),
                         [source](const SourceRow &row) { return row.source == source; });
}

QString writeImage(RunPlot *plot, const QString &name, OutputFile *output)
{
    constexpr double pixelsOfOne = 2.0; // fine enough for print
    const QByteArray image = plotImage(plot, name, pixelsOfOne);
    return image.isEmpty() ? QStringLiteral("\"%1\" has to end in .png, .pdf, .svg or .csv.").arg(name)
                           : writeBytes(output, image);
}

QCPRange rangeOf(const MsInterval &interval)
{
    return {interval.from, interval.to};
}

} // namespace

RunPage::RunPage(ReadingThread &thread, const QString &fileName, QWidget *parent)
    : QWidget(parent), model_(new RunModel(thread, fileName, this)), stack_(new QStackedWidget),
      sentence_(new QLabel), average_(noInterval), background_(noInterval)
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
    views_->addWidget(makeTracePane());
    map_ = new MapPane;
    views_->addWidget(map_);
    down_->addWidget(views_);
    down_->addWidget(spectrum_);
    down_->setChildrenCollapsible(false);
    across_ = new QSplitter(Qt::Horizontal);
    across_->addWidget(down_);
    across_->addWidget(makeSide());
    down_->setSizes({1000, 1000}); // as parts
    across_->setSizes({3000, 1000});
    across_->setStretchFactor(0, 3);
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

RunPage::~RunPage()
{
    if (!conversion_)
        return;
    constexpr int patience = 3000; // ms, in which it removes what it has begun
    conversion_->disconnect(this);
    conversion_->terminate();
    conversion_->waitForFinished(patience);
}

QWidget *RunPage::makeTracePane()
{
    sources_ = new QComboBox;
    sources_->setToolTip(QStringLiteral("What the trace is made of"));
    masses_ = new QLineEdit;
    masses_->setPlaceholderText(QStringLiteral("Masses, such as 43, 57-71"));
    masses_->setToolTip(
        QStringLiteral("Traces of these masses and ranges of masses. A click on a peak adds its mass."));
    masses_->setClearButtonEnabled(true);
    goTo_ = new QLineEdit;
    goTo_->setPlaceholderText(QStringLiteral("Scan or time"));
    goTo_->setToolTip(QStringLiteral("Go to a scan, such as 344, or to a time, such as 6.44"));
    goTo_->setMaximumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 20);
    trace_ = new TracePlot;
    tracePane_ = new QWidget;
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(4, 4, 4, 2);
    bar->addWidget(sources_);
    bar->addWidget(masses_, 1);
    bar->addWidget(goTo_);
    auto *layout = new QVBoxLayout(tracePane_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(trace_, 1);
    return tracePane_;
}

QWidget *RunPage::makeSide()
{
    tree_ = new FileTree;
    peaks_ = new PeakTable;
    side_ = new QTabWidget;
    side_->addTab(tree_, QStringLiteral("File"));
    side_->addTab(peaks_, QStringLiteral("Peaks"));
    side_->setDocumentMode(true);
    side_->setMinimumWidth(fontMetrics().horizontalAdvance(QLatin1Char('x')) * 34);
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
    connect(model_, &RunModel::doubtsChanged, this, [this] { tree_->setDoubts(model_->doubts()); });
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
        model_->requestSums();
    });
    connect(trace_, &TracePlot::timePicked, this,
            [this](double time) { showScan(model_->scanAt(time)); });
    connect(trace_, &TracePlot::rangePicked, this, [this](const QCPRange &times, bool isBackground) {
        showAverage({times.lower, times.upper}, isBackground);
    });
    connect(trace_, &TracePlot::curveRemoved, this, &RunPage::removeCurve);
    connect(spectrum_, &SpectrumPlot::massPicked, this, &RunPage::addMass);
    connect(peaks_, &PeakTable::massPicked, this, &RunPage::addMass);
    connect(tree_, &FileTree::scanNamed, this, &RunPage::showScan);
    connect(masses_, &QLineEdit::returnPressed, this, [this] { setMasses(masses_->text()); });
    connect(masses_, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (text.isEmpty())
            setMasses(text);
    });
    connect(goTo_, &QLineEdit::returnPressed, this, [this] { goTo(goTo_->text()); });
    connect(sources_, qOverload<int>(&QComboBox::activated), this,
            [this](int place) { setSource(Source(sources_->itemData(place).toInt())); });
    connect(map_->plot(), &MapPlot::scanPicked, this, &RunPage::showScan);
    trace_->setDescription([this](double time, double *nearest) { return describe(time, nearest); });
}

void RunPage::takeRun()
{
    const RunSummary &summary = model_->summary();
    if (summary.kind == MsRun::Kind::Library) {
        compounds_ = new CompoundList;
        connect(compounds_, &CompoundList::entryChosen, this, &RunPage::showScan);
        views_->hide();
        down_->insertWidget(0, compounds_);
        down_->setSizes({1000, 0, 1000});
    }
    spectrum_->setVisible(summary.kind != MsRun::Kind::Trace);
    masses_->setVisible(summary.kind != MsRun::Kind::Trace);
    side_->setTabEnabled(1, summary.kind != MsRun::Kind::Trace);
    trace_->setTitle(summary.title.isEmpty()
                         ? model_->shownName()
                         : QStringLiteral("%1: %2").arg(model_->shownName(), summary.title));
    tree_->setDoubts(model_->doubts());
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

bool RunPage::has(Source source) const
{
    if (source == Source::Stored)
        return model_->summary().hasStored || model_->summary().kind == MsRun::Kind::Trace;
    return model_->summary().kind == MsRun::Kind::Spectra;
}

void RunPage::fillSources()
{
    sources_->clear();
    for (const SourceRow &row : sourceRows) {
        if (!has(row.source))
            continue;
        sources_->addItem(QString::fromLatin1(row.name), int(row.source));
        if (row.source == source_)
            sources_->setCurrentIndex(sources_->count() - 1);
    }
}

const std::vector<double> &RunPage::values(const RunModel &run) const
{
    switch (source_) {
    case Source::Stored:
        return run.summary().hasStored ? run.summary().storedTotals : run.sums().totals;
    case Source::Summed:
        return run.sums().totals;
    default:
        return run.sums().basePeaks;
    }
}

void RunPage::setSource(Source source)
{
    if (!has(source))
        return;
    source_ = source;
    hasChosenSource_ = true;
    if (source != Source::Stored && model_->sums().totals.empty())
        model_->requestSums();
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
    const QString name = QString::fromLatin1(rowOf(source_).name);
    std::vector<TraceCurve> curves{
        {overlay_.runs.isEmpty() ? name : model_->shownName(), times, values(*model_)}};
    for (const ExtractedTrace &trace : traces_)
        curves.push_back({QStringLiteral("m/z %1").arg(trace.name), times, trace.values});
    for (const QPointer<RunModel> &run : qAsConst(overlay_.runs)) {
        if (run && run->state() == RunModel::State::Open)
            curves.push_back({run->shownName(), timesOf(*run), values(*run)});
    }
    trace_->setLabels(model_->summary().timeLabel, name);
    trace_->setCurves(curves, keepsView);
    fillMap();
}

void RunPage::fillMap()
{
    const MsModulation &guess = model_->modulation();
    std::vector<MapPane::Values> values;
    values.push_back({trace_->yAxis->label(), this->values(*model_)});
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
    const std::vector<double> &totals = values(*model_);
    qint32 highest = model_->summary().size > 0 ? 0 : -1;
    for (std::size_t scan = 0; scan < totals.size(); ++scan) {
        const double best = totals[std::size_t(highest)];
        if (totals[scan] > best || (std::isnan(best) && !std::isnan(totals[scan])))
            highest = qint32(scan);
    }
    if (highest != -1 && model_->summary().kind == MsRun::Kind::Spectra)
        showScan(highest);
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

void RunPage::goTo(const QString &text)
{
    static const QRegularExpression scanPattern(QStringLiteral("^\\s*(?:scan\\s*)?(\\d{1,9})\\s*$"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression timePattern(
        QStringLiteral("^\\s*([-+]?\\d*\\.?\\d+)\\s*(?:min)?\\s*$"));
    const QRegularExpressionMatch scan = scanPattern.match(text);
    const QRegularExpressionMatch time = timePattern.match(text);
    if (scan.hasMatch() && scan.captured(1).toInt() >= model_->summary().size)
        say(QStringLiteral("There is no scan %1: the run has %2 scans, counted from 0.")
                .arg(scan.captured(1))
                .arg(model_->summary().size));
    else if (scan.hasMatch()) {
        say(QString());
        showScan(scan.captured(1).toInt());
    } else if (time.hasMatch()) {
        say(QString());
        showScan(model_->scanAt(time.captured(1).toDouble()));
    } else
        say(QStringLiteral("\"%1\" is neither a scan, such as 344, nor a time, such as 6.44.").arg(text));
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
    if (masses_->text() != text) {
        const QSignalBlocker quiet(masses_);
        masses_->setText(text);
    }
    model_->requestTraces(*windows);
}

QString RunPage::masses() const
{
    return masses_->text();
}

void RunPage::addMass(double mass)
{
    if (model_->summary().kind != MsRun::Kind::Spectra || !(mass >= 0.5 && mass < 1e6))
        return;
    const QString name = QString::number(std::lround(mass));
    QStringList names =
        masses_->text().split(QRegularExpression(QStringLiteral("[,;]\\s*")), Qt::SkipEmptyParts);
    if (!names.contains(name))
        setMasses((names << name).join(QStringLiteral(", ")));
}

void RunPage::removeCurve(int curve)
{
    if (curve < 1 || curve > int(traces_.size()))
        return;
    QStringList names;
    for (const ExtractedTrace &trace : traces_)
        names += trace.name;
    names.removeAt(curve - 1);
    setMasses(names.join(QStringLiteral(", ")));
}

void RunPage::traceLargest(const SpectrumData &spectrum)
{
    std::vector<std::size_t> places(spectrum.masses.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = i;
    const std::size_t count = std::min(places.size(), largestTraced);
    std::partial_sort(places.begin(), places.begin() + std::ptrdiff_t(count), places.end(),
                      [&](std::size_t one, std::size_t other) {
                          return spectrum.intensities[one] > spectrum.intensities[other];
                      });
    for (std::size_t i = 0; i < count; ++i)
        addMass(spectrum.masses[places[i]]);
}

void RunPage::setOverlay(const Overlay &overlay)
{
    overlay_ = overlay;
    trace_->setStacking(overlay.isOffset, overlay.isNormalised);
    showTraces(true);
    trace_->fitHeight();
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
    OutputFile output(name, OutputFile::Existing::Replace);
    const QString objection = output.objection({model_->fileName()});
    if (!objection.isNull())
        return objection;
    const bool isTable = QFileInfo(name).suffix().toLower() == QLatin1String("csv");
    if (!isTable)
        return writeImage(upperPlot(), name, &output);
    if (showsMap())
        return writeMapCsv(map_->plot()->map(), map_->values()->currentText(), &output);
    return writeTracesCsv(trace_->curves(), trace_->xAxis->label(), trace_->yAxis->label(), &output);
}

QString RunPage::saveSpectrum(const QString &name)
{
    OutputFile output(name, OutputFile::Existing::Replace);
    const QString objection = output.objection({model_->fileName()});
    if (!objection.isNull())
        return objection;
    const QString kind = QFileInfo(name).suffix().toLower();
    if (kind == QLatin1String("csv"))
        return writeSpectrumCsv(shown_, &output);
    if (kind != QLatin1String("msp"))
        return writeImage(spectrum_, name, &output);
    MspEntry about;
    if (shown_.scan >= 0 && std::size_t(shown_.scan) < model_->compounds().size())
        about = entryOf(model_->compounds()[std::size_t(shown_.scan)], shown_.scan);
    else {
        about.name = QStringLiteral("%1, %2").arg(model_->shownName(), shown_.title);
        if (shown_.scan != -1 && model_->summary().timeUnit != 1.0)
            about.minutes = shown_.time;
    }
    return writeSpectrumMsp(shown_, about, &output);
}

void RunPage::convertTo(const QString &name)
{
    if (conversion_)
        return say(QStringLiteral("A conversion is under way."));
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/aia-convert");
    if (!QFileInfo(program).isExecutable())
        return say(QStringLiteral(
            "The program aia-convert isn't beside this one, so the run can't be converted."));
    conversion_ = new QProcess(this);
    connect(conversion_, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this, name](int code, QProcess::ExitStatus status) {
                const bool isDone = code == 0 && status == QProcess::NormalExit;
                const QString words =
                    QString::fromLocal8Bit(conversion_->readAllStandardError()).simplified();
                say(isDone
                        ? QStringLiteral("The run was converted to \"%1\". %2").arg(name, words).trimmed()
                        : QStringLiteral("The run wasn't converted. %1").arg(words));
                conversion_->deleteLater();
                conversion_ = nullptr;
            });
    say(QStringLiteral("Converting \u2026"));
    conversion_->start(program,
                       {QStringLiteral("--quiet"), QStringLiteral("--force"), QStringLiteral("-o"), name,
                        QStringLiteral("--"), model_->fileName()});
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
    const std::vector<double> &totals = values(*model_);
    const double total = std::size_t(scan) < totals.size() ? totals[std::size_t(scan)] : unknown;
    QString text = QStringLiteral("scan %1").arg(scan);
    if (model_->summary().hasTimes)
        text = QStringLiteral("%1   %2").arg(QString::number(*nearest, 'f', 3), text);
    if (!std::isnan(total))
        text += QStringLiteral("   %1").arg(QString::number(total, 'g', 7));
    return text;
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

void RunPage::focusMasses()
{
    masses_->setFocus(Qt::ShortcutFocusReason);
    masses_->selectAll();
}

void RunPage::focusGoTo()
{
    goTo_->setFocus(Qt::ShortcutFocusReason);
    goTo_->selectAll();
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
        return stepScans(sign * fewScans);
    }
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
        return model_->cancel();
    default:
        QWidget::keyPressEvent(event);
    }
}
