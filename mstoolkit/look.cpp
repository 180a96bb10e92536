// The first look at a file, before it is opened.

#include "mslook.h"

#include "classicbytes_p.h"
#include "path_p.h"

#include "messageloggerinterface.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QThread>
#include <QVariant>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {

constexpr char property_of_the_last[] = "ms_file_found_well";

// The application object, where it can be written to: it belongs to one thread.
QCoreApplication *own_application()
{
    QCoreApplication *application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread() ? application : nullptr;
}

// A property of the application, since each plugin and program has a toolkit of its own.
QString last_found_well()
{
    const QCoreApplication *application = own_application();
    return application ? application->property(property_of_the_last).toString() : QString();
}

void remember_as_well(const QString &fingerprint)
{
    if (QCoreApplication *application = own_application())
        application->setProperty(property_of_the_last, fingerprint);
}

// Tells a file from what it was before and from another in its place. Null where that isn't possible.
QString fingerprint_of(const char *path)
{
    const QString name = QFile::decodeName(path);
    const QFileInfo file(name);
    if (QFile::encodeName(name) != path || !file.exists())
        return QString();
    return QStringLiteral("%1 %2 %3 %4")
        .arg(file.size())
        .arg(file.lastModified().toMSecsSinceEpoch())
        .arg(file.metadataChangeTime().toMSecsSinceEpoch())
        .arg(file.absoluteFilePath());
}

bool is_regular_file(const char *path)
{
    std::error_code unknown;
    return std::filesystem::is_regular_file(path, unknown);
}

enum class Kind { Hdf5, Other, Refused };

// Whether netCDF hands the file to the HDF5 library. Its signature may lie behind a block of the user's
// own, of 512 bytes or any power of two above. Reads that the system refuses are told.
Kind kind_of(const char *path)
{
    constexpr std::array<char, 8> signature = {'\x89', 'H', 'D', 'F', '\r', '\n', '\x1a', '\n'};
    MsClassicBytes file;
    if (!is_regular_file(path) || !file.open(path))
        return Kind::Other;
    Kind kind = Kind::Other;
    std::array<char, 8> found{};
    for (quint64 place = 0;; place = std::max<quint64>(512, 2 * place)) {
        const MsClassicBytes::Result result = file.read_bytes(place, found.size(), found.data());
        const bool is_read = result == MsClassicBytes::Result::Read;
        const bool is_classic = is_read && place == 0 && std::memcmp(found.data(), "CDF", 3) == 0
            && (found[3] == 1 || found[3] == 2 || found[3] == 5);
        if (result == MsClassicBytes::Result::Failed)
            kind = Kind::Refused;
        else if (is_read && found == signature)
            kind = Kind::Hdf5;
        if (!is_read || is_classic || kind != Kind::Other)
            break;
    }
    if (file.refusals() > 0)
        ms_report_refusal(path, file.first_error());
    return kind;
}

#ifdef Q_OS_UNIX
// A process that ignores the ends of its children gets no exit status from them. While an object of this
// class lives, it does.
class ChildStatus
{
public:
    ChildStatus()
    {
        sigaction(SIGCHLD, nullptr, &before);
        ignores = before.sa_handler == SIG_IGN || (before.sa_flags & SA_NOCLDWAIT) != 0;
        if (ignores)
            std::signal(SIGCHLD, SIG_DFL);
    }
    ~ChildStatus()
    {
        struct sigaction now = {};
        sigaction(SIGCHLD, nullptr, &now);
        if (ignores
            && now.sa_handler == SIG_DFL) // Qt may have set a handler, which it needs from then on
            sigaction(SIGCHLD, &before, nullptr);
    }
    Q_DISABLE_COPY(ChildStatus)

private:
    struct sigaction before = {};
    bool ignores = false;
};
#else
struct ChildStatus {
};
#endif

// The second half of the sentence that says why a file isn't opened; null for a look that ended well.
QString complaint(const QProcess &look, bool has_ended, int milliseconds)
{
    const QString program = look.program().toHtmlEscaped();
    if (!QFileInfo(look.program()).isFile())
        return QStringLiteral("the program <b>%1</b> is missing, which looks at such files first")
            .arg(program);
    if (look.error() == QProcess::Timedout)
        return QStringLiteral("a first look at it took more than %1 s").arg(milliseconds / 1000.0);
    if (!has_ended)
        return QStringLiteral("the program <b>%1</b>, which looks at such files first, can't be run: %2")
            .arg(program, look.errorString().toHtmlEscaped());

    const QString damaged = QStringLiteral("; it is most likely damaged");
    if (look.exitStatus() == QProcess::CrashExit)
        return QStringLiteral("a first look at it crashed") + damaged;
    switch (look.exitCode()) {
    case MsLookWell:
        return QString();
    case MsLookTooLong:
        return QStringLiteral("a first look at it came to no end") + damaged;
    case MsLookTooLarge:
        return QStringLiteral("a first look at it took too much memory") + damaged;
    default:
        return QStringLiteral("a first look at it failed with status %1").arg(look.exitCode());
    }
}

} // namespace

MsLookLimits ms_look_limits(const char *path)
{
    // A look takes a hundredth of a second to start and as much for a mebibyte, three times that for a
    // packed one. The rest is for files that are packed more tightly and for machines that are slow; by
    // the clock there is more of it, for those that are busy and for files at the end of a slow line.
    std::error_code unknown;
    const auto length = std::filesystem::file_size(path, unknown);
    constexpr quint64 longest = quint64(1) << 36; // milliseconds have to fit in 32 bits
    const qint64 bytes = unknown ? 0 : qint64(std::min<quint64>(length, longest));
    const int mebibytes = int(bytes >> 20);
    MsLookLimits limits;
    limits.processor_seconds = 4 + 2 * mebibytes;
    limits.seconds = 60 + 12 * mebibytes;
    // The largest scan takes 400 MiB. A packed block is unpacked whole, and may be all that is in the
    // file.
    limits.memory = (qint64(1) << 30) + 8 * bytes;
    return limits;
}

int ms_look_first(const char *path, const QString &program, int milliseconds)
{
    const Kind kind = path ? kind_of(path) : Kind::Other;
    if (kind != Kind::Hdf5)
        return kind == Kind::Refused ? -1 : 0;
    const QString fingerprint = fingerprint_of(path);
    if (!fingerprint.isNull() && fingerprint == last_found_well())
        return 0;

    const int most = milliseconds >= 0 ? milliseconds : ms_look_limits(path).seconds * 1000;
    const ChildStatus kept;
    Q_UNUSED(kept)
    QProcess look;
    look.setStandardInputFile(QProcess::nullDevice());
    look.setStandardOutputFile(QProcess::nullDevice());
    look.setStandardErrorFile(QProcess::nullDevice());
    look.start(program, {QString::fromLatin1(QByteArray(path).toPercentEncoding())});
    const bool has_ended = look.waitForFinished(most);
    const QString why = complaint(look, has_ended, most);
    if (!has_ended) {
        look.kill();
        look.waitForFinished();
    }
    if (!why.isNull()) {
        MessageLoggerInterface::Error(
            QStringLiteral("The file <b>%1</b> wasn't opened: %2.").arg(ms_shown_name(path), why),
            nullptr);
        return -1;
    }
    remember_as_well(fingerprint);
    return 0;
}
