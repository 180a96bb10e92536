#include "messagelist.h"

#include "terminaltext.h"

#include <algorithm>

namespace {

QString label(MessageList::Level level)
{
    switch (level) {
    case MessageList::Level::Debug:
        return QStringLiteral("Debug");
    case MessageList::Level::Warning:
        return QStringLiteral("Warning");
    case MessageList::Level::Error:
        break;
    }
    return QStringLiteral("Error");
}

} // namespace

void MessageList::add(Level level, const QString &text)
{
    const QPair<int, QString> key(int(level), text);
    const auto place = places.constFind(key);
    if (place != places.constEnd()) {
        ++entries[*place].count;
        return;
    }
    if (entries.size() >= mostTexts) {
        ++leftOut;
        return;
    }
    places.insert(key, entries.size());
    entries.push_back({level, text, 1});
}

QStringList MessageList::take(Level level)
{
    QStringList taken;
    std::vector<Entry> kept;
    places.clear();
    for (const Entry &entry : entries) {
        if (entry.level == level) {
            taken.append(plainText(entry.text));
            continue;
        }
        places.insert({int(entry.level), entry.text}, kept.size());
        kept.push_back(entry);
    }
    entries = std::move(kept);
    return taken;
}

void MessageList::write(std::FILE *stream, Level least) const
{
    const auto write = [&](Level level, const QString &text) {
        writeLine(stream, QStringLiteral("%1: %2: %3").arg(label(level), fileName, text));
    };
    for (const Entry &entry : entries) {
        if (entry.level < least)
            continue;
        const QString times =
            entry.count > 1 ? QStringLiteral(" (%1 times)").arg(entry.count) : QString();
        write(entry.level, plainText(entry.text) + times);
    }
    if (leftOut > 0)
        write(Level::Warning, QStringLiteral("%1 more messages were left out").arg(leftOut));
}
