#include "inputfile.h"

#include <QFileInfo>

QString whyUnreadable(const QString &name)
{
    const QFileInfo file(name);
    if (!file.exists())
        return QStringLiteral("The file \"%1\" doesn't exist.").arg(name);
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
