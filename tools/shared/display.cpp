#include "display.h"

#include "interruption.h"

#include <QGuiApplication>
#include <QString>

#include <cerrno>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

bool canOpenDisplay(int argc, char **argv)
{
    const pid_t child = fork();
    if (child == 0) {
        forgetInterruptions();
        constexpr unsigned patience = 20; // seconds
        alarm(patience);
        const rlimit noCore = {0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        const QGuiApplication application(argc, argv);
        _exit(0);
    }
    int status = 0;
    while (child != -1 && waitpid(child, &status, 0) == -1 && errno == EINTR) { }
    return child != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
