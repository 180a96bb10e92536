#include "runmodulation.h"

#include "interruption.h"

#include <optional>

double modulationOf(const MsRun &run, const ConversionOptions &options, ConversionLog *log)
{
    if (options.modulation)
        return *options.modulation;
    if (run.kind() == MsRun::Kind::Library || !run.hasSeconds())
        return 0.0;
    const MsModulation guess = run.modulation([](double) { return !isInterrupted(); });
    if (!guess.isConfident)
        return 0.0;
    log->note(QStringLiteral(
                  "The run is taken for one that is modulated every %1 s; the option --modulation takes "
                  "another length, or 0 for a plain run.")
                  .arg(guess.seconds));
    return guess.seconds;
}
