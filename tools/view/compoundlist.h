// The compounds of a library, searchable by name, formula and CAS number.
#ifndef COMPOUNDLIST_H
#define COMPOUNDLIST_H

#include "rundata.h"

#include <QWidget>

class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

class CompoundList : public QWidget
{
    Q_OBJECT

public:
    explicit CompoundList(QWidget *parent = nullptr);

    // Shows the compounds of the first entries; `all` is how many there are.
    void setCompounds(const std::vector<MsCompound> &compounds, qint32 all);

    void search(const QString &text);
    void focusSearch();
    void choose(qint32 entry);
    QTableView *view() const { return view_; }

signals:
    void entryChosen(qint32 entry);
    void tracesAsked(); // of the largest masses of the entry that is chosen

private:
    class Model;

    QLineEdit *search_;
    QTableView *view_;
    Model *model_;
    QSortFilterProxyModel *found_;
};

#endif // COMPOUNDLIST_H
