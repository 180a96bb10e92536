// Who gets the messages of toolkit, plugin and host for the length of a block.
#ifndef MESSAGEREDIRECTION_H
#define MESSAGEREDIRECTION_H

#include "messageloggerinterface.h"

#include <utility>

// Sends all that comes from a `Source` to a receiver for as long as the object lives, and to the previous
// one again after it.
template <class Source> class Redirection
{
public:
    explicit Redirection(typename Source::Receiver receiver)
        : previous(Source::setReceiver(std::move(receiver)))
    {
    }
    ~Redirection() { Source::setReceiver(std::move(previous)); }

private:
    Q_DISABLE_COPY(Redirection)

    typename Source::Receiver previous;
};

using MessageRedirection = Redirection<MessageLoggerInterface>;

// Drops all messages for as long as the object lives.
class Silence : private MessageRedirection
{
public:
    Silence() : MessageRedirection([](MessageLoggerInterface::Level, const QString &) {}) { }
};

#endif // MESSAGEREDIRECTION_H
