#include "compoundlist.h"

#include "mspwriter.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace {

enum Column { Number, Name, Formula, Cas, Weight, Columns };

// Names that aren't shown are found, too.
constexpr int soughtRole = Qt::UserRole;
constexpr int orderRole = Qt::UserRole + 1;

} // namespace

class CompoundList::Model : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    void take(const std::vector<MsCompound> &compounds)
    {
        beginResetModel();
        compounds_ = compounds;
        endResetModel();
    }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : int(compounds_.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : int(Columns);
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        const MsCompound &compound = compounds_[std::size_t(index.row())];
        if (role == soughtRole)
            return compound.name + QLatin1Char('\n') + compound.otherNames.join(QLatin1Char('\n'))
                + QLatin1Char('\n') + compound.formula + QLatin1Char('\n') + casText(compound.casNumber);
        const bool isOrder = role == orderRole;
        if (role == Qt::ToolTipRole && index.column() == Name)
            return (QStringList(compound.name) + compound.otherNames).join(QLatin1Char('\n'));
        if (role != Qt::DisplayRole && !isOrder)
            return QVariant();
        switch (index.column()) {
        case Number:
            return index.row();
        case Name:
            return compound.name;
        case Formula:
            return compound.formula;
        case Cas:
            return isOrder ? QVariant(compound.casNumber) : QVariant(casText(compound.casNumber));
        default:
            if (std::isnan(compound.chemicalMass))
                return QVariant();
            return isOrder ? QVariant(compound.chemicalMass)
                           : QVariant(QString::number(compound.chemicalMass, 'g', 7));
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return QAbstractTableModel::headerData(section, orientation, role);
        return QStringList{QStringLiteral("Entry"), QStringLiteral("Name"), QStringLiteral("Formula"),
                           QStringLiteral("CAS number"), QStringLiteral("Weight")}[section];
    }

private:
    std::vector<MsCompound> compounds_;
};

CompoundList::CompoundList(QWidget *parent)
    : QWidget(parent), search_(new QLineEdit), view_(new QTableView), model_(new Model(this)),
      found_(new QSortFilterProxyModel(this))
{
    found_->setSourceModel(model_);
    found_->setFilterRole(soughtRole);
    found_->setSortRole(orderRole);
    found_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    found_->setSortCaseSensitivity(Qt::CaseInsensitive);
    search_->setPlaceholderText(QStringLiteral("Name, formula or CAS number"));
    search_->setClearButtonEnabled(true);
    view_->setModel(found_);
    view_->setSortingEnabled(true);
    view_->sortByColumn(Number, Qt::AscendingOrder);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setTabKeyNavigation(false);
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->horizontalHeader()->setSectionResizeMode(Name, QHeaderView::Stretch);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *trace = new QPushButton(QStringLiteral("Trace its &largest masses"));
    trace->setToolTip(QStringLiteral("Adds them to the traces of all runs that are open"));
    connect(trace, &QPushButton::clicked, this, &CompoundList::tracesAsked);
    auto *bar = new QHBoxLayout;
    bar->addWidget(search_, 1);
    bar->addWidget(trace);
    layout->addLayout(bar);
    layout->addWidget(view_);
    connect(search_, &QLineEdit::textChanged, this, &CompoundList::search);
    connect(view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &row) {
                if (row.isValid())
                    emit entryChosen(found_->mapToSource(row).row());
            });
}

void CompoundList::setCompounds(const std::vector<MsCompound> &compounds, qint32 all)
{
    model_->take(compounds);
    QHeaderView *header = view_->horizontalHeader();
    constexpr int looked = 100; // rows, as there may be very many
    header->setResizeContentsPrecision(looked);
    view_->resizeColumnsToContents();
    if (qint32(compounds.size()) < all)
        search_->setPlaceholderText(
            QStringLiteral("Name, formula or CAS number; only the first %1 of %2 entries are listed")
                .arg(compounds.size())
                .arg(all));
    if (found_->rowCount() > 0)
        view_->selectRow(0);
}

void CompoundList::search(const QString &text)
{
    found_->setFilterFixedString(text.trimmed());
    if (!view_->currentIndex().isValid() && found_->rowCount() > 0)
        view_->selectRow(0);
}

void CompoundList::focusSearch()
{
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
}

void CompoundList::choose(qint32 entry)
{
    const QModelIndex row = found_->mapFromSource(model_->index(entry, 0));
    if (row.isValid())
        view_->setCurrentIndex(row);
}
