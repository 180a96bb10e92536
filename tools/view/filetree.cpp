#include "filetree.h"

#include "countedtext_p.h"
#include "namecodec.h"

#include <QEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

constexpr int scanRole = Qt::UserRole;

const QString absent = QStringLiteral("(absent)");

// Breaks the lines of sentences, which span the tree; other texts are cut where they are too long.
class SentenceDelegate : public QStyledItemDelegate
{
public:
    explicit SentenceDelegate(QTreeWidget *tree) : QStyledItemDelegate(tree), tree_(tree) { }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        if (!isSentence(index))
            return size;
        int depth = 1;
        for (QModelIndex parent = index.parent(); parent.isValid(); parent = parent.parent())
            ++depth;
        constexpr int margins = 16;
        const int width = tree_->viewport()->width() - depth * tree_->indentation() - margins;
        size.setHeight(margins
                       + option.fontMetrics
                             .boundingRect(QRect(0, 0, std::max(width, 1), QWIDGETSIZE_MAX),
                                           Qt::TextWordWrap, index.data().toString())
                             .height());
        return size;
    }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features.setFlag(QStyleOptionViewItem::WrapText, isSentence(index));
    }

private:
    bool isSentence(const QModelIndex &index) const
    {
        return tree_->isFirstColumnSpanned(index.row(), index.parent());
    }

    QTreeWidget *tree_;
};

QString shownValue(const QVariant &value)
{
    if (!value.isValid())
        return absent;
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
        item->setText(1, node.isDefault ? QStringLiteral("%1 (default)").arg(value) : value);
        item->setToolTip(1,
                         node.isDefault ? QStringLiteral("%1: the file doesn't say").arg(item->text(1))
                                        : item->text(1));
        QFont font = item->font(1);
        font.setItalic(node.isDefault || !node.value.isValid());
        item->setFont(1, font);
        item->setDisabled(!node.value.isValid());
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
        new QTreeWidgetItem(item,
                            {QString(), ms_counted_text("%1 more [is|are] not shown", node.omitted)});
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
    tree_->setItemDelegate(new SentenceDelegate(tree_));
    tree_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tree_->header()->setSectionResizeMode(QHeaderView::Stretch);
    tree_->viewport()->installEventFilter(this);
    doubts_ = new QTreeWidgetItem(tree_, {QStringLiteral("Doubts")});
    doubts_->setExpanded(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(search_);
    layout->addWidget(tree_);
    connect(search_, &QLineEdit::textChanged, this, &FileTree::search);
    connect(tree_, &QTreeWidget::itemActivated, this, &FileTree::activate);
    connect(tree_, &QTreeWidget::itemClicked, this, &FileTree::activate);
}

void FileTree::setDoubts(const RunDoubts &doubts, const QString &fileName)
{
    qDeleteAll(doubts_->takeChildren());
    static const QRegularExpression scan(QStringLiteral("^scan (\\d+)$"));
    for (const MsDoubt &doubt : doubts.list) {
        // The tree is that of the file, so its folder would only make the sentence long.
        QString text = doubt.text;
        text.replace(::shownName(fileName), ::shownName(QFileInfo(fileName).fileName()));
        auto *item = new QTreeWidgetItem(doubts_, {text});
        item->setToolTip(0, doubt.text);
        item->setFirstColumnSpanned(true);
        const QRegularExpressionMatch named = scan.match(doubt.example);
        if (!named.hasMatch())
            continue;
        auto *way = new QTreeWidgetItem(item, {QStringLiteral("Show scan %1").arg(named.captured(1))});
        way->setData(0, scanRole, named.captured(1).toInt());
        way->setForeground(0, palette().link());
        way->setFirstColumnSpanned(true);
        item->setExpanded(true);
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

bool FileTree::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        // Sentences break elsewhere now.
        QMetaObject::invokeMethod(
            tree_, [this] { tree_->doItemsLayout(); }, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

void FileTree::activate(const QTreeWidgetItem *item)
{
    const QVariant scan = item->data(0, scanRole);
    if (scan.isValid())
        emit scanNamed(scan.toInt());
}
