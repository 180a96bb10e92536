#include "terminaltext.h"

#include "namecodec.h"

#include <QCoreApplication>

#include <cerrno>

namespace {

int outputError = 0; // the first one of standard output

} // namespace

QString shortened(const QString &text, int longest)
{
    if (text.size() <= longest)
        return text;
    return QStringLiteral("%1... (%2 characters)").arg(text.left(longest), QString::number(text.size()));
}

void writeLine(std::FILE *stream, const QString &text)
{
    QString line = text;
    for (QChar &character : line) {
        if (character.category() == QChar::Other_Control)
            character = QLatin1Char('?');
    }
    line += QLatin1Char('\n');
    writeBytes(stream, terminalBytes(line));
}

void writeBytes(std::FILE *stream, const QByteArray &bytes)
{
    const auto size = std::size_t(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stream) < size && stream == stdout && outputError == 0)
        outputError = errno;
}

void report(const QString &sentence)
{
    writeLine(stderr, QCoreApplication::applicationName() + QStringLiteral(": ") + sentence);
}

bool flushOutput()
{
    if (std::fflush(stdout) != 0 && outputError == 0)
        outputError = errno;
    if (outputError != 0)
        report(withFullStop(QStringLiteral("Standard output can't be written: ")
                            + qt_error_string(outputError)));
    return outputError == 0;
}

bool hasLostReports()
{
    return std::ferror(stderr) != 0;
}
