// Who gets the messages of toolkit, plugin and host for the length of a block.
#ifndef MESSAGEREDIRECTION_H
#define MESSAGEREDIRECTION_H

#include "messageloggerinterface.h"

#include <utility>

// Sends all messages to a receiver for as long as the object lives, and to the previous one again after
// it.
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

// Drops all messages for as long as the object lives.
class Silence : private MessageRedirection
{
public:
    Silence() : MessageRedirection([](MessageLoggerInterface::Level, const QString &) {}) { }
};

#endif // MESSAGEREDIRECTION_H
