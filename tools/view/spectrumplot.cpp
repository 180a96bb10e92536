#include "spectrumplot.h"

#include "plotlook.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>

namespace {

constexpr double percent = 100.0;
constexpr int mostLabels = 40;          // of each spectrum
constexpr std::size_t mostTried = 400;  // peaks that are tried for a label
constexpr double leastLabelled = 0.005; // of the highest peak that is seen
constexpr double pickDistance = 8.0;    // pixels
constexpr double labelGap = 3.0;        // pixels

// Both halves of a mirrored plot count up from the middle, to 100%; the room behind that is the labels'.
class AbsoluteTicker : public QCPAxisTicker
{
public:
    explicit AbsoluteTicker(const SpectrumPlot *plot) : plot_(plot) { }

protected:
    QString getTickLabel(double tick, const QLocale &locale, QChar format, int precision) override
    {
        const bool isBehind = plot_->isMirrored() && std::abs(tick) > percent;
        return isBehind ? QString()
                        : QCPAxisTicker::getTickLabel(std::abs(tick), locale, format, precision);
    }

private:
    const SpectrumPlot *plot_;
};

QString labelOf(double mass, double relative)
{
    QString text = QString::number(mass, 'f', 2);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return QStringLiteral("%1\n%2%").arg(text, QString::number(relative, 'f', relative < 9.95 ? 1 : 0));
}

bool isBefore(const QCPGraphData &point, double mass)
{
    return point.key < mass;
}

} // namespace

SpectrumPlot::SpectrumPlot(QWidget *parent) : RunPlot(parent)
{
    xAxis->setLabel(QStringLiteral("m/z"));
    yAxis->setTicker(QSharedPointer<AbsoluteTicker>::create(this));
    PlotLook::usePowers(yAxis);
    upper_.graph = addGraph();
    lower_.graph = addGraph();
    hostGraph_ = addGraph();
    hostGraph_->setLineStyle(QCPGraph::lsNone);
    connect(xAxis, qOverload<const QCPRange &>(&QCPAxis::rangeChanged), this, &SpectrumPlot::fitHeight);
    connect(this, &QCustomPlot::beforeReplot, this, &SpectrumPlot::placeLabels);
    connect(this, &RunPlot::clickedAt, this, &SpectrumPlot::pickAt);
    applyLook();
    update();
}

void SpectrumPlot::take(const SpectrumData &spectrum, Side *side)
{
    side->isShown = true;
    side->isProfile = spectrum.isProfile;
    side->title = spectrum.failure.isNull() ? spectrum.title : spectrum.failure;
    side->peaks.clear();
    side->base = 0.0;
    for (std::size_t i = 0; i < spectrum.masses.size(); ++i) {
        side->peaks.emplace_back(spectrum.masses[i], spectrum.intensities[i]);
        side->base = std::max(side->base, spectrum.intensities[i]);
    }
    if (!std::is_sorted(side->peaks.begin(), side->peaks.end(), qcpLessThanSortKey<QCPGraphData>))
        std::stable_sort(side->peaks.begin(), side->peaks.end(), qcpLessThanSortKey<QCPGraphData>);
}

void SpectrumPlot::setSpectrum(const SpectrumData &spectrum)
{
    take(spectrum, &upper_);
    update();
}

void SpectrumPlot::setMirrored(const std::optional<SpectrumData> &spectrum)
{
    if (spectrum)
        take(*spectrum, &lower_);
    else
        lower_ = Side{false, false, {}, {}, 0.0, lower_.graph};
    update();
}

void SpectrumPlot::setHost(const HostScan &hostScan)
{
    host_ = hostScan;
    update();
}

void SpectrumPlot::drawSide(Side *side, double sign)
{
    const double factor = isMirrored() ? sign * percent / (side->base > 0.0 ? side->base : 1.0) : 1.0;
    QVector<QCPGraphData> points;
    points.reserve(int(side->peaks.size()));
    for (const QCPGraphData &peak : side->peaks)
        points.push_back({peak.key, peak.value * factor});
    side->graph->data()->set(points, true);
    side->graph->setLineStyle(side->isProfile ? QCPGraph::lsLine : QCPGraph::lsImpulse);
}

void SpectrumPlot::update()
{
    drawSide(&upper_, 1.0);
    drawSide(&lower_, -1.0);
    const double hostFactor = isMirrored() ? percent / (upper_.base > 0.0 ? upper_.base : 1.0) : 1.0;
    QVector<QCPGraphData> hostPoints;
    for (std::size_t i = 0; i < host_.masses.size(); ++i)
        hostPoints.push_back({host_.masses[i], host_.abundances[i] * hostFactor});
    hostGraph_->data()->set(hostPoints);
    QString title = upper_.title;
    if (!host_.masses.empty())
        title += QStringLiteral("; crosses: as the host gets it");
    if (isMirrored())
        title += QStringLiteral("; below: %1").arg(lower_.title);
    setTitle(title);
    yAxis->setLabel(isMirrored() ? QStringLiteral("Relative (%)") : QStringLiteral("Intensity"));
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
    for (const Side *side : {&upper_, &lower_}) {
        if (side->peaks.empty())
            continue;
        least = std::min(least, side->peaks.front().key);
        most = std::max(most, side->peaks.back().key);
    }
    if (least <= most) {
        // A view that is zoomed stays; bounds only widen, so that it can.
        const double room = std::max(1.0, 0.02 * (most - least));
        const QCPRange all(least - room, most + room);
        const bool showsAll = !hasView_ || xAxis->range() == bounds();
        setBounds(hasView_ ? bounds().expanded(all) : all);
        hasView_ = true;
        if (showsAll)
            xAxis->setRange(bounds());
    }
    fitHeight();
    replot(rpQueuedReplot);
}

void SpectrumPlot::showAll()
{
    xAxis->setRange(bounds());
    fitHeight();
    replot(rpQueuedReplot);
}

void SpectrumPlot::fitHeight()
{
    double least = 0.0;
    double most = 0.0;
    for (const Side *side : {&upper_, &lower_}) {
        bool isFound = false;
        const QCPRange height = side->graph->getValueRange(isFound, QCP::sdBoth, xAxis->range());
        if (isFound) {
            least = std::min(least, height.lower);
            most = std::max(most, height.upper);
        }
    }
    if (!(most > least))
        most = 1.0;
    // Room for the labels of the highest peaks, at each end that has some.
    const double label = QFontMetricsF(font()).size(0, labelOf(0.0, 0.0)).height() + 2.0 * labelGap;
    const double room = (least < 0.0 ? 2.0 : 1.0) * label;
    const double inPlot = std::max(axisRect()->height() - room, axisRect()->height() / 4.0);
    const double perPixel = (most - least) / inPlot;
    yAxis->setRange(least < 0.0 ? least - label * perPixel : 0.0, most + label * perPixel);
}

void SpectrumPlot::placeLabels()
{
    fitHeight();
    updateLayout(); // labels go by pixels, and the axis takes more of them for longer numbers
    fitHeight();
    std::vector<QRectF> taken;
    int used = 0;
    labelSide(upper_, 1.0, &taken, &used);
    labelSide(lower_, -1.0, &taken, &used);
    for (std::size_t i = std::size_t(used); i < labels_.size(); ++i)
        labels_[i]->setVisible(false);
    shownLabels_ = used;
}

bool SpectrumPlot::isCrossed(const Side &side, const QRectF &place, double factor) const
{
    const double near = factor > 0.0 ? place.bottom() : place.top(); // the edge next to the peak's tip
    const double height = yAxis->pixelToCoord(near) / factor;
    const double last = xAxis->pixelToCoord(place.right());
    for (auto peak = std::lower_bound(side.peaks.begin(), side.peaks.end(),
                                      xAxis->pixelToCoord(place.left()), isBefore);
         peak != side.peaks.end() && peak->key <= last; ++peak) {
        if (peak->value > height)
            return true;
    }
    return false;
}

void SpectrumPlot::labelSide(const Side &side, double sign, std::vector<QRectF> *taken, int *used)
{
    auto first = std::lower_bound(side.peaks.begin(), side.peaks.end(), xAxis->range().lower, isBefore);
    const auto last = std::lower_bound(first, side.peaks.end(), xAxis->range().upper, isBefore);
    std::vector<const QCPGraphData *> candidates;
    for (auto peak = first; peak != last; ++peak) {
        const bool isTop = (peak == side.peaks.begin() || std::prev(peak)->value <= peak->value)
            && (std::next(peak) == side.peaks.end() || std::next(peak)->value < peak->value);
        if (peak->value > 0.0 && (isTop || !side.isProfile))
            candidates.push_back(&*peak);
    }
    const std::size_t tried = std::min(candidates.size(), mostTried);
    std::partial_sort(
        candidates.begin(), candidates.begin() + std::ptrdiff_t(tried), candidates.end(),
        [](const QCPGraphData *one, const QCPGraphData *other) { return one->value > other->value; });
    candidates.resize(tried);

    const QFontMetricsF metrics(font());
    const double factor = isMirrored() ? sign * percent / (side.base > 0.0 ? side.base : 1.0) : 1.0;
    const QRectF inside(axisRect()->rect());
    int placed = 0;
    for (const QCPGraphData *peak : candidates) {
        if (placed == mostLabels || peak->value < leastLabelled * candidates.front()->value)
            break;
        const QString text = labelOf(peak->key, percent * peak->value / side.base);
        const QSizeF size = metrics.size(0, text);
        const double tip = yAxis->coordToPixel(peak->value * factor);
        const double top = sign > 0.0 ? tip - labelGap - size.height() : tip + labelGap;
        const auto isFree = [&](const QRectF &place) {
            const QRectF room = place.adjusted(-labelGap, -1.0, labelGap, 1.0);
            return inside.contains(place)
                && std::none_of(taken->begin(), taken->end(),
                                [&](const QRectF &other) { return other.intersects(room); })
                && !isCrossed(side, place, factor);
        };
        // Above the peak, or else to its left or right, beside a higher one.
        const double middle = xAxis->coordToPixel(peak->key);
        QRectF place;
        for (const double left : {middle - size.width() / 2.0, middle - size.width(), middle}) {
            place = QRectF(QPointF(left, top), size);
            if (isFree(place))
                break;
            place = QRectF();
        }
        if (place.isNull())
            continue;
        if (std::size_t(*used) == labels_.size()) {
            labels_.push_back(new QCPItemText(this));
            labels_.back()->setSelectable(false);
            labels_.back()->setPadding(QMargins());
        }
        QCPItemText *label = labels_[std::size_t(*used)];
        label->setVisible(true);
        label->setText(text);
        label->setFont(font());
        label->setColor(palette().color(QPalette::Text));
        label->setPositionAlignment(Qt::AlignHCenter | Qt::AlignTop);
        label->position->setType(QCPItemPosition::ptAbsolute);
        label->position->setCoords(place.center().x(), place.top());
        taken->push_back(place);
        ++*used;
        ++placed;
    }
}

QStringList SpectrumPlot::peakLabels() const
{
    std::vector<const QCPItemText *> shown(labels_.begin(), labels_.begin() + shownLabels_);
    std::sort(shown.begin(), shown.end(), [](const QCPItemText *one, const QCPItemText *other) {
        return one->position->coords().x() < other->position->coords().x();
    });
    QStringList texts;
    for (const QCPItemText *label : shown)
        texts += label->text().replace(QLatin1Char('\n'), QLatin1Char(' '));
    return texts;
}

void SpectrumPlot::pickAt(const QPointF &place)
{
    const Side &side = place.y() < 0.0 && isMirrored() ? lower_ : upper_;
    const double at = xAxis->coordToPixel(place.x());
    const QCPGraphData *best = nullptr;
    const double reach = std::abs(xAxis->pixelToCoord(at + pickDistance) - place.x());
    for (auto peak = std::lower_bound(side.peaks.begin(), side.peaks.end(), place.x() - reach, isBefore);
         peak != side.peaks.end() && peak->key <= place.x() + reach; ++peak) {
        if (!best || peak->value > best->value)
            best = &*peak;
    }
    if (best)
        emit massPicked(best->key);
}

void SpectrumPlot::applyLook()
{
    RunPlot::applyLook();
    upper_.graph->setPen(QPen(PlotLook::curveColour(0, palette()), 1.0));
    lower_.graph->setPen(QPen(PlotLook::curveColour(1, palette()), 1.0));
    hostGraph_->setScatterStyle(QCPScatterStyle(
        QCPScatterStyle::ssCross, QPen(PlotLook::curveColour(1, palette()), 1.5), Qt::NoBrush, 7));
    legend->setVisible(false);
}
