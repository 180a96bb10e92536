#include "inforeport.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QLocale>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr int indentWidth = 2;

QString nodeText(const InfoNode &node, int depth);

QString printable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            result += QLatin1String("\\n");
        else if (c.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(uint(c.unicode()), 2, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

QString valueText(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("-");
    if (value.type() == QVariant::Double)
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return printable(value.toString());
}

QString indented(int depth, const QString &line)
{
    return QString(depth * indentWidth, QLatin1Char(' ')) + line + QLatin1Char('\n');
}

QString omissionText(const InfoNode &node, int depth)
{
    return node.omitted == 0 ? QString()
                             : indented(depth, QStringLiteral("... and %1 more").arg(node.omitted));
}

QString tableText(const InfoNode &table, int depth)
{
    std::vector<QStringList> lines = {table.columns};
    for (const std::vector<QVariant> &row : table.rows) {
        QStringList cells;
        for (const QVariant &value : row)
            cells += valueText(value);
        lines.push_back(cells);
    }

    std::vector<int> widths(std::size_t(table.columns.size()), 0);
    for (const QStringList &cells : lines) {
        for (int i = 0; i < cells.size(); ++i)
            widths[std::size_t(i)] = std::max(widths[std::size_t(i)], cells[i].size());
    }

    QString text;
    for (const QStringList &cells : lines) {
        QStringList padded;
        for (int i = 0; i < cells.size(); ++i)
            padded += cells[i].rightJustified(widths[std::size_t(i)]);
        text += indented(depth, padded.join(QLatin1String("  ")));
    }
    return text + omissionText(table, depth);
}

QString listText(const InfoNode &list, int depth)
{
    QString text;
    for (const InfoNode &item : list.children) {
        text += item.kind == InfoNode::Kind::Value
            ? indented(depth, QLatin1String("- ") + valueText(item.value))
            : nodeText(item, depth);
    }
    return text + omissionText(list, depth);
}

QString remarksText(const InfoNode &remarks, int depth)
{
    const auto column = std::size_t(remarks.columns.indexOf(QStringLiteral("text")));
    QString text;
    for (const std::vector<QVariant> &row : remarks.rows)
        text += indented(depth, QLatin1String("- ") + valueText(row[column]));
    return text;
}

QString nodeText(const InfoNode &node, int depth)
{
    switch (node.kind) {
    case InfoNode::Kind::Value:
        return indented(depth,
                        node.name + QLatin1String(": ") + valueText(node.value)
                            + QLatin1String(node.isDefault ? " (default: the file doesn't say)" : ""));
    case InfoNode::Kind::Table:
        return indented(depth, node.name + QLatin1Char(':')) + tableText(node, depth + 1);
    case InfoNode::Kind::List:
        return indented(depth, node.name + QLatin1Char(':')) + listText(node, depth + 1);
    case InfoNode::Kind::Remarks:
        return indented(depth, node.name + QLatin1Char(':')) + remarksText(node, depth + 1);
    case InfoNode::Kind::Section:
        break;
    }
    if (node.children.empty())
        return indented(depth, node.name + QLatin1String(": (nothing)"));
    return indented(depth, node.name + QLatin1Char(':')) + infoText(node, depth + 1);
}

QJsonArray tableJson(const InfoNode &table)
{
    QJsonArray array;
    for (const std::vector<QVariant> &row : table.rows) {
        QJsonObject object;
        for (std::size_t i = 0; i < row.size(); ++i)
            object.insert(table.columns[int(i)], QJsonValue::fromVariant(row[i]));
        array.append(object);
    }
    return array;
}

QJsonValue nodeJson(const InfoNode &node)
{
    switch (node.kind) {
    case InfoNode::Kind::Value:
        return QJsonValue::fromVariant(node.value);
    case InfoNode::Kind::Section:
        return infoJson(node);
    case InfoNode::Kind::Table:
    case InfoNode::Kind::Remarks:
        return tableJson(node);
    case InfoNode::Kind::List:
        break;
    }
    QJsonArray array;
    for (const InfoNode &child : node.children)
        array.append(nodeJson(child));
    return array;
}

} // namespace

InfoNode &InfoNode::add(Kind childKind, const QString &childName)
{
    InfoNode child;
    child.kind = childKind;
    child.name = childName;
    children.push_back(std::move(child));
    return children.back();
}

InfoNode &InfoNode::addValue(const QString &childName, const QVariant &childValue)
{
    InfoNode &child = add(Kind::Value, childName);
    child.value = childValue;
    return child;
}

QString infoText(const InfoNode &section, int depth)
{
    QString text;
    for (const InfoNode &child : section.children)
        text += nodeText(child, depth);
    return text;
}

QJsonObject infoJson(const InfoNode &section)
{
    QJsonObject object;
    for (const InfoNode &child : section.children) {
        object.insert(child.name, nodeJson(child));
        if (child.omitted > 0)
            object.insert(child.name + QLatin1String("_omitted"), double(child.omitted));
        if (child.isDefault)
            object.insert(child.name + QLatin1String("_is_default"), true);
    }
    return object;
}
