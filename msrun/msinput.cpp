#include "msinput.h"

#include "mslook.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

QString whyUnreadable(const QString &name)
{
    const QFileInfo file(name);
    if (!file.exists()) {
        std::error_code reason;
        static_cast<void>(std::filesystem::status(QFile::encodeName(name).constData(), reason));
        return !reason || reason == std::errc::no_such_file_or_directory
            ? QStringLiteral("The file \"%1\" doesn't exist.").arg(name)
            : QStringLiteral("The file \"%1\" can't be reached: %2.")
                  .arg(name, qt_error_string(reason.value()));
    }
    if (file.isDir())
        return QStringLiteral("\"%1\" is a folder, not a file.").arg(name);
    if (!file.isFile())
        return QStringLiteral("\"%1\" isn't a regular file.").arg(name);
    if (!file.isReadable())
        return QStringLiteral("There is no permission to read the file \"%1\".").arg(name);
    if (file.size() == 0)
        return QStringLiteral("The file \"%1\" is empty.").arg(name);
    return QString();
}

QString pluginFolder()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/" AIA_PLUGIN_DIR);
}

MsFile openInput(const QString &name, const QString &lookProgram)
{
    const QByteArray path = ms_path_of(name);
    const QString program =
        lookProgram.isEmpty() ? pluginFolder() + QStringLiteral("/" AIA_LOOK) : lookProgram;
    return ms_look_first(path.constData(), program) == 0 ? MsFile(path.constData()) : MsFile();
}

QString whyNotOpened(const QString &name, const QString &errors)
{
    return errors.isEmpty()
        ? QStringLiteral("The file \"%1\" isn't a netCDF file, or its header is damaged or cut off.")
              .arg(name)
        : errors;
}
