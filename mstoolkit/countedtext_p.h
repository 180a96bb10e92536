// Private to this project: sentences whose words agree with a count.
#ifndef COUNTEDTEXT_P_H
#define COUNTEDTEXT_P_H

#include <QString>
#include <QStringList>

// Returns the text, of each [one|many] the part for that count, with the arguments in the places of %1 to
// %9. QString::arg would number the markers anew where a part is left out.
QString ms_counted_text(const char *text, qint64 count, const QStringList &arguments);

// The same with the count as the one argument.
inline QString ms_counted_text(const char *text, qint64 count)
{
    return ms_counted_text(text, count, {QString::number(count)});
}

#endif // COUNTEDTEXT_P_H
