// What a file holds, as a tree of named values that prints as text and as JSON.
#ifndef INFOREPORT_H
#define INFOREPORT_H

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

// A node of a report: a value, a section of named nodes, a list or a table.
struct InfoNode {
    enum class Kind {
        Value,
        Section,
        List,   // children whose names are their numbers
        Table,  // rows of numbers and texts below `columns`
        Remarks // the same, of which the text shows the column "text" only
    };

    Kind kind = Kind::Section;
    QString name;
    QVariant value;                 // of a value: a text, a whole number, a double or a bool
    bool isDefault = false;         // of a value: the file doesn't state it
    std::vector<InfoNode> children; // of a section or list
    QStringList columns;
    std::vector<std::vector<QVariant>> rows; // of a table; an invalid value is missing
    qint64 omitted = 0;                      // items of a list or rows of a table that were left out

    InfoNode &add(Kind childKind, const QString &childName);
    // Returns the new child, which stays where it is until another is added.
    InfoNode &addValue(const QString &childName, const QVariant &childValue);
};

// Returns the children of a section as text, a line for each value, indented by depth. Control
// characters, which a terminal would obey, are escaped.
QString infoText(const InfoNode &section, int depth = 0);

// Returns the children of a section as JSON. NAME_omitted counts what was left out of a list or table
// NAME, NAME_is_default is true of a value NAME that the file doesn't state. NaN and infinities, which
// JSON lacks, are null.
QJsonObject infoJson(const InfoNode &section);

#endif // INFOREPORT_H
