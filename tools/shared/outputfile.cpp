#include "outputfile.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int nameBeginning = 60; // of a temporary name, so that the whole isn't too long for any folder

std::atomic<const char *> unfinished{nullptr};

QByteArray followLinks(const QByteArray &name)
{
    constexpr int mostLinks = 40;
    std::error_code unknown;
    fs::path path = name.toStdString();
    for (int i = 0; i < mostLinks && fs::is_symlink(fs::symlink_status(path, unknown)); ++i)
        path = path.parent_path() / fs::read_symlink(path, unknown);
    return QByteArray::fromStdString(path.string());
}

QByteArray temporaryName(const QByteArray &target)
{
    const fs::path path = target.toStdString();
    const QString beginning = QFile::decodeName(path.filename().c_str()).left(nameBeginning);
    const QString number = QString::number(QRandomGenerator::system()->generate(), 36);
    const QString file = QStringLiteral("%1.%2.part").arg(beginning, number);
    return QByteArray::fromStdString((path.parent_path() / QFile::encodeName(file).constData()).string());
}

// A hard link is made only where nothing is in its way; a file system without them leaves a moment in
// which something can come there.
int moveToFreePlace(const char *from, const char *to)
{
    if (link(from, to) == 0) {
        unlink(from);
        return 0;
    }
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        return -1;
    if (access(to, F_OK) == 0) {
        errno = EEXIST;
        return -1;
    }
    return rename(from, to);
}

} // namespace

OutputFile::OutputFile(const QString &file, Existing policy) : name(file), existing(policy)
{
    if (isStandardOutput()) {
        direct = true;
        return;
    }
    target = QFile::encodeName(name);
    std::error_code unknown;
    const fs::file_status status = fs::status(target.constData(), unknown);
    direct = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
    if (!direct)
        target = followLinks(target);
}

OutputFile::~OutputFile()
{
    close();
    if (!temporary.isEmpty())
        unlink(temporary.constData());
    letGo();
}

void OutputFile::letGo()
{
    unfinished = nullptr;
    temporary.clear();
}

QString OutputFile::place() const
{
    return QFile::decodeName(target);
}

QByteArray OutputFile::makeTemporaryName() const
{
    return direct ? QByteArray() : temporaryName(target);
}

QString OutputFile::objection(const QStringList &inputs, Order order) const
{
    if (direct && order == Order::Any)
        return QStringLiteral("Such a file can't go to %1: name one on a disk.")
            .arg(isStandardOutput() ? QStringLiteral("standard output")
                                    : QStringLiteral("\"%1\", a pipe or a device").arg(name));
    std::error_code unknown;
    if (direct || !fs::exists(target.constData(), unknown))
        return QString();
    const bool isInput = std::any_of(inputs.cbegin(), inputs.cend(), [&](const QString &input) {
        return fs::equivalent(target.constData(), QFile::encodeName(input).constData(), unknown);
    });
    if (isInput)
        return QStringLiteral("The file \"%1\" is to be read, so it isn't written over.").arg(name);
    if (fs::is_directory(target.constData(), unknown))
        return QStringLiteral("\"%1\" is a folder, not a file.").arg(name);
    if (existing == Existing::Keep)
        return QStringLiteral("The file \"%1\" exists. With the option --force it is written over.")
            .arg(name);
    if (access(target.constData(), W_OK) != 0)
        return QStringLiteral("There is no permission to write over the file \"%1\".").arg(name);
    return QString();
}

bool OutputFile::open()
{
    if (direct) {
        handle = isStandardOutput() ? STDOUT_FILENO
                                    : ::open(target.constData(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        return handle != -1 || failOfSystem();
    }
    temporary = wantedTemporary.isEmpty() ? temporaryName(target) : wantedTemporary;
    // There may be a temporary file where there can't be the file itself, as its name is too long.
    const bool canBe = access(target.constData(), F_OK) == 0 || errno == ENOENT;
    if (canBe)
        handle = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (handle == -1) {
        const int ofSystem = errno;
        temporary.clear();
        const fs::path folder = fs::path(target.toStdString()).parent_path();
        std::error_code unknown;
        const bool hasFolder = folder.empty() || ofSystem != ENOENT || fs::is_directory(folder, unknown);
        const QString reason = hasFolder
            ? QStringLiteral("its folder takes no new file: ") + qt_error_string(ofSystem)
            : QStringLiteral("there is no folder \"%1\"").arg(QFile::decodeName(folder.c_str()));
        error = QStringLiteral("The file \"%1\" can't be written, as %2.").arg(name, reason);
        return false;
    }
    unfinished = temporary.constData();
    return true;
}

bool OutputFile::write(const char *bytes, std::size_t count)
{
    while (count > 0 && !hasFailed()) {
        const ssize_t written = ::write(handle, bytes, count);
        if (written == -1 && errno != EINTR)
            return failOfSystem();
        const auto done = std::size_t(std::max<ssize_t>(written, 0));
        bytes += done;
        count -= done;
    }
    return !hasFailed();
}

bool OutputFile::commit()
{
    if (hasFailed())
        return false;
    if (direct)
        return close() || failOfSystem();

    struct stat old;
    if (existing == Existing::Replace && stat(target.constData(), &old) == 0) {
        // Only root can keep another owner; whoever can't makes a file of their own.
        [[maybe_unused]] const int owner = fchown(handle, old.st_uid, old.st_gid);
        fchmod(handle, old.st_mode & 0777);
    }
    const bool reachedDisk = fsync(handle) == 0 || errno == EINVAL; // not all file systems can tell
    return (reachedDisk && close()) ? move() : failOfSystem();
}

// Standard output stays open.
bool OutputFile::close()
{
    const bool isClosed = handle == -1 || handle == STDOUT_FILENO || ::close(handle) == 0;
    handle = -1;
    return isClosed;
}

bool OutputFile::move()
{
    const int status = existing == Existing::Replace
        ? std::rename(temporary.constData(), target.constData())
        : moveToFreePlace(temporary.constData(), target.constData());
    if (status != 0) // what was written isn't thrown away
        error = QStringLiteral(
                    "The file \"%1\" can't be put in its place: %2. What was written is in \"%3\".")
                    .arg(name, qt_error_string(errno), QFile::decodeName(temporary));
    letGo();
    return status == 0;
}

bool OutputFile::fail(const QString &reason)
{
    if (!hasFailed())
        error = QStringLiteral("%1 can't be written: %2.")
                    .arg(isStandardOutput() ? QStringLiteral("Standard output")
                                            : QStringLiteral("The file \"%1\"").arg(name),
                         reason);
    return false;
}

bool OutputFile::failOfSystem()
{
    return fail(qt_error_string(errno));
}

void OutputFile::removeUnfinished()
{
    if (const char *path = unfinished)
        unlink(path);
}
