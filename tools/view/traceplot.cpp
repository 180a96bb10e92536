#include "traceplot.h"

#include "plotlook.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>

namespace {

constexpr double headroom = 1.05;   // above the highest point
constexpr double offsetPart = 0.15; // of the height, from curve to curve

double highest(const std::vector<double> &values)
{
    double result = 0.0;
    for (const double value : values)
        result = value > result ? value : result; // false for NaN
    return result;
}

// Whether a point has a gap at each side, so that no line makes it visible.
bool hasLonePoint(const QCPGraphDataContainer &points)
{
    const auto isGap = [&points](int i) {
        return i < 0 || i >= points.size() || std::isnan(points.at(i)->value);
    };
    for (int i = 0; i < points.size(); ++i) {
        if (!isGap(i) && isGap(i - 1) && isGap(i + 1))
            return true;
    }
    return false;
}

} // namespace

TracePlot::TracePlot(QWidget *parent)
    : RunPlot(parent), pointer_(new QCPItemStraightLine(this)), pointerText_(new QCPItemText(this)),
      shown_(new QCPItemStraightLine(this)), averaged_(new QCPItemRect(this)),
      background_(new QCPItemRect(this))
{
    setInteraction(QCP::iSelectLegend);
    PlotLook::usePowers(yAxis);
    PlotLook::makeRemark(pointerText_, Qt::AlignLeft | Qt::AlignTop);
    for (QCPAbstractItem *item :
         {static_cast<QCPAbstractItem *>(pointer_), static_cast<QCPAbstractItem *>(shown_),
          static_cast<QCPAbstractItem *>(averaged_), static_cast<QCPAbstractItem *>(background_)}) {
        item->setSelectable(false);
        item->setVisible(false);
    }
    addLayer(QStringLiteral("front"), layer(QStringLiteral("main")));
    addLayer(QStringLiteral("pointer"), layer(QStringLiteral("legend")), limAbove);
    layer(QStringLiteral("pointer"))->setMode(QCPLayer::lmBuffered); // moves without drawing the curves
    pointer_->setLayer(QStringLiteral("pointer"));
    pointerText_->setLayer(QStringLiteral("pointer"));
    setMouseTracking(true);
    connect(this, &RunPlot::clickedAt, this,
            [this](const QPointF &place) { emit timePicked(place.x()); });
    connect(this, &QCustomPlot::legendClick, this,
            [this](QCPLegend *, QCPAbstractLegendItem *item) { bringForward(curveOf(item)); });
    connect(this, &QCustomPlot::legendDoubleClick, this,
            [this](QCPLegend *, QCPAbstractLegendItem *item) { emit curveRemoved(curveOf(item)); });
    applyLook();
}

void TracePlot::setLabels(const QString &time, const QString &value)
{
    xAxis->setLabel(time);
    yAxis->setLabel(value);
}

void TracePlot::setCurves(const std::vector<TraceCurve> &curves, bool keepsView)
{
    curves_ = curves;
    inFront_ = std::min(inFront_, std::max(int(curves_.size()) - 1, 0));
    fill();
    if (!keepsView)
        showAll();
    replot(rpQueuedReplot);
}

void TracePlot::setStacking(bool isOffset, bool isNormalised)
{
    isOffset_ = isOffset;
    isNormalised_ = isNormalised;
    fill();
    fitHeight();
}

void TracePlot::fill()
{
    clearGraphs();
    const double height = curves_.empty() ? 0.0 : highest(curves_.front().values);
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    for (std::size_t i = 0; i < curves_.size(); ++i) {
        const TraceCurve &curve = curves_[i];
        QCPGraph *graph = addGraph();
        const double own = highest(curve.values);
        const double factor = isNormalised_ && own > 0.0 ? height / own : 1.0;
        const double offset = isOffset_ ? double(i) * offsetPart * height : 0.0;
        QVector<QCPGraphData> points;
        points.reserve(int(curve.times.size()));
        for (std::size_t j = 0; j < curve.times.size() && j < curve.values.size(); ++j) {
            if (!std::isfinite(curve.times[j]))
                continue;
            points.push_back({curve.times[j], curve.values[j] * factor + offset});
            least = std::min(least, curve.times[j]);
            most = std::max(most, curve.times[j]);
        }
        const bool isSorted =
            std::is_sorted(points.begin(), points.end(), qcpLessThanSortKey<QCPGraphData>);
        graph->data()->set(points, isSorted);
        QString name = curve.name;
        if (factor != 1.0)
            name += QStringLiteral(" \u00d7 %1").arg(factor, 0, 'g', 3);
        if (offset != 0.0)
            name += QStringLiteral(" + %1").arg(offset, 0, 'g', 2);
        graph->setName(name);
        if (hasLonePoint(*graph->data()))
            graph->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, 4));
        graph->setLayer(int(i) == inFront_ ? QStringLiteral("front") : QStringLiteral("main"));
    }
    if (least <= most)
        setBounds(QCPRange(least, most));
    legend->setVisible(curves_.size() > 1);
    applyLook();
}

void TracePlot::bringForward(int curve)
{
    if (curve < 0 || curve >= graphCount())
        return;
    inFront_ = curve;
    for (int i = 0; i < graphCount(); ++i)
        graph(i)->setLayer(i == curve ? QStringLiteral("front") : QStringLiteral("main"));
    applyLook();
    replot(rpQueuedReplot);
}

int TracePlot::curveOf(QCPAbstractLegendItem *item) const
{
    auto *entry = qobject_cast<QCPPlottableLegendItem *>(item);
    for (int i = 0; entry && i < graphCount(); ++i) {
        if (graph(i) == entry->plottable())
            return i;
    }
    return -1;
}

void TracePlot::markTime(double time)
{
    shown_->setVisible(std::isfinite(time));
    if (std::isfinite(time)) {
        shown_->point1->setCoords(time, 0.0);
        shown_->point2->setCoords(time, 1.0);
    }
    replot(rpQueuedReplot);
}

void TracePlot::mark(QCPItemRect *item, const std::optional<QCPRange> &range)
{
    item->setVisible(range.has_value());
    if (!range)
        return;
    item->topLeft->setTypeY(QCPItemPosition::ptAxisRectRatio);
    item->bottomRight->setTypeY(QCPItemPosition::ptAxisRectRatio);
    item->topLeft->setCoords(range->lower, 0.0);
    item->bottomRight->setCoords(range->upper, 1.0);
}

void TracePlot::markRanges(const std::optional<QCPRange> &shown,
                           const std::optional<QCPRange> &background)
{
    mark(averaged_, shown);
    mark(background_, background);
    replot(rpQueuedReplot);
}

QCPRange TracePlot::heightOf(const QCPRange &times) const
{
    double least = 0.0;
    double most = 0.0;
    for (int i = 0; i < graphCount(); ++i) {
        bool isFound = false;
        const QCPRange height = graph(i)->getValueRange(isFound, QCP::sdBoth, times);
        if (isFound) {
            least = std::min(least, height.lower);
            most = std::max(most, height.upper);
        }
    }
    if (!(most > least))
        most = least + 1.0;
    const double room = (most - least) * (headroom - 1.0);
    return {least < 0.0 ? least - room : 0.0, most + room};
}

void TracePlot::showAll()
{
    xAxis->setRange(bounds());
    yAxis->setRange(heightOf(bounds()));
    replot(rpQueuedReplot);
}

void TracePlot::fitHeight()
{
    yAxis->setRange(heightOf(xAxis->range()));
    replot(rpQueuedReplot);
}

void TracePlot::zoomHeight(double factor)
{
    yAxis->setRange(yAxis->range().lower, yAxis->range().lower + factor * yAxis->range().size());
    replot(rpQueuedReplot);
}

bool TracePlot::selectsRange(Qt::KeyboardModifiers modifiers) const
{
    return modifiers == Qt::ShiftModifier || modifiers == Qt::ControlModifier;
}

void TracePlot::rangeSelected(const QCPRange &range, Qt::KeyboardModifiers modifiers)
{
    emit rangePicked(range, modifiers.testFlag(Qt::ControlModifier));
}

void TracePlot::mouseMoveEvent(QMouseEvent *event)
{
    RunPlot::mouseMoveEvent(event);
    const bool isInside = axisRect()->rect().contains(event->pos()) && describe_ && graphCount() > 0;
    double nearest = 0.0;
    const QString text =
        isInside ? describe_(xAxis->pixelToCoord(event->pos().x()), &nearest) : QString();
    pointer_->setVisible(!text.isEmpty());
    pointerText_->setVisible(!text.isEmpty());
    pointerText_->setText(text);
    pointer_->point1->setCoords(nearest, 0.0);
    pointer_->point2->setCoords(nearest, 1.0);
    layer(QStringLiteral("pointer"))->replot();
}

void TracePlot::leaveEvent(QEvent *event)
{
    RunPlot::leaveEvent(event);
    pointer_->setVisible(false);
    pointerText_->setVisible(false);
    layer(QStringLiteral("pointer"))->replot();
}

void TracePlot::applyLook()
{
    RunPlot::applyLook();
    const QColor text = palette().color(QPalette::Text);
    for (int i = 0; i < graphCount(); ++i) {
        // A pen wider than 1 takes many times as long to draw.
        graph(i)->setPen(QPen(PlotLook::curveColour(i, palette()), 1.0));
    }
    QColor cover = palette().color(QPalette::Base);
    cover.setAlpha(200);
    pointerText_->setBrush(cover);
    pointer_->setPen(QPen(text, 0, Qt::DotLine));
    shown_->setPen(QPen(palette().color(QPalette::Highlight), 1.0));
    QColor chosen = palette().color(QPalette::Highlight);
    chosen.setAlpha(60);
    averaged_->setPen(Qt::NoPen);
    averaged_->setBrush(chosen);
    QColor faint = text;
    faint.setAlpha(50);
    background_->setPen(Qt::NoPen);
    background_->setBrush(QBrush(faint, Qt::BDiagPattern));
}
