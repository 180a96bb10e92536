// Reads all points of a run into two arrays, as the Python package does, and prints the best time in
// seconds: bench_points FILE
#include "messageloggerinterface.h"
#include "msrun.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

namespace {

double secondsOfReading(const MsRun &run)
{
    const auto start = std::chrono::steady_clock::now();
    const std::unique_ptr<float[]> masses(new float[std::size_t(run.pointCount())]);
    const std::unique_ptr<float[]> intensities(new float[std::size_t(run.pointCount())]);
    std::size_t count = 0;
    for (const MsSpectrum &spectrum : run) {
        if (spectrum.size() == 0)
            continue;
        std::copy_n(spectrum.storedMasses(), spectrum.size(), masses.get() + count);
        std::copy_n(spectrum.storedIntensities(), spectrum.size(), intensities.get() + count);
        count += std::size_t(spectrum.size());
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char **argv)
{
    MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
    const MsRun run(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (!run.isOpen() || !run.hasStoredMasses() || !run.hasStoredIntensities())
        return 1;
    double best = secondsOfReading(run);
    for (int i = 0; i < 6; ++i)
        best = std::min(best, secondsOfReading(run));
    std::printf("%.6f\n", best);
    return 0;
}
