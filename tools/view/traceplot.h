// Totals and extracted traces over time.
#ifndef TRACEPLOT_H
#define TRACEPLOT_H

#include "runplot.h"

#include <optional>
#include <vector>

// A curve of the plot. Points whose number isn't finite are gaps.
struct TraceCurve {
    QString name;              // in the legend
    std::vector<double> times; // one without a number is left out
    std::vector<double> values;
};

class TracePlot : public RunPlot
{
    Q_OBJECT

public:
    explicit TracePlot(QWidget *parent = nullptr);

    void setLabels(const QString &time, const QString &value);

    // Shows these curves, the first one in front. The view stays, if `keepsView`.
    void setCurves(const std::vector<TraceCurve> &curves, bool keepsView);
    const std::vector<TraceCurve> &curves() const { return curves_; }
    // Other runs' curves: each a part of the height above the one before it, and as high as the first
    // one. The legend says by how much.
    void setStacking(bool isOffset, bool isNormalised);

    // Brings the curve with that number forward.
    void bringForward(int curve);
    int inFront() const { return inFront_; }

    // Marks the scan that is shown, if that is a number, or the ranges of an average.
    void markTime(double time);
    void markRanges(const std::optional<QCPRange> &shown, const std::optional<QCPRange> &background);

    // What the line at the pointer says of a time.
    using Describe = std::function<QString(double time, double *nearest)>;
    void setDescription(Describe describe) { describe_ = std::move(describe); }

    void showAll() override;
    void fitHeight();               // to what is seen
    void zoomHeight(double factor); // from zero up

    QString pointerText() const { return pointerText_->text(); }

signals:
    void timePicked(double time);
    void rangePicked(const QCPRange &times, bool isBackground);
    void curveRemoved(int curve); // asked for by a double click on it in the legend

protected:
    bool selectsRange(Qt::KeyboardModifiers modifiers) const override;
    void rangeSelected(const QCPRange &range, Qt::KeyboardModifiers modifiers) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void applyLook() override;

private:
    void fill();
    int curveOf(QCPAbstractLegendItem *item) const;
    QCPRange heightOf(const QCPRange &times) const;
    void mark(QCPItemRect *item, const std::optional<QCPRange> &range);

    std::vector<TraceCurve> curves_;
    int inFront_ = 0;
    bool isOffset_ = false;
    bool isNormalised_ = false;
    Describe describe_;
    QCPItemStraightLine *pointer_;
    QCPItemText *pointerText_;
    QCPItemStraightLine *shown_;
    QCPItemRect *averaged_;
    QCPItemRect *background_;
};

#endif // TRACEPLOT_H
