// Messages for the user of the host.
#ifndef MESSAGELOGGERINTERFACE_H
#define MESSAGELOGGERINTERFACE_H

#include <QString>

#include <functional>

class MessageLoggerInterface
{
public:
    enum class Level { Debug, Warning, Error };
    using Receiver = std::function<void(Level level, const QString &text)>;

    // Report `text`, which may be rich text. The second argument is always null.
    static void Debug(const QString &text, MessageLoggerInterface *logger);
    static void Warning(const QString &text, MessageLoggerInterface *logger);
    static void Error(const QString &text, MessageLoggerInterface *logger);

    // Where messages go from now on; gives the receiver so far. An empty one stands for the default,
    // a line on standard error for each message.
    static Receiver setReceiver(Receiver receiver);
};

#endif // MESSAGELOGGERINTERFACE_H
