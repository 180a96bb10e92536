// What the plots of the window have in common: how mouse and wheel move them, and the look.
//
// Wheel: zooms along the horizontal axis, over the vertical one along that. Drag: moves. Drag with the
// right button: zooms into the box. Double click: shows all. A click without any of this is clickedAt.
#ifndef RUNPLOT_H
#define RUNPLOT_H

#include <qcustomplot.h>

class RunPlot : public QCustomPlot
{
    Q_OBJECT

public:
    explicit RunPlot(QWidget *parent = nullptr);

    // What the plot shows, above it; broken behind semicolons where it is too long for the width, and cut
    // at last.
    void setTitle(const QString &title);
    QString title() const { return title_; }

    // Shows all that there is. The base class has nothing to show.
    virtual void showAll();

    // Zoom along the horizontal axis about its middle, and move along it by a part of what is seen.
    void zoom(double factor);
    void move(double part);

signals:
    void clickedAt(const QPointF &place); // in the axes' numbers

protected:
    // Drags that select a range rather than move: what the modifiers mean there. None by default.
    virtual bool selectsRange(Qt::KeyboardModifiers modifiers) const;
    virtual void rangeSelected(const QCPRange &range, Qt::KeyboardModifiers modifiers);

    // The bounds that a view doesn't leave: along the horizontal axis, and the vertical one if any.
    void setBounds(const QCPRange &bounds, const QCPRange &heights = {});
    const QCPRange &bounds() const { return bounds_; }
    const QCPRange &heights() const { return heights_; }

    // The axes along which a drag and the wheel act: the horizontal one by default.
    void setDirections(Qt::Orientations directions);

    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void changeEvent(QEvent *event) override;

    // Cuts the title and spaces the ticks by the room that there is.
    virtual void fitTexts();

    // Gives what the class draws the palette's colours.
    virtual void applyLook();

private:
    void fitTitle();
    void keepInBounds(QCPAxis *axis, const QCPRange &bounds, const QCPRange &range);

    QString title_;
    QCPTextElement *titleElement_;
    QCPRange bounds_{0.0, 1.0};
    QCPRange heights_{0.0, 0.0};
    Qt::Orientations directions_ = Qt::Horizontal;
    QPoint pressedAt_;
    bool isClick_ = false;
};

#endif // RUNPLOT_H
