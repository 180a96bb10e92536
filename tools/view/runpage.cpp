#include "runpage.h"

#include "compoundlist.h"
#include "conversion.h"
#include "filetree.h"
#include "mappane.h"
#include "mapplot.h"
#include "peaktable.h"
#include "spectrumplot.h"
#include "tracepane.h"
#include "traceplot.h"

#include <QDataStream>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

constexpr qint32 fewScans = 1;
constexpr qint32 manyScans = 10;
constexpr double zoomStep = 0.7;
constexpr double moveStep = 0.2;

// Keeps what doesn't fit into a small window within reach, and leaves the keys to the page.
class PageScroll : public QScrollArea
{
protected:
    void keyPressEvent(QKeyEvent *event) override { event->ignore(); }
};

} // namespace

RunPage::RunPage(ReadingThread &thread, const QString &fileName, QWidget *parent)
    : QWidget(parent), model_(new RunModel(thread, fileName, this)), stack_(new QStackedWidget),
      sentence_(new QLabel), conversion_(new Conversion(this))
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
    auto *scroll = new PageScroll;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidgetResizable(true);
    scroll->setWidget(across_);
    contentLayout->addWidget(scroll, 1);
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
        if (std::exchange(wasCancelled_, false))
            say(QString());
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
        if (wasCancelled && model_->sums().totals.empty()) {
            wasCancelled_ = true;
            say(QString());
        }
        emit idle();
    });
    connect(remark_, &QLabel::linkActivated, this, [this] {
        wasCancelled_ = false;
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

void RunPage::showSide(bool isShown)
{
    side_->setVisible(isShown);
}

void RunPage::convertTo(const QString &name)
{
    conversion_->start(model_->fileName(), name);
}

void RunPage::say(const QString &sentence)
{
    QString text = sentence.toHtmlEscaped();
    if (text.isEmpty() && wasCancelled_)
        text = QStringLiteral("Reading was cancelled, so not all doubts and sums are known. "
                              "<a href=\"read\">Read all scans</a>");
    remark_->setText(text);
    remark_->setVisible(!text.isEmpty());
}

QString RunPage::remark() const
{
    return stack_->currentIndex() == 0 ? sentence_->text() : remark_->text();
}

void RunPage::focusUpper()
{
    if (compounds_)
        compounds_->view()->setFocus();
    else
        upperPlot()->setFocus();
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
        focusUpper(); // out of a field
        return model_->cancel();
    default:
        QWidget::keyPressEvent(event);
    }
}
