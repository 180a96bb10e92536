#include "mapplot.h"

#include "plotlook.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr double secondsOfMinute = 60.0;
constexpr double logarithmicDepth = 1e4; // how far below the largest value an automatic range reaches
constexpr int cutSize = 64;              // pixels
constexpr int cutGap = 6;                // pixels between a cut and the map
constexpr int leastHeight = 190;
constexpr QSize sizeWithCuts(420, 260); // of a plot in which the cuts leave room for the map

// Even steps of lightness, which people with any colour vision see in the same order.
constexpr QRgb evenColours[] = {
    0xff440154, 0xff482475, 0xff414487, 0xff355f8d, 0xff2a788e, 0xff21918c,
    0xff22a884, 0xff44bf70, 0xff7ad151, 0xffbddf26, 0xfffde725,
};

QCPColorGradient evenGradient()
{
    QMap<double, QColor> stops;
    for (std::size_t i = 0; i < std::size(evenColours); ++i)
        stops.insert(double(i) / double(std::size(evenColours) - 1), QColor(evenColours[i]));
    QCPColorGradient gradient;
    gradient.setColorStops(stops);
    gradient.setColorInterpolation(QCPColorGradient::ciRGB);
    gradient.setNanHandling(QCPColorGradient::nhTransparent);
    return gradient;
}

// Ticks at square roots that are labelled with their squares.
class SquareTicker : public QCPAxisTicker
{
protected:
    QString getTickLabel(double tick, const QLocale &locale, QChar format, int precision) override
    {
        return QCPAxisTicker::getTickLabel(tick * tick, locale, format, precision);
    }
};

} // namespace

MapPlot::MapPlot(QWidget *parent)
    : RunPlot(parent), cells_(new QCPColorMap(xAxis, yAxis)), colours_(new QCPColorScale(this)),
      firstRect_(new QCPAxisRect(this)), secondRect_(new QCPAxisRect(this)),
      across_(new QCPItemStraightLine(this)), up_(new QCPItemStraightLine(this)),
      pointerText_(new QCPItemText(this)), faultText_(new QCPItemText(this))
{
    setDirections(Qt::Horizontal | Qt::Vertical);
    setMinimumHeight(leastHeight);
    xAxis->setLabel(QStringLiteral("First dimension (min)"));
    yAxis->setLabel(QStringLiteral("Second dimension (s)"));

    // Title, first cut, map; the second cut and the gradient beside the map.
    QCPAxisRect *mapRect = xAxis->axisRect();
    plotLayout()->insertRow(1);
    plotLayout()->addElement(1, 0, firstRect_);
    plotLayout()->addElement(2, 1, secondRect_);
    plotLayout()->addElement(2, 2, colours_);
    // Beside the map, the cuts do without labels and margins of their own.
    firstRect_->setAutoMargins(QCP::msLeft | QCP::msRight);
    firstRect_->setMargins(QMargins(0, cutGap, 0, cutGap));
    secondRect_->setAutoMargins(QCP::msTop | QCP::msBottom);
    secondRect_->setMargins(QMargins(cutGap, 0, cutGap, 0));
    plotLayout()->setColumnSpacing(0);
    auto *columns = new QCPMarginGroup(this);
    auto *rows = new QCPMarginGroup(this);
    mapRect->setMarginGroup(QCP::msLeft | QCP::msRight, columns);
    firstRect_->setMarginGroup(QCP::msLeft | QCP::msRight, columns);
    for (QCPLayoutElement *element :
         {static_cast<QCPLayoutElement *>(mapRect), static_cast<QCPLayoutElement *>(secondRect_),
          static_cast<QCPLayoutElement *>(colours_)})
        element->setMarginGroup(QCP::msTop | QCP::msBottom, rows);
    firstRect_->axis(QCPAxis::atBottom)->setTickLabels(false);
    PlotLook::usePowers(firstRect_->axis(QCPAxis::atLeft));
    secondRect_->axis(QCPAxis::atLeft)->setTickLabels(false);
    secondRect_->axis(QCPAxis::atBottom)->setTicks(false); // those of the first cut hold
    firstRect_->setRangeDrag({});
    firstRect_->setRangeZoom({});
    secondRect_->setRangeDrag({});
    secondRect_->setRangeZoom({});
    firstCut_ = addGraph(firstRect_->axis(QCPAxis::atBottom), firstRect_->axis(QCPAxis::atLeft));
    // Its values go to the right, so its keys are on the vertical axis.
    secondCut_ = addGraph(secondRect_->axis(QCPAxis::atLeft), secondRect_->axis(QCPAxis::atBottom));
    connect(xAxis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged),
            firstRect_->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::setRange));
    connect(yAxis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged),
            secondRect_->axis(QCPAxis::atLeft), qOverload<const QCPRange &>(&QCPAxis::setRange));

    colours_->setType(QCPAxis::atRight);
    colours_->setRangeDrag(false);
    colours_->setRangeZoom(false);
    cells_->setColorScale(colours_);
    cells_->setGradient(evenGradient());
    cells_->setInterpolate(false);
    PlotLook::makeRemark(pointerText_, Qt::AlignLeft | Qt::AlignTop);
    pointerText_->setVisible(false);
    PlotLook::makeRemark(faultText_, Qt::AlignHCenter | Qt::AlignVCenter);
    faultText_->position->setCoords(0.5, 0.5);
    faultText_->setVisible(false);
    for (QCPItemStraightLine *line : {across_, up_}) {
        line->setSelectable(false);
        line->setVisible(false);
    }
    setMouseTracking(true);
    connect(this, &RunPlot::clickedAt, this, [this](const QPointF &place) {
        int column = 0;
        int row = 0;
        if (cellAt(place, &column, &row) && map_.scan(column, row) != -1)
            emit scanPicked(map_.scan(column, row));
    });
    applyLook();
}

void MapPlot::setMap(const ModulationMap &map, const QString &name, bool keepsView)
{
    map_ = map;
    colours_->setLabel(name);
    firstCut_->data()->clear();
    secondCut_->data()->clear();
    across_->setVisible(false);
    up_->setVisible(false);
    fill();
    const double from = map_.start / secondsOfMinute;
    setBounds(QCPRange(from, from + map_.columns * map_.length / secondsOfMinute),
              QCPRange(0.0, map_.length));
    if (!keepsView)
        showAll();
    replot(rpQueuedReplot);
}

void MapPlot::setFault(const QString &sentence)
{
    faultText_->setText(sentence);
    faultText_->setVisible(!sentence.isEmpty());
    cells_->setVisible(sentence.isEmpty());
    replot(rpQueuedReplot);
}

double MapPlot::scaled(double value) const
{
    return scale_ == Scale::SquareRoot ? std::sqrt(std::fmax(value, 0.0)) : value;
}

void MapPlot::fill()
{
    const int columns = std::max(map_.columns, 1);
    const int rows = std::max(map_.rows, 1);
    auto *filled = new QCPColorMapData(columns, rows, QCPRange(0.0, 1.0), QCPRange(0.0, 1.0));
    if (!map_.isEmpty()) {
        // The data's ranges go from the middle of the first cell to that of the last one.
        const double half = 0.5;
        filled->setRange(QCPRange((map_.start + half * map_.length) / secondsOfMinute,
                                  (map_.start + (columns - half) * map_.length) / secondsOfMinute),
                         QCPRange(half * map_.step, (rows - half) * map_.step));
    }
    for (int column = 0; column < map_.columns; ++column) {
        for (int row = 0; row < map_.rows; ++row) {
            const double value = map_.value(column, row);
            filled->setCell(column, row, std::isnan(value) ? value : scaled(value));
        }
    }
    cells_->setData(filled, false); // takes it over
    fitColours();
}

void MapPlot::fitColours()
{
    if (isAutomatic_) {
        double least = std::numeric_limits<double>::infinity();
        double most = -least;
        for (const double value : map_.values) {
            if (std::isfinite(value)) {
                least = std::min(least, value);
                most = std::max(most, value);
            }
        }
        if (!(most > least)) {
            least = 0.0;
            most = std::max(most, 1.0);
        }
        range_ = QCPRange(least, most);
        if (scale_ == Scale::Logarithmic)
            range_.lower = std::max(least, most / logarithmicDepth);
    }
    const bool isLogarithmic = scale_ == Scale::Logarithmic && range_.upper > 0.0;
    colours_->setDataScaleType(isLogarithmic ? QCPAxis::stLogarithmic : QCPAxis::stLinear);
    QSharedPointer<QCPAxisTicker> ticker(new QCPAxisTicker);
    if (isLogarithmic)
        ticker.reset(new QCPAxisTickerLog);
    else if (scale_ == Scale::SquareRoot)
        ticker.reset(new SquareTicker);
    colours_->axis()->setTicker(ticker);
    PlotLook::usePowers(colours_->axis());
    const double lower = isLogarithmic ? std::max(range_.lower, range_.upper / 1e12) : range_.lower;
    colours_->setDataRange(QCPRange(scaled(lower), scaled(range_.upper)));
    replot(rpQueuedReplot);
}

void MapPlot::setScale(Scale scale)
{
    scale_ = scale;
    fill();
}

void MapPlot::setValueRange(const QCPRange &values)
{
    isAutomatic_ = false;
    range_ = values;
    fitColours();
}

void MapPlot::setAutomaticRange()
{
    isAutomatic_ = true;
    fitColours();
}

QCPRange MapPlot::valueRange() const
{
    return range_;
}

void MapPlot::setInterpolated(bool isInterpolated)
{
    cells_->setInterpolate(isInterpolated);
    replot(rpQueuedReplot);
}

void MapPlot::resizeEvent(QResizeEvent *event)
{
    const auto show = [](QCPAxisRect *rect, bool isShown, Qt::Orientation along) {
        const int size = isShown ? cutSize : 1;
        rect->setVisible(isShown);
        for (const QCPAxis::AxisType type : {QCPAxis::atLeft, QCPAxis::atBottom})
            rect->axis(type)->setVisible(isShown);
        if (along == Qt::Horizontal) {
            rect->setMinimumSize(10, size);
            rect->setMaximumSize(QWIDGETSIZE_MAX, size);
        } else {
            rect->setMinimumSize(size, 10);
            rect->setMaximumSize(size, QWIDGETSIZE_MAX);
        }
    };
    show(firstRect_, event->size().height() >= sizeWithCuts.height(), Qt::Horizontal);
    show(secondRect_, event->size().width() >= sizeWithCuts.width(), Qt::Vertical);
    firstCut_->setVisible(firstRect_->visible());
    secondCut_->setVisible(secondRect_->visible());
    RunPlot::resizeEvent(event);
}

bool MapPlot::cellAt(const QPointF &place, int *column, int *row) const
{
    if (map_.isEmpty())
        return false;
    const double across = std::floor((place.x() * secondsOfMinute - map_.start) / map_.length);
    const double up = std::floor(place.y() / map_.step);
    if (!(across >= 0.0 && across < map_.columns && up >= 0.0 && up < map_.rows))
        return false;
    *column = int(across);
    *row = int(up);
    return true;
}

void MapPlot::choose(double time)
{
    if (map_.isEmpty() || !std::isfinite(time))
        return;
    const int column = map_.columnOf(time);
    if (column < 0 || column >= map_.columns)
        return;
    showCuts(column, map_.rowOf(time));
    replot(rpQueuedReplot);
}

void MapPlot::showCuts(int column, int row)
{
    const double half = 0.5;
    QVector<QCPGraphData> first;
    for (int i = 0; i < map_.columns; ++i)
        first.push_back({(map_.start + (i + half) * map_.length) / secondsOfMinute, map_.value(i, row)});
    QVector<QCPGraphData> second;
    for (int i = 0; i < map_.rows; ++i)
        second.push_back({(i + half) * map_.step, map_.value(column, i)});
    const double x = first[column].key;
    const double y = second[row].key;
    firstCut_->data()->set(first, true);
    secondCut_->data()->set(second, true);
    firstCut_->rescaleValueAxis();
    secondCut_->rescaleValueAxis();
    up_->point1->setCoords(x, 0.0);
    up_->point2->setCoords(x, 1.0);
    across_->point1->setCoords(0.0, y);
    across_->point2->setCoords(1.0, y);
    up_->setVisible(true);
    across_->setVisible(true);
}

void MapPlot::describe(const QPointF &place)
{
    int column = 0;
    int row = 0;
    QString text;
    if (cellAt(place, &column, &row)) {
        const double half = 0.5;
        text = QStringLiteral("%1 min   %2 s")
                   .arg((map_.start + (column + half) * map_.length) / secondsOfMinute, 0, 'f', 3)
                   .arg((row + half) * map_.step, 0, 'f', 3);
        if (map_.scan(column, row) == -1)
            text += QStringLiteral("   no scan");
        else
            text += QStringLiteral("   scan %1   %2")
                        .arg(map_.scan(column, row))
                        .arg(map_.value(column, row), 0, 'g', 7);
    }
    pointerText_->setText(text);
    pointerText_->setVisible(!text.isEmpty());
}

void MapPlot::mouseMoveEvent(QMouseEvent *event)
{
    RunPlot::mouseMoveEvent(event);
    describe({xAxis->pixelToCoord(event->pos().x()), yAxis->pixelToCoord(event->pos().y())});
    replot(rpQueuedReplot);
}

void MapPlot::leaveEvent(QEvent *event)
{
    RunPlot::leaveEvent(event);
    pointerText_->setVisible(false);
    replot(rpQueuedReplot);
}

void MapPlot::showAll()
{
    xAxis->setRange(bounds());
    yAxis->setRange(heights());
    replot(rpQueuedReplot);
}

void MapPlot::fitTexts()
{
    RunPlot::fitTexts();
    PlotLook::fitTicks(colours_->axis());
}

void MapPlot::applyLook()
{
    RunPlot::applyLook();
    const QPalette colours = palette();
    firstCut_->setPen(QPen(PlotLook::curveColour(0, colours), 1.0));
    secondCut_->setPen(QPen(PlotLook::curveColour(0, colours), 1.0));
    // On the map itself, whatever the palette.
    for (QCPItemStraightLine *line : {across_, up_})
        line->setPen(QPen(QColor(255, 255, 255, 160), 0, Qt::DashLine));
    faultText_->setBrush(colours.color(QPalette::Base));
    pointerText_->setColor(Qt::white);
    pointerText_->setBrush(QColor(0, 0, 0, 140));
    pointerText_->setPadding(QMargins(4, 1, 4, 1));
    colours_->axis()->setTickLabelColor(colours.color(QPalette::Text));
    colours_->axis()->setLabelColor(colours.color(QPalette::Text));
    colours_->axis()->setTickLabelFont(font());
    colours_->axis()->setLabelFont(font());
    legend->setVisible(false);
}
