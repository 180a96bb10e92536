// Converts runs and libraries between .cdf files and those that other software takes.

#include "convertoptions.h"
#include "fileconversion.h"
#include "interruption.h"
#include "manyfiles.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QCoreApplication>

#include <optional>
#include <vector>

namespace {

// The library that reads mzML crashes on some damaged files, so a process of its own reads each.
bool wantsProcesses(const ConvertOptions &options)
{
    const bool isProcessOfOne = !options.part.isNull();
    return !isProcessOfOne
        && (options.pairs.size() > 1 || isMzMlOrMzXml(formatOfName(options.pairs.front().input)));
}

} // namespace

int main(int argc, char **argv)
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    const QCoreApplication application(argc, argv);
    ConvertOptions options;
    const std::optional<int> early = parseCommandLine(QCoreApplication::arguments(), &options);
    if (early)
        return *early;
    const bool isForOthers = wantsProcesses(options);
    // A process that is alone says what the terminal is to know.
    watchInterruptions(isForOthers && options.pairs.size() == 1 ? InterruptionWord::Unsaid
                                                                : InterruptionWord::Said);
    const bool isDone = isForOthers ? convertFiles(options) : convertFile(options.pairs.front(), options);
    return isDone && !hasLostReports() ? Success : Failure;
}
