// The map of a GCxGC run, first dimension by second, with the two cuts through the cell that was chosen.
#ifndef MAPPLOT_H
#define MAPPLOT_H

#include "modulationmap.h"
#include "runplot.h"

class MapPlot : public RunPlot
{
    Q_OBJECT

public:
    enum class Scale { Linear, SquareRoot, Logarithmic };

    explicit MapPlot(QWidget *parent = nullptr);

    // Shows a map. `name` says what its values are.
    void setMap(const ModulationMap &map, const QString &name, bool keepsView);
    const ModulationMap &map() const { return map_; }
    // Says in the plot why there is no map; null for nothing to say.
    void setFault(const QString &sentence);

    void setScale(Scale scale);
    // The values at the ends of the gradient; without numbers, those of the map.
    void setValueRange(const QCPRange &values);
    void setAutomaticRange();
    QCPRange valueRange() const; // as shown, in values of the map
    void setInterpolated(bool isInterpolated);

    // Chooses the cell of a time in s: marks it, and shows its cuts where the plot is large enough.
    void choose(double time);

    void showAll() override;

    QString pointerText() const { return pointerText_->text(); }
    const QCPGraph *firstCut() const { return firstCut_; }
    const QCPGraph *secondCut() const { return secondCut_; }

signals:
    void scanPicked(qint32 scan);

protected:
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void fitTexts() override;
    void applyLook() override;

private:
    bool cellAt(const QPointF &place, int *column, int *row) const;
    double scaled(double value) const;
    void fill();
    void fitColours();
    void showCuts(int column, int row);
    void describe(const QPointF &place);

    ModulationMap map_;
    Scale scale_ = Scale::Linear;
    QCPRange range_;
    bool isAutomatic_ = true;
    QCPColorMap *cells_;
    QCPColorScale *colours_;
    QCPAxisRect *firstRect_;
    QCPAxisRect *secondRect_;
    QCPGraph *firstCut_;
    QCPGraph *secondCut_;
    QCPItemStraightLine *across_;
    QCPItemStraightLine *up_;
    QCPItemText *pointerText_;
    QCPItemText *faultText_;
};

#endif // MAPPLOT_H
