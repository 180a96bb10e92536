// What a file says, as a tree that can be searched: its doubts first, then its attributes, dimensions,
// instruments and groups.
#ifndef FILETREE_H
#define FILETREE_H

#include "rundata.h"

#include <QWidget>

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

class FileTree : public QWidget
{
    Q_OBJECT

public:
    explicit FileTree(QWidget *parent = nullptr);

    // `fileName` is the name by which the doubts call the file.
    void setDoubts(const RunDoubts &doubts, const QString &fileName);
    void setAttributes(const InfoNode &report);

    // Shows only items in which the text is found, and what they are part of.
    void search(const QString &text);
    void focusSearch();

    QTreeWidget *tree() const { return tree_; }

signals:
    void scanNamed(qint32 scan); // the way from a doubt to its scan was taken

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void activate(const QTreeWidgetItem *item);

    QLineEdit *search_;
    QTreeWidget *tree_;
    QTreeWidgetItem *doubts_;
};

#endif // FILETREE_H
