#include "dvimportanalysisinterface.h"

#include "dvheader.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace {

// A file can claim thousands of millions of scans in a few bytes. After so many in a row without any
// data nothing more is expected of it.
constexpr int mostEmptyScans = 1 << 20;

// The scans of a file may share their points, so that a few bytes hold days of them. No packing in use
// makes more than 1,100 bytes of one.
qint64 mostPoints(const QString &path)
{
    return 1100 * QFileInfo(path).size() + (1 << 24);
}

// Knows when a run is to be given up.
class Patience
{
public:
    // Any number of empty scans is borne of a trace, which is in memory already.
    Patience(const QString &path, bool isTrace) : bearsEmpty(isTrace), pointsLeft(mostPoints(path)) { }

    // Null, or why, after a scan.
    QString complaint(int points, double total)
    {
        empty = points == 0 && total == 0.0 && !bearsEmpty ? empty + 1 : 0;
        pointsLeft -= points;
        if (empty > mostEmptyScans)
            return QStringLiteral("more than %1 scans in a row are empty").arg(mostEmptyScans);
        if (pointsLeft < 0)
            return QStringLiteral("its scans have more points than the file can hold");
        return QString();
    }

private:
    bool bearsEmpty;
    int empty = 0;
    qint64 pointsLeft;
};

// Receives what nobody wants.
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
        return run(name);
    } catch (const std::bad_alloc &) {
        MessageLoggerInterface::Error(
            QStringLiteral("There isn't enough memory to import <b>%1</b>").arg(name.toHtmlEscaped()),
            nullptr);
        return false;
    }
}

bool DVImportAnalysisInterface::run(const QString &name)
{
    header = nullptr;
    // Whatever way the run ends: a later one begins afresh.
    struct Ending {
        DVImportAnalysisInterface *self;
        ~Ending()
        {
            delete std::exchange(self->header, nullptr);
            self->resetCanceled();
        }
    } const ending{this};
    if (!importHeader())
        return false;

    float *masses = nullptr;
    const int tableSize = importMassTable(&masses);
    const std::unique_ptr<float[]> table(masses);

    NoReceiver nobody;
    DVImportReceiver &target = receiver ? *receiver : nobody;
    target.analysisStarted(*header, table.get(), tableSize);

    // Room for any scan, uncleared: of memory that nobody touches the system makes no pages.
    const std::unique_ptr<float[]> abundances(new float[scanCapacity]);
    const std::unique_ptr<unsigned short[]> positions(new unsigned short[scanCapacity]);
    const int count = header->getNbScans();
    const int step = count / 100 + (count % 100 != 0);
    // A plugin sets the detector of a trace only where it has one.
    Patience patience(getFileName(), tableSize == 0 && header->isSet(DVHeader::DetectorType));
    for (int scan = 0; scan < count; ++scan) {
        if (isCanceled())
            return false;
        double time = 0.0;
        int points = 0;
        const double total =
            importScan(scan, &time, tableSize, table.get(), &points, abundances.get(), positions.get());
        const QString complaint = patience.complaint(points, total);
        if (!complaint.isNull()) {
            MessageLoggerInterface::Error(QStringLiteral("The import of <b>%1</b> was given up: %2")
                                              .arg(name.toHtmlEscaped(), complaint),
                                          nullptr);
            return false;
        }
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
