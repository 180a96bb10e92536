// Sentences whose words agree with a count.

#include "countedtext_p.h"

#include <QString>

QString ms_counted_text(const char *text, qint64 count, const QStringList &arguments)
{
    QString result;
    bool is_taken = true; // the part of [one|many] that is being read
    for (const char *at = text; *at; ++at) {
        if (*at == '[')
            is_taken = count == 1;
        else if (*at == '|')
            is_taken = count != 1;
        else if (*at == ']')
            is_taken = true;
        else if (is_taken && *at == '%')
            result += arguments[*++at - '1'];
        else if (is_taken)
            result += QLatin1Char(*at);
    }
    return result;
}
