#include "interruption.h"

#include "outputfile.h"
#include "terminaltext.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int watchedSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interrupted = 0;

QByteArray word; // made beforehand: a handler may do next to nothing

void onInterruption(int signal)
{
    const int reason = errno;
    // A closed terminal sends the signal twice, by the system and by the shell; that is one interruption.
    if (interrupted && signal != SIGHUP) {
        OutputFile::removeUnfinished();
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    if (!interrupted) {
        interrupted = 1;
        // Where this can't be written, there is nobody to read it.
        [[maybe_unused]] const ssize_t written =
            write(STDERR_FILENO, word.constData(), std::size_t(word.size()));
    }
    errno = reason;
}

} // namespace

void watchInterruptions(InterruptionWord answer)
{
    if (answer == InterruptionWord::Said) {
        word = QCoreApplication::applicationName().toUtf8()
            + ": The program was interrupted and stops at the next scan. Ctrl-C once more ends it at "
              "once.\n";
        if (isatty(STDERR_FILENO))
            word.prepend('\n'); // behind the "^C" of the terminal
    }
    for (const int signal : watchedSignals) {
        // What the program was started to ignore stays ignored.
        if (std::signal(signal, SIG_IGN) != SIG_IGN)
            std::signal(signal, onInterruption);
    }
}

void forgetInterruptions()
{
    for (const int signal : watchedSignals) {
        if (std::signal(signal, SIG_IGN) != SIG_IGN)
            std::signal(signal, SIG_DFL);
    }
}

bool isInterrupted()
{
    return interrupted != 0;
}

bool reportFilesLeft(int done, int count)
{
    if (done < count)
        report(QStringLiteral("The program stopped before it looked at %1 of %2 files.")
                   .arg(QString::number(count - done), QString::number(count)));
    return done >= count;
}

void survivePipesAndLimits()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void keepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", O_RDONLY); // gets the lowest free place, which is this one
    }
}
