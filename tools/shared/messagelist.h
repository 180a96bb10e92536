// The messages about one file: each text once, with its count.
#ifndef MESSAGELIST_H
#define MESSAGELIST_H

#include "messageloggerinterface.h"

#include <QHash>
#include <QPair>
#include <QStringList>

#include <cstdio>
#include <utility>
#include <vector>

class MessageList
{
public:
    using Level = MessageLoggerInterface::Level;

    explicit MessageList(const QString &file) : fileName(file) { }

    void add(Level level, const QString &text);

    // Takes the texts of a level out of the list, as plain text.
    QStringList take(Level level);

    // Writes the messages from level `least` on, in the order in which they were first seen.
    void write(std::FILE *stream, Level least) const;

private:
    // A damaged file can make any number of different messages.
    static constexpr std::size_t mostTexts = 1000;

    struct Entry {
        Level level;
        QString text;
        int count;
    };

    const QString fileName;
    std::vector<Entry> entries;
    QHash<QPair<int, QString>, std::size_t> places; // in entries
    int leftOut = 0;
};

// Sends all messages to a receiver for as long as it lives.
class MessageRedirection
{
public:
    explicit MessageRedirection(MessageLoggerInterface::Receiver receiver)
        : previous(MessageLoggerInterface::setReceiver(std::move(receiver)))
    {
    }
    ~MessageRedirection() { MessageLoggerInterface::setReceiver(std::move(previous)); }

private:
    Q_DISABLE_COPY(MessageRedirection)

    MessageLoggerInterface::Receiver previous;
};

// Nobody gets any.
class Silence : private MessageRedirection
{
public:
    Silence() : MessageRedirection([](MessageLoggerInterface::Level, const QString &) {}) { }
};

#endif // MESSAGELIST_H
