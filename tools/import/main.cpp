// Plays the host: imports files through the plugin and shows what a host would receive.

#include "fileimport.h"
#include "importjson.h"
#include "importoptions.h"
#include "inputfile.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QApplication>
#include <QPluginLoader>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <optional>

namespace {

// Whether a dialog can be shown. Without a display the application object would end the process.
bool hasDisplay()
{
#ifdef Q_OS_UNIX
    const char *variables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    return std::any_of(std::begin(variables), std::end(variables),
                       [](const char *name) { return !qEnvironmentVariableIsEmpty(name); });
#else
    return true;
#endif
}

void onInterrupt(int signal)
{
    FileImport::interrupt();
    std::signal(signal, SIG_DFL); // a second Ctrl-C ends a program that doesn't come to a stop
}

int importAll(DVImportAnalysisInterface &prototype, const ImportOptions &options)
{
    ImportJson json;
    const bool writesJson = !options.json.isEmpty();
    bool complete = !writesJson || json.open(options.json);
    int done = 0;
    for (const QString &file : options.files) {
        if (json.hasFailed() || FileImport::isInterrupted())
            break;
        FileImport import(prototype, options, writesJson ? &json : nullptr, file);
        complete = import.run() && complete;
        ++done;
    }
    if (done < options.files.size()) {
        report(QStringLiteral("The program stopped before it looked at %1 of %2 files.")
                   .arg(QString::number(options.files.size() - done),
                        QString::number(options.files.size())));
        complete = false;
    }
    if (writesJson && !json.finish()) {
        report(withFullStop(QStringLiteral("%1 can't be written: %2")
                                .arg(options.json == QLatin1String("-")
                                         ? QStringLiteral("Standard output")
                                         : QStringLiteral("The file \"%1\"").arg(options.json),
                                     json.errorText())));
        complete = false;
    }
    return complete ? Success : Failure;
}

int runProgram(const ImportOptions &options)
{
    QPluginLoader loader(pluginFolder() + QStringLiteral("/Hsk.Dorvane.ImportAiaMs.so"));
    auto *prototype = dynamic_cast<DVImportAnalysisInterface *>(loader.instance());
    if (!prototype) {
        report(loader.isLoaded()
                   ? QStringLiteral("The file \"%1\" isn't an import plugin.").arg(loader.fileName())
                   : withFullStop(
                       QStringLiteral("The plugin can't be loaded: %1").arg(loader.errorString())));
        return Failure;
    }
    std::signal(SIGINT, onInterrupt);
    const int status = importAll(*prototype, options);
    return flushOutput() ? status : Failure;
}

} // namespace

int main(int argc, char *argv[])
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    // An application with dialogs needs a display, so there is one only if a dialog is asked for.
    CommandLine commandLine;
    {
        const QCoreApplication application(argc, argv);
        commandLine = parseCommandLine(QCoreApplication::arguments());
        if (commandLine.exitStatus)
            return *commandLine.exitStatus;
        if (!commandLine.options.ask)
            return runProgram(commandLine.options);
    }
    if (!hasDisplay()) {
        report(QStringLiteral("The option --ask needs a display for its dialog."));
        return Failure;
    }
    const QApplication application(argc, argv);
    return runProgram(commandLine.options);
}
