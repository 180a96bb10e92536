#include "runplot.h"

#include "plotlook.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int leastDrag = 4; // pixels; less is a click

} // namespace

RunPlot::RunPlot(QWidget *parent) : QCustomPlot(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    xAxis->axisRect()->setRangeDrag(Qt::Horizontal);
    xAxis->axisRect()->setRangeZoom(Qt::Horizontal);
    setMinimumSize(160, 150);
    titleElement_ = new QCPTextElement(this, QString(), font());
    titleElement_->setMargins(QMargins(0, 3, 0, 0));
    plotLayout()->insertRow(0);
    plotLayout()->addElement(0, 0, titleElement_);
    plotLayout()->setRowSpacing(0);
    setSelectionRect(new QCPSelectionRect(this));
    connect(selectionRect(), &QCPSelectionRect::accepted, this,
            [this](const QRect &box, const QMouseEvent *event) {
                if (selectionRectMode() != QCP::srmCustom || box.width() < leastDrag)
                    return;
                const double from = xAxis->pixelToCoord(box.left());
                const double to = xAxis->pixelToCoord(box.right());
                rangeSelected(QCPRange(from, to), event->modifiers());
            });
    connect(xAxis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged), this,
            [this](const QCPRange &range) { keepInBounds(xAxis, bounds_, range); });
    connect(yAxis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged), this,
            [this](const QCPRange &range) { keepInBounds(yAxis, heights_, range); });
    connect(this, &QCustomPlot::beforeReplot, this, &RunPlot::fitTexts);
    applyLook();
}

void RunPlot::setTitle(const QString &title)
{
    title_ = title;
    replot(rpQueuedReplot);
}

void RunPlot::fitTexts()
{
    updateLayout(); // to know what room there is
    fitTitle();
    for (QCPAxisRect *rect : axisRects()) {
        for (QCPAxis *axis : rect->axes())
            PlotLook::fitTicks(axis);
    }
}

void RunPlot::fitTitle()
{
    constexpr int heightOfLine = 75; // pixels of the plot for each line that its title may have
    const QFontMetrics metrics(titleElement_->font());
    const int width = titleElement_->rect().width();
    const int most = std::max(height() / heightOfLine, 1);
    QStringList lines;
    for (const QString &part : title_.simplified().split(QStringLiteral("; "))) {
        const QString joined = lines.isEmpty() ? part : lines.last() + QStringLiteral("; ") + part;
        if (lines.isEmpty() || (lines.size() < most && metrics.horizontalAdvance(joined) > width))
            lines += part;
        else
            lines.last() = joined;
    }
    for (QString &line : lines)
        line = metrics.elidedText(line, Qt::ElideRight, width);
    titleElement_->setText(lines.join(QLatin1Char('\n')));
    titleElement_->setMinimumSize(1, metrics.lineSpacing() * lines.size());
    updateLayout();
}

void RunPlot::showAll()
{
}

bool RunPlot::selectsRange(Qt::KeyboardModifiers) const
{
    return false;
}

void RunPlot::rangeSelected(const QCPRange &, Qt::KeyboardModifiers)
{
}

void RunPlot::zoom(double factor)
{
    xAxis->scaleRange(factor);
    replot(rpQueuedReplot);
}

void RunPlot::move(double part)
{
    xAxis->moveRange(part * xAxis->range().size());
    replot(rpQueuedReplot);
}

void RunPlot::setDirections(Qt::Orientations directions)
{
    directions_ = directions;
    xAxis->axisRect()->setRangeDrag(directions);
    xAxis->axisRect()->setRangeZoom(directions);
}

void RunPlot::setBounds(const QCPRange &bounds, const QCPRange &heights)
{
    heights_ = heights;
    bounds_ = bounds;
    if (!(bounds_.size() > 0.0))
        bounds_ = QCPRange(bounds.lower - 0.5, bounds.lower + 0.5);
}

void RunPlot::keepInBounds(QCPAxis *axis, const QCPRange &bounds, const QCPRange &range)
{
    if (!(bounds.size() > 0.0))
        return;
    const QCPRange kept = range.bounded(bounds.lower, bounds.upper);
    if (kept != range)
        axis->setRange(kept);
}

void RunPlot::mousePressEvent(QMouseEvent *event)
{
    pressedAt_ = event->pos();
    isClick_ = event->button() == Qt::LeftButton;
    if (event->button() == Qt::RightButton)
        setSelectionRectMode(QCP::srmZoom);
    else if (event->button() == Qt::LeftButton && selectsRange(event->modifiers()))
        setSelectionRectMode(QCP::srmCustom);
    else
        setSelectionRectMode(QCP::srmNone);
    QCustomPlot::mousePressEvent(event);
}

void RunPlot::mouseReleaseEvent(QMouseEvent *event)
{
    const bool wasClick = isClick_ && (event->pos() - pressedAt_).manhattanLength() < leastDrag
        && event->modifiers() == Qt::NoModifier
        && !(legend->visible() && legend->outerRect().contains(event->pos()));
    isClick_ = false;
    QCustomPlot::mouseReleaseEvent(event);
    if (wasClick && xAxis->axisRect()->rect().contains(event->pos()))
        emit clickedAt(
            QPointF(xAxis->pixelToCoord(event->pos().x()), yAxis->pixelToCoord(event->pos().y())));
}

void RunPlot::mouseDoubleClickEvent(QMouseEvent *event)
{
    QCustomPlot::mouseDoubleClickEvent(event);
    isClick_ = false;
    if (event->button() == Qt::LeftButton)
        showAll();
}

void RunPlot::wheelEvent(QWheelEvent *event)
{
    const bool isAtValues = event->position().x() < xAxis->axisRect()->left();
    xAxis->axisRect()->setRangeZoom(isAtValues ? Qt::Vertical : directions_);
    QCustomPlot::wheelEvent(event);
    event->accept();
}

void RunPlot::changeEvent(QEvent *event)
{
    QCustomPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyLook();
        replot(rpQueuedReplot);
    }
}

void RunPlot::applyLook()
{
    PlotLook::apply(this);
    titleElement_->setFont(font());
    titleElement_->setTextColor(palette().color(QPalette::Text));
    const QColor chosen = palette().color(QPalette::Highlight);
    QColor filled = chosen;
    filled.setAlpha(50);
    selectionRect()->setPen(chosen);
    selectionRect()->setBrush(filled);
}
