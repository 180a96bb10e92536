#include "filetree.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int scanRole = Qt::UserRole;

QString shownValue(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("(missing)");
    if (value.type() == QVariant::Double)
        return QString::number(value.toDouble(), 'g', 10);
    return value.toString().simplified();
}

void addNode(const InfoNode &node, QTreeWidgetItem *parent)
{
    auto *item = new QTreeWidgetItem(parent, {node.name, QString()});
    item->setToolTip(0, node.name);
    if (node.kind == InfoNode::Kind::Value) {
        const QString value = shownValue(node.value);
        item->setText(
            1, node.isDefault ? QStringLiteral("%1 (default: the file doesn't say)").arg(value) : value);
        item->setToolTip(1, node.value.toString());
        QFont font = item->font(1);
        font.setItalic(node.isDefault);
        item->setFont(1, font);
        return;
    }
    for (const InfoNode &child : node.children)
        addNode(child, item);
    for (const std::vector<QVariant> &row : node.rows) {
        auto *line =
            new QTreeWidgetItem(item, {row.empty() ? QString() : shownValue(row.front()), QString()});
        QStringList cells;
        for (std::size_t column = 1; column < row.size(); ++column)
            cells +=
                QStringLiteral("%1 %2").arg(node.columns.value(int(column)), shownValue(row[column]));
        line->setText(1, cells.join(QStringLiteral(", ")));
    }
    if (node.omitted > 0)
        new QTreeWidgetItem(item, {QString(), QStringLiteral("%1 more are not shown").arg(node.omitted)});
}

// Returns whether the item stays visible.
bool filter(QTreeWidgetItem *item, const QString &text, bool isInParent)
{
    const bool isFound = isInParent || text.isEmpty() || item->text(0).contains(text, Qt::CaseInsensitive)
        || item->text(1).contains(text, Qt::CaseInsensitive);
    bool isVisible = isFound;
    for (int i = 0; i < item->childCount(); ++i)
        isVisible = filter(item->child(i), text, isFound) || isVisible;
    item->setHidden(!isVisible);
    if (!text.isEmpty() && isVisible)
        item->setExpanded(true);
    return isVisible;
}

} // namespace

FileTree::FileTree(QWidget *parent) : QWidget(parent), search_(new QLineEdit), tree_(new QTreeWidget)
{
    search_->setPlaceholderText(QStringLiteral("Search"));
    search_->setClearButtonEnabled(true);
    tree_->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Value")});
    tree_->setUniformRowHeights(false);
    tree_->setWordWrap(true);
    tree_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tree_->header()->resizeSection(0, fontMetrics().horizontalAdvance(QLatin1Char('x')) * 24);
    doubts_ = new QTreeWidgetItem(tree_, {QStringLiteral("Doubts")});
    doubts_->setExpanded(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(search_);
    layout->addWidget(tree_);
    connect(search_, &QLineEdit::textChanged, this, &FileTree::search);
    connect(tree_, &QTreeWidget::itemActivated, this, &FileTree::activate);
}

void FileTree::setDoubts(const RunDoubts &doubts)
{
    qDeleteAll(doubts_->takeChildren());
    static const QRegularExpression scan(QStringLiteral("\\bscan (\\d+)"));
    for (const MsDoubt &doubt : doubts.list) {
        auto *item = new QTreeWidgetItem(doubts_, {doubt.text});
        item->setToolTip(0, doubt.text);
        item->setFirstColumnSpanned(true);
        const QRegularExpressionMatch named = scan.match(doubt.example + QLatin1Char(' ') + doubt.text);
        if (named.hasMatch()) {
            item->setData(0, scanRole, named.captured(1).toInt());
            auto *way =
                new QTreeWidgetItem(item, {QStringLiteral("Show scan %1").arg(named.captured(1))});
            way->setData(0, scanRole, named.captured(1).toInt());
            way->setFirstColumnSpanned(true);
            item->setExpanded(true);
        }
    }
    doubts_->setText(1,
                     !doubts.list.isEmpty() ? QString::number(doubts.list.size())
                         : doubts.isSettled ? QStringLiteral("none")
                                            : QStringLiteral("none so far"));
}

void FileTree::setAttributes(const InfoNode &report)
{
    while (tree_->topLevelItemCount() > 1)
        delete tree_->takeTopLevelItem(1);
    for (const InfoNode &node : report.children) {
        if (node.kind != InfoNode::Kind::Remarks && node.name != QLatin1String("complete"))
            addNode(node, tree_->invisibleRootItem());
    }
    for (int i = 1; i < tree_->topLevelItemCount(); ++i)
        tree_->topLevelItem(i)->setExpanded(tree_->topLevelItem(i)->childCount() < 40);
    search(search_->text());
}

void FileTree::search(const QString &text)
{
    for (int i = 0; i < tree_->topLevelItemCount(); ++i)
        filter(tree_->topLevelItem(i), text.trimmed(), false);
}

void FileTree::focusSearch()
{
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
}

void FileTree::activate(const QTreeWidgetItem *item)
{
    const QVariant scan = item->data(0, scanRole);
    if (scan.isValid())
        emit scanNamed(scan.toInt());
}
