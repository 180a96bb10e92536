// Plays the host: imports files through the plugin and shows what a host would receive.

#include "display.h"
#include "fileimport.h"
#include "importjson.h"
#include "importoptions.h"
#include "importplugin.h"
#include "interruption.h"
#include "outputfile.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QApplication>
#include <QCoreApplication>
#include <QString>

#include <optional>

namespace {

// Moves the JSON to its place, if there is any. Returns false, after a report, if it can't be.
bool finishJson(ImportJson &json, OutputFile &output)
{
    if (!json.hasFiles() && !json.hasFailed() && !output.isDirect()) {
        report(QStringLiteral("The file \"%1\" was not written, as no file was imported.")
                   .arg(output.place()));
        return true;
    }
    const bool isWritten = json.finish() && output.commit();
    if (!isWritten)
        report(output.errorText());
    return isWritten;
}

int importAll(DVImportAnalysisInterface &prototype, const ImportOptions &options)
{
    OutputFile output(options.json, options.existing);
    ImportJson json(output);
    const bool writesJson = !options.json.isEmpty();
    bool complete = !writesJson || output.open();
    int done = 0;
    for (const QString &file : options.files) {
        if (json.hasFailed() || isInterrupted())
            break;
        FileImport import(prototype, options, writesJson ? &json : nullptr, file);
        complete = import.run() && complete;
        ++done;
    }
    if (writesJson)
        complete = finishJson(json, output) && complete;
    return reportFilesLeft(done, options.files.size()) && complete ? Success : Failure;
}

int runProgram(const ImportOptions &options)
{
    ImportPlugin plugin;
    DVImportAnalysisInterface *prototype = plugin.prototype();
    if (!prototype) {
        report(plugin.fault());
        return Failure;
    }
    const int status = importAll(*prototype, options);
    return flushOutput() && !hasLostReports() ? status : Failure;
}

} // namespace

int main(int argc, char *argv[])
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    watchInterruptions(); // first of all: a plugin takes its time to load
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
    if (!canOpenDisplay(argc, argv)) {
        report(
            QStringLiteral("The option --ask needs a display for its dialog, and none can be opened."));
        return Failure;
    }
    const QApplication application(argc, argv);
    return runProgram(commandLine.options);
}
