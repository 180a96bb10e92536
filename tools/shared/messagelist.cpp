#include "messagelist.h"

#include "countedtext_p.h"
#include "terminaltext.h"

#include <algorithm>
#include <utility>

namespace {

QString label(MessageList::Level level)
{
    switch (level) {
    case MessageList::Level::Debug:
        return QStringLiteral("Note");
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

int MessageList::count(Level level) const
{
    return int(std::count_if(entries.begin(), entries.end(),
                             [level](const Entry &entry) { return entry.level == level; }));
}

QString MessageList::sentence(const Entry &entry)
{
    QString text = withFullStop(plainText(entry.text));
    if (entry.count > 1)
        text.insert(text.size() - 1, QStringLiteral(" (%1 times)").arg(entry.count));
    return text;
}

QStringList MessageList::take(Level level)
{
    return takeIf([level](const Entry &entry) { return entry.level == level; },
                  [](const Entry &entry) { return plainText(entry.text); });
}

QStringList MessageList::takeSentences(Level level)
{
    return takeIf([level](const Entry &entry) { return entry.level == level; }, sentence);
}

void MessageList::drop(const QString &text)
{
    takeIf([&text](const Entry &entry) { return plainText(entry.text) == text; }, sentence);
}

void MessageList::dropCutOff()
{
    takeIf(
        [](const Entry &entry) {
            return entry.level == Level::Warning && entry.text.contains(QLatin1String(" is cut off: "));
        },
        sentence);
}

template <class Condition>
QStringList MessageList::takeIf(Condition &&condition, QString (*textOf)(const Entry &))
{
    QStringList taken;
    std::vector<Entry> kept;
    places.clear();
    for (const Entry &entry : entries) {
        if (condition(entry)) {
            taken.append(textOf(entry));
            continue;
        }
        places.insert({int(entry.level), entry.text}, kept.size());
        kept.push_back(entry);
    }
    entries = std::move(kept);
    return taken;
}

void MessageList::reportAll(Level least) const
{
    for (const Entry &entry : entries) {
        if (entry.level < least)
            continue;
        report(QStringLiteral("%1 for the file \"%2\": %3")
                   .arg(label(entry.level), fileName, sentence(entry)));
    }
    if (leftOut > 0) {
        report(ms_counted_text("%2 more [message|messages] for the file \"%1\" [is|are] left out.",
                               leftOut, {fileName, QString::number(leftOut)}));
    }
}
