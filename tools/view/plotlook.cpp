#include "plotlook.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

struct CurveColour {
    QRgb onLight;
    QRgb onDark;
};

constexpr CurveColour curveColours[] = {
    // clang-format off
    {0xff1f5fa8, 0xff7ab8ff}, // blue
    {0xffd55e00, 0xffff9d57}, // vermilion
    {0xff00825f, 0xff4fd6ae}, // green
    {0xffb0498a, 0xfff09bd0}, // purple
    {0xff9a7400, 0xffe9c64b}, // ochre
    {0xff2e9bcf, 0xff9fdcff}, // sky
    {0xff7a4a2b, 0xffd0a384}, // brown
    {0xff5b5b5b, 0xffc0c0c0}, // grey
    // clang-format on
};

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < 128;
}

QColor mixed(const QColor &one, const QColor &other, double part)
{
    const auto mix = [part](int a, int b) { return int(a + (b - a) * part); };
    return QColor(mix(one.red(), other.red()), mix(one.green(), other.green()),
                  mix(one.blue(), other.blue()));
}

} // namespace

namespace PlotLook {

QColor curveColour(int number, const QPalette &palette)
{
    const CurveColour &colour = curveColours[std::size_t(number) % std::size(curveColours)];
    return QColor(isDark(palette) ? colour.onDark : colour.onLight);
}

void apply(QCustomPlot *plot)
{
    const QPalette palette = plot->palette();
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const QColor faint = mixed(base, text, 0.12);
    plot->setBackground(base);
    for (QCPAxisRect *rect : plot->axisRects()) {
        for (QCPAxis *axis : rect->axes()) {
            const QPen pen(mixed(base, text, 0.6));
            axis->setBasePen(pen);
            axis->setTickPen(pen);
            axis->setSubTickPen(pen);
            axis->setTickLabelColor(text);
            axis->setLabelColor(text);
            axis->setTickLabelFont(plot->font());
            axis->setLabelFont(plot->font());
            axis->setSelectedTickLabelFont(plot->font());
            axis->setSelectedLabelFont(plot->font());
            axis->grid()->setPen(QPen(faint, 0, Qt::DotLine));
            axis->grid()->setZeroLinePen(QPen(mixed(base, text, 0.35)));
        }
    }
    if (plot->legend) {
        plot->legend->setBrush(base);
        plot->legend->setBorderPen(faint);
        plot->legend->setTextColor(text);
        plot->legend->setSelectedTextColor(palette.color(QPalette::Highlight));
        plot->legend->setFont(plot->font());
        QFont chosen = plot->font();
        chosen.setBold(true);
        plot->legend->setSelectedFont(chosen);
        plot->legend->setSelectedBorderPen(faint);
        plot->legend->setSelectedIconBorderPen(QPen(Qt::NoPen));
    }
    for (int i = 0; i < plot->itemCount(); ++i) {
        if (auto *item = qobject_cast<QCPItemText *>(plot->item(i))) {
            item->setColor(text);
            item->setSelectedColor(text);
        }
    }
}

void usePowers(QCPAxis *axis)
{
    axis->setNumberFormat(QStringLiteral("gbc"));
    axis->setNumberPrecision(4);
}

void fitTicks(QCPAxis *axis)
{
    constexpr int across = 65; // pixels that a label takes with the room beside it
    constexpr int up = 30;
    constexpr int most = 8;
    const bool isAcross = axis->orientation() == Qt::Horizontal;
    const QSize size = axis->axisRect()->size();
    axis->ticker()->setTickCount(
        std::clamp(isAcross ? size.width() / across : size.height() / up, 1, most));
}

void makeRemark(QCPItemText *item, Qt::Alignment corner)
{
    const bool isRight = corner.testFlag(Qt::AlignRight);
    item->position->setType(QCPItemPosition::ptAxisRectRatio);
    item->position->setCoords(isRight ? 0.995 : 0.005, corner.testFlag(Qt::AlignBottom) ? 0.98 : 0.01);
    item->setPositionAlignment(corner);
    item->setTextAlignment(corner & Qt::AlignHorizontal_Mask);
    item->setSelectable(false);
    item->setClipToAxisRect(false);
    item->setText(QString());
}

} // namespace PlotLook
