// Shows runs and libraries in a window, or draws one to a file.

#include "display.h"
#include "mainwindow.h"
#include "standardoptions.h"
#include "terminaltext.h"
#include "viewimage.h"
#include "viewoptions.h"

#include <QApplication>
#include <QIcon>
#include <QSettings>

#include <optional>

int main(int argc, char *argv[])
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // An application with windows needs a display, so there is one only if a window is shown.
    ViewCommand command;
    {
        const QCoreApplication application(argc, argv);
        command = parseViewCommand(QCoreApplication::arguments());
    }
    if (command.exitStatus)
        return *command.exitStatus;
    if (command.image) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        // Qt's remarks on the desktop that there isn't.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    }
    if (!command.image && !canOpenDisplay(argc, argv)) {
        report(
            QStringLiteral("The window needs a display, and none can be opened. The option --image draws "
                           "a run to a file without one."));
        return Failure;
    }
    const QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral(AIA_PROGRAM));
    if (command.image)
        return drawImage(command.files.first(), *command.image, command.modulation);
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral(AIA_PROGRAM),
                       QStringLiteral(AIA_PROGRAM));
    ReadingThread thread;
    MainWindow window(settings, thread);
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral(AIA_PROGRAM)));
    window.show();
    window.setModulation(command.modulation);
    window.open(command.files);
    return QApplication::exec();
}
