#include "dvimportanalysisinterface.h"

#include "dvheader.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace {

// Stands in where the caller has no receiver.
class NoReceiver : public DVImportReceiver
{
public:
    void analysisStarted(const DVHeader &, const float *, int) override { }
    void scanImported(int, double, double, int, const float *, const unsigned short *) override { }
    void progressChanged(int, int) override { }
};

} // namespace

DVImportAnalysisInterface::DVImportAnalysisInterface() = default;

DVImportAnalysisInterface::~DVImportAnalysisInterface() = default;

bool DVImportAnalysisInterface::import(const QString &name, const QString &, const QString &,
                                       TFileBuffer *)
{
    try {
        return run();
    } catch (const std::bad_alloc &) {
        MessageLoggerInterface::Error(
            QStringLiteral("There isn't enough memory to import the file <b>%1</b>.")
                .arg(name.toHtmlEscaped()),
            nullptr);
        return false;
    }
}

bool DVImportAnalysisInterface::run()
{
    resetCanceled(); // a Cancel before the run isn't meant for it
    header = nullptr;
    // Frees the header whatever way the run ends.
    struct Ending {
        DVHeader *&header;
        ~Ending() { delete std::exchange(header, nullptr); }
    } const ending{header};
    if (!importHeader())
        return false;

    float *masses = nullptr;
    const int tableSize = importMassTable(&masses);
    const std::unique_ptr<float[]> table(masses);

    NoReceiver nobody;
    DVImportReceiver &target = receiver ? *receiver : nobody;
    target.analysisStarted(*header, table.get(), tableSize);

    // Room for any scan. It isn't cleared, as the system takes no memory for pages that nobody touches.
    const std::unique_ptr<float[]> abundances(new float[scanCapacity]);
    const std::unique_ptr<unsigned short[]> positions(new unsigned short[scanCapacity]);
    const int count = header->getNbScans();
    const int step = count / 100 + (count % 100 != 0);
    for (int scan = 0; scan < count; ++scan) {
        if (isCanceled())
            return false;
        double time = 0.0;
        int points = 0;
        const double total =
            importScan(scan, &time, tableSize, table.get(), &points, abundances.get(), positions.get());
        target.scanImported(scan, time, total, points, abundances.get(), positions.get());
        const int done = scan + 1;
        if (done % step == 0 || done == count)
            target.progressChanged(done, count);
    }
    return true;
}

float DVImportAnalysisInterface::modulationPeriod()
{
    return modulation;
}

void DVImportAnalysisInterface::setReceiver(DVImportReceiver *newReceiver)
{
    receiver = newReceiver;
}

void DVImportAnalysisInterface::setModulation(float length)
{
    modulation = length;
}

void DVImportAnalysisInterface::copyInterface(PluginInterface *source)
{
    const auto *analysis = dynamic_cast<DVImportAnalysisInterface *>(source);
    if (!analysis)
        return;
    copyImportState(*analysis);
    receiver = analysis->receiver;
}

unsigned short DVImportAnalysisInterface::findTablePosition(float mass, float *table, int size,
                                                            bool *found)
{
    const float *const end = table + std::max(size, 0);
    const float *place = std::lower_bound<const float *>(table, end, mass);
    *found =
        place != end && *place == mass && place - table <= std::numeric_limits<unsigned short>::max();
    return *found ? static_cast<unsigned short>(place - table) : 0;
}
