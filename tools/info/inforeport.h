// What a file holds, as a tree of named values that prints as text and as JSON.
#ifndef INFOREPORT_H
#define INFOREPORT_H

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

// A node of a report: a value, a section of named nodes, or one of the two kinds of rows.
struct InfoNode {
    enum class Kind {
        Value,
        Section,
        List, // children that bear numbers for names
        Table // rows of numbers below `columns`
    };

    Kind kind = Kind::Section;
    QString name;
    QVariant value; // of a value: a text, a whole number or a double; of any other kind unused
    std::vector<InfoNode> children; // of a section or list
    QStringList columns;
    std::vector<std::vector<QVariant>> rows; // of a table; an invalid one is missing
    qint64 omitted = 0;                      // items of a list or rows of a table that were left out

    InfoNode &add(Kind childKind, const QString &childName);
    void addValue(const QString &childName, const QVariant &childValue);
};

// The children of a section: one line a value, deeper ones further in. Characters that would steer a
// terminal are escaped.
QString infoText(const InfoNode &section, int depth = 0);

// The same as JSON. What was left out of a list or table NAME is counted in NAME_omitted; numbers that
// JSON lacks are null.
QJsonObject infoJson(const InfoNode &section);

#endif // INFOREPORT_H
