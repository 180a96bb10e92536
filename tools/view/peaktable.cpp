#include "peaktable.h"

#include "infofields.h"

#include <QAbstractTableModel>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t mostRows = 20000;
constexpr double percent = 100.0;

struct PeakRow {
    double mass;
    double intensity;
    std::size_t before = 0; // its place before the rows were arranged anew
};

// The digits that the file's number has: 39.05 for the float 39.0499992.
QString shortText(double number)
{
    const bool isFloat =
        std::abs(number) <= std::numeric_limits<float>::max() && double(float(number)) == number;
    return QString::number(shortest(number, isFloat ? MsFloatFormat : MsDoubleFormat), 'g', 10);
}

} // namespace

class PeakTable::Model : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    // Returns how many peaks there are; the largest ones are shown.
    std::size_t take(const SpectrumData &spectrum)
    {
        beginResetModel();
        rows_.clear();
        base_ = 0.0;
        for (std::size_t i = 0; i < spectrum.masses.size(); ++i) {
            rows_.push_back({spectrum.masses[i], spectrum.intensities[i]});
            base_ = std::max(base_, spectrum.intensities[i]);
        }
        const std::size_t all = rows_.size();
        if (all > mostRows) {
            std::nth_element(
                rows_.begin(), rows_.begin() + mostRows, rows_.end(),
                [](const PeakRow &one, const PeakRow &other) { return one.intensity > other.intensity; });
            rows_.resize(mostRows);
        }
        arrange();
        endResetModel();
        return all;
    }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : int(rows_.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : 3; }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::TextAlignmentRole)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        const PeakRow &row = rows_[std::size_t(index.row())];
        if (role == Qt::UserRole)
            return row.mass;
        if (role != Qt::DisplayRole)
            return QVariant();
        switch (index.column()) {
        case 0:
            return shortText(row.mass);
        case 1:
            return shortText(row.intensity);
        default:
            return base_ > 0.0 ? QString::number(percent * row.intensity / base_, 'f', 2) : QString();
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return QAbstractTableModel::headerData(section, orientation, role);
        return QStringList{QStringLiteral("m/z"), QStringLiteral("Intensity"),
                           QStringLiteral("Relative (%)")}[section];
    }

    void sort(int column, Qt::SortOrder order) override
    {
        column_ = column;
        order_ = order;
        emit layoutAboutToBeChanged();
        // What is chosen stays chosen.
        const QModelIndexList before = persistentIndexList();
        for (std::size_t i = 0; i < rows_.size(); ++i)
            rows_[i].before = i;
        arrange();
        std::vector<int> places(rows_.size());
        for (std::size_t i = 0; i < rows_.size(); ++i)
            places[rows_[i].before] = int(i);
        QModelIndexList after;
        for (const QModelIndex &old : before)
            after += index(places[std::size_t(old.row())], old.column());
        changePersistentIndexList(before, after);
        emit layoutChanged();
    }

private:
    void arrange()
    {
        const auto number = [this](const PeakRow &row) {
            return column_ == 0 ? row.mass : row.intensity;
        };
        std::stable_sort(rows_.begin(), rows_.end(), [&](const PeakRow &one, const PeakRow &other) {
            return order_ == Qt::AscendingOrder ? number(one) < number(other)
                                                : number(other) < number(one);
        });
    }

    std::vector<PeakRow> rows_;
    double base_ = 0.0;
    int column_ = 0;
    Qt::SortOrder order_ = Qt::AscendingOrder;
};

PeakTable::PeakTable(QWidget *parent)
    : QWidget(parent), view_(new QTableView), remark_(new QLabel), model_(new Model(this))
{
    view_->setModel(model_);
    view_->setSortingEnabled(true);
    view_->sortByColumn(0, Qt::AscendingOrder);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setTabKeyNavigation(false);
    view_->verticalHeader()->hide();
    view_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 4);
    remark_->setWordWrap(true);
    remark_->hide();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    layout->addWidget(remark_);
    auto *copying = new QAction(QStringLiteral("Copy"), this);
    copying->setShortcut(QKeySequence::Copy);
    copying->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copying, &QAction::triggered, this, &PeakTable::copy);
    view_->addAction(copying);
    view_->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(view_, &QTableView::activated, this,
            [this](const QModelIndex &index) { emit massPicked(index.data(Qt::UserRole).toDouble()); });
}

void PeakTable::setSpectrum(const SpectrumData &spectrum)
{
    const std::size_t all = model_->take(spectrum);
    remark_->setVisible(all > mostRows);
    remark_->setText(QStringLiteral("The %1 largest of %2 peaks.").arg(mostRows).arg(all));
}

void PeakTable::copy() const
{
    QList<int> rows;
    for (const QModelIndex &index : view_->selectionModel()->selectedRows())
        rows += index.row();
    if (rows.isEmpty()) {
        for (int row = 0; row < model_->rowCount(); ++row)
            rows += row;
    }
    std::sort(rows.begin(), rows.end());
    QString text = QStringLiteral("m/z\tIntensity\tRelative (%)\n");
    for (const int row : qAsConst(rows)) {
        for (int column = 0; column < model_->columnCount(); ++column)
            text += model_->index(row, column).data().toString() + QLatin1Char(column < 2 ? '\t' : '\n');
    }
    QApplication::clipboard()->setText(text);
}
