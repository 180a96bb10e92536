#include "dvimportinterface.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

// Returns why there is no such file.
QString whyMissing(const QString &name)
{
    std::error_code reason;
    static_cast<void>(std::filesystem::status(QFile::encodeName(name).constData(), reason));
    return !reason || reason == std::errc::no_such_file_or_directory
        ? QStringLiteral("The file \"%1\" doesn't exist.").arg(name)
        : QStringLiteral("The file \"%1\" can't be reached: %2.")
              .arg(name, qt_error_string(reason.value()));
}

// Returns why a file can't be read at all; null if it can.
QString obstacle(const QString &name)
{
    const QFileInfo file(name);
    if (!file.exists())
        return whyMissing(name);
    if (file.isDir())
        return QStringLiteral("\"%1\" is a folder, not a file.").arg(name);
    if (!file.isFile())
        return QStringLiteral("\"%1\" isn't a regular file.").arg(name);
    if (!file.isReadable())
        return QStringLiteral("There is no permission to read the file \"%1\".").arg(name);
    return QString();
}

} // namespace

bool DVImportInterface::canImport(TFileBuffer *, const QString &name, QString &text)
{
    const QString reason = obstacle(name);
    if (!reason.isNull()) {
        text = reason;
        return false;
    }
    if (!matchExtension(name)) {
        text = QStringLiteral("The name of the file \"%1\" doesn't end in an extension that this import "
                              "takes: %2.")
                   .arg(name, QStringList(extensionList).join(QLatin1String(", ")));
        return false;
    }
    return true;
}

QString DVImportInterface::getFileName() const
{
    return fileName;
}

void DVImportInterface::setEnabled(bool on)
{
    enabled = on;
}

bool DVImportInterface::isEnabled() const
{
    return enabled;
}

void DVImportInterface::pBarCanceledSlot()
{
    canceled = true;
}

bool DVImportInterface::matchExtension(const QString &name) const
{
    return std::any_of(extensionList.cbegin(), extensionList.cend(), [&](const QString &extension) {
        return name.endsWith(extension, Qt::CaseInsensitive);
    });
}

QList<QString> DVImportInterface::getExtension() const
{
    return extensionList;
}

TApplicationData *DVImportInterface::getApplicationData() const
{
    return applicationData;
}

void DVImportInterface::setApplicationData(TApplicationData *data)
{
    applicationData = data;
}

void DVImportInterface::copyImportState(const DVImportInterface &source)
{
    extensionList = source.extensionList;
    fileName = source.fileName;
    applicationData = source.applicationData;
    enabled = source.enabled;
}
