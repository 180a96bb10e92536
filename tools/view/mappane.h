// The map of a GCxGC run with what it takes to set it: length of the modulation, values, scale, range,
// shift.
#ifndef MAPPANE_H
#define MAPPANE_H

#include "rundata.h"

#include <QWidget>

class MapPlot;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;

class MapPane : public QWidget
{
    Q_OBJECT

public:
    explicit MapPane(QWidget *parent = nullptr);

    MapPlot *plot() const { return plot_; }

    // The run's scans: times in s, and what can be shown of them.
    struct Values {
        QString name;
        std::vector<double> numbers; // of each scan; empty until known
    };
    void setTimes(const std::vector<double> &seconds);
    void setValues(const std::vector<Values> &values);

    // The length in s: what was guessed of it, and what is set. 0 is none.
    void setGuess(const MsModulation &guess);
    void setLength(double seconds);
    double length() const;

    // Marks the time of the scan that is shown, in s.
    void choose(double seconds);

    // What stands in place of a map; null where there is one.
    QString fault() const { return fault_; }

    QComboBox *values() const { return shown_; }
    QComboBox *scale() const { return scale_; }
    QDoubleSpinBox *shift() const { return shift_; }
    QLabel *remark() const { return remark_; }

private:
    void fold(bool keepsView);
    void setRange();
    void showRemark();

    MapPlot *plot_;
    QDoubleSpinBox *length_;
    QDoubleSpinBox *shift_;
    QComboBox *shown_;
    QComboBox *scale_;
    QLineEdit *from_;
    QLineEdit *to_;
    QCheckBox *interpolates_;
    QLabel *remark_;
    MsModulation guess_;
    std::vector<double> times_;
    std::vector<Values> choices_;
    double chosen_;
    QString fault_;
    QString rangeFault_;
};

#endif // MAPPANE_H
