// The way from a file's name to the path that the system knows it by, and back.

#include "path_p.h"

#include "messageloggerinterface.h"
#include "mstoolkit.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <filesystem>
#include <system_error>

QByteArray ms_path_of(const QString &name)
{
    const auto exists = [](const QByteArray &path) {
        std::error_code unknown;
        return std::filesystem::exists(path.constData(), unknown);
    };
    // A name with a character that the coding lacks, or with a NUL, would come out as another file's.
    const QByteArray path = QFile::encodeName(name);
    if (QFile::decodeName(path) == name && exists(path))
        return path;
    const QByteArray latin1 = name.toLatin1();
    return QString::fromLatin1(latin1) == name && exists(latin1) ? latin1 : QByteArray();
}

QString ms_shown_name(const char *path)
{
    const QString name = QFile::decodeName(path);
    return (name.contains(QChar::ReplacementCharacter) ? QString::fromLatin1(path) : name)
        .toHtmlEscaped();
}

QString ms_system_text(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

void ms_report_refusal(const char *path, int error)
{
    MessageLoggerInterface::Error(
        QStringLiteral("The system refused to read from the file <b>%1</b>: %2.")
            .arg(ms_shown_name(path), ms_system_text(error).toHtmlEscaped()),
        nullptr);
}
