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

    // Sends all messages to `receiver` from now on and returns the one before. An empty receiver stands
    // for the default, which writes each message to standard error as a line.
    static Receiver setReceiver(Receiver receiver);
};

#endif // MESSAGELOGGERINTERFACE_H
