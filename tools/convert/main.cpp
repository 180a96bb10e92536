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

int main(int argc, char **argv)
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    const QCoreApplication application(argc, argv);
    ConvertOptions options;
    const std::optional<int> early = parseCommandLine(QCoreApplication::arguments(), &options);
    if (early)
        return *early;
    watchInterruptions();
    const bool isDone =
        options.pairs.size() == 1 ? convertFile(options.pairs.front(), options) : convertFiles(options);
    return isDone && !hasLostReports() ? Success : Failure;
}
