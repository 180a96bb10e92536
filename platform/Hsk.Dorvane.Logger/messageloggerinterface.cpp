#include "messageloggerinterface.h"

#include <cstdio>
#include <utility>

namespace {

MessageLoggerInterface::Receiver &receiver()
{
    static MessageLoggerInterface::Receiver current;
    return current;
}

void report(MessageLoggerInterface::Level level, const char *label, const QString &text)
{
    if (receiver())
        receiver()(level, text);
    else
        std::fprintf(stderr, "%s: %s\n", label, text.toUtf8().constData());
}

} // namespace

void MessageLoggerInterface::Debug(const QString &text, MessageLoggerInterface *)
{
    report(Level::Debug, "Debug", text);
}

void MessageLoggerInterface::Warning(const QString &text, MessageLoggerInterface *)
{
    report(Level::Warning, "Warning", text);
}

void MessageLoggerInterface::Error(const QString &text, MessageLoggerInterface *)
{
    report(Level::Error, "Error", text);
}

MessageLoggerInterface::Receiver MessageLoggerInterface::setReceiver(Receiver newReceiver)
{
    return std::exchange(receiver(), std::move(newReceiver));
}
