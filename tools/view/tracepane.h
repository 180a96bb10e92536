// The trace of a run with what it takes to set it: what it is made of, masses, and a place to go to.
#ifndef TRACEPANE_H
#define TRACEPANE_H

#include "rundata.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class TracePlot;

class TracePane : public QWidget
{
    Q_OBJECT

public:
    explicit TracePane(QWidget *parent = nullptr);

    TracePlot *plot() const { return plot_; }

    void setSources(const std::vector<TraceSource> &sources, TraceSource shown);

    // The text in the field of masses. Setting it emits nothing.
    QString masses() const;
    void setMasses(const QString &text);
    void setMassesVisible(bool isVisible);

    void focusMasses();
    void focusPlace();

signals:
    void sourceChosen(TraceSource source);
    void massesTyped(const QString &text);
    void placeTyped(const QString &text);

private:
    QComboBox *sources_;
    QLineEdit *masses_;
    QLineEdit *place_;
    TracePlot *plot_;
};

#endif // TRACEPANE_H
