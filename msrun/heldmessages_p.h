// Private: the toolkit's messages while a file is opened.
#ifndef HELDMESSAGES_P_H
#define HELDMESSAGES_P_H

#include "messageloggerinterface.h"
#include "messagetext.h"

#include <QStringList>

#include <utility>

// Holds the toolkit's messages back for as long as the object lives, and sends them on at its end, but
// for errors that were taken.
class HeldMessages
{
public:
    HeldMessages()
        : previous_(MessageLoggerInterface::setReceiver(
            [this](MessageLoggerInterface::Level level, const QString &text) {
                (level == MessageLoggerInterface::Level::Error ? errors_ : warnings_) += text;
            }))
    {
    }
    ~HeldMessages()
    {
        MessageLoggerInterface::setReceiver(std::move(previous_));
        for (const QString &text : qAsConst(warnings_))
            MessageLoggerInterface::Warning(text, nullptr);
        for (const QString &text : qAsConst(errors_))
            MessageLoggerInterface::Error(text, nullptr);
    }

    // Returns the errors as sentences; empty for none.
    QString takeErrors()
    {
        QStringList sentences = std::exchange(errors_, QStringList());
        for (QString &text : sentences)
            text = withFullStop(plainText(text));
        return sentences.join(QLatin1Char(' '));
    }

private:
    Q_DISABLE_COPY(HeldMessages)

    MessageLoggerInterface::Receiver previous_;
    QStringList warnings_;
    QStringList errors_;
};

#endif // HELDMESSAGES_P_H
