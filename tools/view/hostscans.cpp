#include "hostscans.h"

#include "debugger.h"
#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "messageredirection.h"
#include "messagetext.h"
#include "namecodec.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace {

constexpr qint32 nearby = 200; // scans that are kept at each side of the wanted one
constexpr int often = 256;     // scans from one word of the progress to the next

} // namespace

// Keeps some scans of a run, and ends it behind them.
class HostScans::Keeper : public DVImportReceiver
{
public:
    Keeper(DVImportAnalysisInterface &run, qint32 first, qint32 last, const MsRun::Progress &progress)
        : run_(run), first_(first), last_(last), progress_(progress)
    {
    }

    void analysisStarted(const DVHeader &, const float *table, int tableSize) override
    {
        table_.assign(table, table + tableSize);
    }

    void scanImported(int scan, double, double, int pointCount, const float *abundances,
                      const unsigned short *positions) override
    {
        if (scan % often == 0 && !progress_(double(scan) / (last_ + 1)))
            run_.pBarCanceledSlot();
        if (scan >= first_ && scan <= last_) {
            HostScan &kept = scans_.emplace_back();
            for (int i = 0; i < pointCount; ++i) {
                kept.masses.push_back(double(table_[positions[i]]));
                kept.abundances.push_back(double(abundances[i]));
            }
        }
        if (scan >= last_)
            run_.pBarCanceledSlot();
    }

    void progressChanged(int, int) override { }

    bool hasTable() const { return !table_.empty(); }
    std::vector<HostScan> takeScans() { return std::move(scans_); }

private:
    DVImportAnalysisInterface &run_;
    const qint32 first_;
    const qint32 last_;
    const MsRun::Progress &progress_;
    std::vector<float> table_;
    std::vector<HostScan> scans_;
};

HostScans::HostScans(const QString &fileName) : fileName_(fileName)
{
}

void HostScans::import(qint32 number, const MsRun::Progress &progress)
{
    const Redirection<Debugger> account([](const QString &) {}); // the running account of the import
    kept_.clear();
    DVImportAnalysisInterface *prototype = plugin_.prototype();
    if (!prototype) {
        fault_ = plugin_.fault();
        return;
    }
    QString reason;
    if (!prototype->canImport(nullptr, fileName_, reason)) {
        fault_ = QStringLiteral("The host doesn't take the file \"%1\".").arg(shownName(fileName_));
        if (!reason.isEmpty())
            fault_ += QLatin1Char(' ') + withFullStop(plainText(reason));
        return;
    }
    const std::unique_ptr<DVImportAnalysisInterface> run(prototype->clone());
    first_ = std::max(number - nearby, 0);
    Keeper keeper(*run, first_, number + nearby, progress);
    run->setReceiver(&keeper);
    run->import(fileName_, QString(), QString(), nullptr);
    if (keeper.hasTable())
        kept_ = keeper.takeScans();
    else
        fault_ = QStringLiteral("The host gets this run as a trace, without masses.");
}

HostScan HostScans::scan(qint32 number, const MsRun::Progress &progress)
{
    const auto isKept = [&] { return number >= first_ && number < first_ + qint32(kept_.size()); };
    if (!isKept() && fault_.isNull())
        import(number, progress);
    if (isKept())
        return kept_[std::size_t(number - first_)];
    HostScan none;
    none.fault = fault_;
    return none;
}
