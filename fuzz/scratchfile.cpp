#include "scratchfile.h"

#include <QFile>

#include <cstdlib>
#include <unistd.h>

QString scratchFile()
{
    static const QString name = QStringLiteral("/dev/shm/fuzz-%1.cdf").arg(getpid());
    static const bool registered = [] { return std::atexit([] { QFile::remove(name); }) == 0; }();
    Q_UNUSED(registered)
    return name;
}

bool writeScratchFile(const unsigned char *data, std::size_t size)
{
    QFile file(scratchFile());
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(reinterpret_cast<const char *>(data), qint64(size)) == qint64(size);
}
