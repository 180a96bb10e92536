// How plots look: the colours of the window's palette, so that they are light or dark as the window is.
#ifndef PLOTLOOK_H
#define PLOTLOOK_H

#include <QColor>

class QCPAxis;
class QCPItemText;
class QCPLegend;
class QCustomPlot;
class QPalette;

namespace PlotLook {

// Returns the colour of the curve with that number, from 0: eight that people with any colour vision tell
// apart, then again from the first.
QColor curveColour(int number, const QPalette &palette);

// Gives the plot's background, axes, grids and legend the colours of its palette.
void apply(QCustomPlot *plot);

// Has a plot's axis write large numbers as 1.5e+06 becomes "1.5·10⁶".
void usePowers(QCPAxis *axis);

// Has a plot's axis label as many ticks as its length has room for.
void fitTicks(QCPAxis *axis);

// Makes an item a remark in a corner of the plot, which doesn't move with the axes.
void makeRemark(QCPItemText *item, Qt::Alignment corner);

} // namespace PlotLook

#endif // PLOTLOOK_H
