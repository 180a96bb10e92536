// The peaks of the spectrum that is shown, as a table that sorts by any column and copies to the
// clipboard.
#ifndef PEAKTABLE_H
#define PEAKTABLE_H

#include "rundata.h"

#include <QTableView>

class QLabel;

class PeakTable : public QWidget
{
    Q_OBJECT

public:
    explicit PeakTable(QWidget *parent = nullptr);

    void setSpectrum(const SpectrumData &spectrum);

    // Puts the chosen rows on the clipboard, or all where none is: columns with tabs between them, below
    // their headings.
    void copy() const;

    QTableView *view() const { return view_; }

signals:
    void massPicked(double mass); // a double click or Return on a row

private:
    class Model;

    QTableView *view_;
    QLabel *remark_;
    Model *model_;
};

#endif // PEAKTABLE_H
