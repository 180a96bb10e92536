// The messages about one file: each text once, with its count.
#ifndef MESSAGELIST_H
#define MESSAGELIST_H

#include "messageloggerinterface.h"

#include <QHash>
#include <QPair>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

class MessageList
{
public:
    using Level = MessageLoggerInterface::Level;

    explicit MessageList(const QString &file) : fileName(file) { }

    void add(Level level, const QString &text);

    // Returns how many messages of that level there are.
    int count(Level level) const;

    // Takes the texts of a level out of the list and returns them, as plain text.
    QStringList take(Level level);

    // Takes a text, given as plain text, out of the list: for who says it elsewhere.
    void drop(const QString &text);

    // The same as sentences, with the count of those that came more than once.
    QStringList takeSentences(Level level);

    // Takes the toolkit's word on a file that is cut off out of the list: for who lists the doubts of the
    // file, which say it, too.
    void dropCutOff();

    // Reports the messages from level `least` on, in the order in which they were first seen.
    void reportAll(Level least) const;

private:
    // A damaged file can make any number of different messages.
    static constexpr std::size_t mostTexts = 1000;

    struct Entry {
        Level level;
        QString text;
        int count;
    };

    static QString sentence(const Entry &entry);
    template <class Condition>
    QStringList takeIf(Condition &&condition, QString (*textOf)(const Entry &));

    const QString fileName;
    std::vector<Entry> entries;
    QHash<QPair<int, QString>, std::size_t> places; // of the texts in entries
    int leftOut = 0;                                // messages whose texts found no room
};

#endif // MESSAGELIST_H
