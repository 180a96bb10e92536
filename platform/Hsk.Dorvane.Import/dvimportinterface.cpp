#include "dvimportinterface.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// Returns why a file can't be read at all, with %1 for its name; null if it can.
const char *obstacle(const QFileInfo &file)
{
    if (!file.exists())
        return "The file \"%1\" doesn't exist.";
    if (file.isDir())
        return "\"%1\" is a folder, not a file.";
    if (!file.isFile())
        return "\"%1\" isn't a regular file.";
    if (!file.isReadable())
        return "There is no permission to read the file \"%1\".";
    return nullptr;
}

} // namespace

bool DVImportInterface::canImport(TFileBuffer *, const QString &name, QString &text)
{
    if (const char *reason = obstacle(QFileInfo(name))) {
        text = QString::fromLatin1(reason).arg(name);
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
