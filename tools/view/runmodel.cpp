#include "runmodel.h"

#include "infogather.h"
#include "msinput.h"
#include "namecodec.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <new>

namespace {

constexpr double secondsOfMinute = 60.0;

// How many compounds of a library are listed. A file can claim any number.
constexpr qint32 mostCompounds = 200000;

} // namespace

// What belongs to the reading thread: the run is opened, read and closed there.
struct RunModel::Shared {
    std::unique_ptr<MsRun> run;
    std::unique_ptr<HostScans> host; // once asked for
    std::atomic<quint64> newestSpectrum = 0;
    std::atomic<bool> isGone = false;
};

namespace {

// Has a call made on the window's thread, if the model is still there then.
template <class Call> void answer(const QPointer<RunModel> &model, Call call)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [model, call = std::move(call)] {
            if (model)
                call();
        },
        Qt::QueuedConnection);
}

} // namespace

RunModel::RunModel(ReadingThread &thread, const QString &fileName, QObject *parent)
    : QObject(parent), thread_(thread), fileName_(fileName), shared_(std::make_shared<Shared>())
{
    open();
}

RunModel::~RunModel()
{
    for (auto &ticket : tickets_)
        ticket.second.cancel();
    shared_->isGone = true;
    // Behind the long work that may still use the run.
    thread_.postLong([shared = std::move(shared_)] {
        shared->run.reset();
        shared->host.reset();
    });
}

QString RunModel::shownName() const
{
    return ::shownName(QFileInfo(fileName_).fileName());
}

void RunModel::open()
{
    const QPointer<RunModel> self(this);
    thread_.postLong([this, self, shared = shared_, name = fileName_] {
        if (shared->isGone)
            return;
        QString error;
        auto summary = std::make_shared<RunSummary>();
        auto doubts = std::make_shared<RunDoubts>();
        try {
            auto run = std::make_unique<MsRun>(name);
            error = run->error();
            if (run->isOpen()) {
                *summary = summaryOf(*run);
                doubts->list = run->doubts();
                shared->run = std::move(run);
            }
        } catch (const std::bad_alloc &) {
            error = QStringLiteral("There is not enough memory to open the file \"%1\".").arg(name);
        }
        answer(self, [this, error, summary, doubts] {
            if (error.isNull()) {
                doubts_ = *doubts;
                takeSummary(std::move(*summary));
                return;
            }
            state_ = State::Refused;
            refusal_ = ::shownName(error);
            emit refused(refusal_);
        });
    });
}

void RunModel::takeSummary(RunSummary summary)
{
    summary_ = std::make_shared<const RunSummary>(std::move(summary));
    for (qint32 scan = 0; scan < qint32(summary_->times.size()); ++scan) {
        const double time = shownTime(scan);
        if (std::isfinite(time))
            scansByTime_.emplace_back(time, scan);
    }
    std::sort(scansByTime_.begin(), scansByTime_.end());
    state_ = State::Open;
    emit opened();
    readAttributes();
    requestRest();
}

void RunModel::requestRest()
{
    const auto isUnderWay = [this](Kind kind) { return tickets_.count(kind) > 0; };
    if (summary_->kind == MsRun::Kind::Library && compounds_.empty() && !isUnderWay(Kind::Compounds))
        readCompounds();
    if (summary_->kind != MsRun::Kind::Trace && sums_.totals.empty() && !isUnderWay(Kind::Sums))
        readSums();
}

std::vector<double> RunModel::seconds() const
{
    std::vector<double> seconds;
    if (summary_->timeUnit == secondsOfMinute)
        seconds = summary_->times;
    for (double &time : seconds)
        time *= summary_->timeUnit;
    return seconds;
}

const MsModulation &RunModel::modulation() const
{
    return summary_->hasStored || sums_.totals.empty() ? summary_->modulation : sums_.modulation;
}

const std::vector<double> &RunModel::trace(TraceSource source) const
{
    if (source == TraceSource::BasePeak)
        return sums_.basePeaks;
    return source == TraceSource::Stored && summary_->hasStored ? summary_->storedTotals : sums_.totals;
}

qint32 RunModel::highestScan(TraceSource source) const
{
    const std::vector<double> &values = trace(source);
    qint32 highest = summary_->size > 0 ? 0 : -1;
    for (std::size_t scan = 0; scan < values.size(); ++scan) {
        const double best = values[std::size_t(highest)];
        if (values[scan] > best || (std::isnan(best) && !std::isnan(values[scan])))
            highest = qint32(scan);
    }
    return highest;
}

qint32 RunModel::scanAt(double shownTime) const
{
    if (scansByTime_.empty() || std::isnan(shownTime))
        return -1;
    const auto after =
        std::lower_bound(scansByTime_.begin(), scansByTime_.end(), std::make_pair(shownTime, -1));
    if (after == scansByTime_.begin())
        return after->second;
    const auto before = std::prev(after);
    const bool isBefore =
        after == scansByTime_.end() || shownTime - before->first <= after->first - shownTime;
    if (!isBefore)
        return after->second;
    return std::lower_bound(scansByTime_.begin(), scansByTime_.end(), std::make_pair(before->first, -1))
        ->second;
}

void RunModel::readAttributes()
{
    const QPointer<RunModel> self(this);
    thread_.postLong([this, self, shared = shared_, name = fileName_] {
        if (shared->isGone)
            return;
        auto attributes = std::make_shared<InfoNode>();
        try {
            const MsFile file = openInput(name);
            InfoOptions options;
            options.readsScans = false;
            options.lacking = Lacking::Listed;
            if (file)
                *attributes = gatherInfo(file, name, options).report;
        } catch (const std::bad_alloc &) {
            attributes->addValue(QStringLiteral("problem"),
                                 QStringLiteral("There is not enough memory."));
        }
        answer(self, [this, attributes] {
            attributes_ = std::move(*attributes);
            emit attributesRead();
        });
    });
}

void RunModel::startLong(Kind kind, const QString &what,
                         std::function<Answer(const MsRun &, const Progress &)> read)
{
    if (state_ != State::Open)
        return;
    tickets_[kind].cancel(); // the older one of the kind
    const Ticket ticket;
    tickets_[kind] = ticket;
    emit progressed(what, 0.0);
    const QPointer<RunModel> self(this);
    thread_.postLong([this, self, shared = shared_, kind, ticket, what, read = std::move(read)] {
        const Progress progress = [&](double part) {
            thread_.catchUp();
            answer(self, [this, what, part, ticket] {
                if (!ticket.isCancelled())
                    emit progressed(what, part);
            });
            return !ticket.isCancelled();
        };
        Answer done;
        QString failure;
        try {
            if (!ticket.isCancelled())
                done = read(*shared->run, progress);
        } catch (const std::bad_alloc &) {
            failure = QStringLiteral("There is not enough memory for this.");
        }
        answer(self, [this, kind, ticket, done, failure] { finishLong(kind, ticket, done, failure); });
    });
}

void RunModel::finishLong(Kind kind, const Ticket &ticket, const Answer &done, const QString &failure)
{
    if (ticket.isCancelled()) // who cancelled it has taken its ticket away
        return;
    tickets_.erase(kind);
    if (done)
        done();
    if (!failure.isNull())
        emit failed(failure);
    if (tickets_.empty())
        emit idle(false);
}

void RunModel::stop(Kind kind)
{
    const auto found = tickets_.find(kind);
    if (found == tickets_.end())
        return;
    found->second.cancel();
    tickets_.erase(found);
    if (tickets_.empty())
        emit idle(false);
}

void RunModel::cancel()
{
    if (tickets_.empty())
        return;
    for (auto &ticket : tickets_)
        ticket.second.cancel();
    tickets_.clear();
    emit idle(true);
}

void RunModel::readSums()
{
    startLong(Kind::Sums, QStringLiteral("Reading all scans"),
              [this](const MsRun &run, const Progress &progress) {
                  auto sums = std::make_shared<ScanSums>(sumsOf(run, progress));
                  auto doubts = std::make_shared<RunDoubts>();
                  doubts->list = run.doubts();
                  doubts->isSettled = true;
                  return [this, sums, doubts] {
                      sums_ = std::move(*sums);
                      doubts_ = std::move(*doubts);
                      emit sumsRead();
                      emit doubtsChanged();
                  };
              });
}

void RunModel::readCompounds()
{
    startLong(Kind::Compounds, QStringLiteral("Reading compounds"),
              [this](const MsRun &run, const Progress &progress) -> Answer {
                  auto compounds = std::make_shared<std::vector<MsCompound>>();
                  const qint32 count = std::min(run.size(), mostCompounds);
                  for (qint32 entry = 0; entry < count; ++entry) {
                      if (entry % 64 == 0 && !progress(double(entry) / count))
                          return {};
                      compounds->push_back(run.compound(entry));
                  }
                  return [this, compounds] {
                      compounds_ = std::move(*compounds);
                      emit compoundsRead();
                  };
              });
}

void RunModel::requestSpectrum(qint32 scan)
{
    if (state_ != State::Open)
        return;
    stop(Kind::Average);
    const quint64 request = ++shared_->newestSpectrum;
    const QPointer<RunModel> self(this);
    thread_.postQuick([this, self, scan, request, shared = shared_, summary = summary_] {
        if (shared->isGone || shared->newestSpectrum != request)
            return; // a newer one waits
        auto data = std::make_shared<SpectrumData>();
        try {
            *data = spectrumOf(*shared->run, scan, *summary);
        } catch (const std::bad_alloc &) {
            data->scan = scan;
            data->failure = QStringLiteral("There is not enough memory for scan %1.").arg(scan);
        }
        answer(self, [this, data, request] {
            if (shared_->newestSpectrum == request)
                emit spectrumRead(*data);
        });
    });
}

void RunModel::requestAverage(const MsInterval &times, const std::optional<MsInterval> &background)
{
    if (!summary().hasTimes) {
        emit failed(
            QStringLiteral("The run has no times, so its scans can't be averaged over a range of them."));
        return;
    }
    const quint64 request = ++shared_->newestSpectrum;
    startLong(Kind::Average, QStringLiteral("Averaging scans"),
              [this, times, background, request, summary = summary_](const MsRun &run,
                                                                     const Progress &progress) -> Answer {
                  auto data = std::make_shared<SpectrumData>(
                      averageOf(run, times, background, *summary, progress));
                  return [this, data, request] {
                      if (shared_->newestSpectrum == request)
                          emit spectrumRead(*data);
                  };
              });
}

void RunModel::requestTraces(const std::vector<ExtractedTrace> &wanted)
{
    if (wanted.empty()) {
        stop(Kind::Traces);
        emit tracesRead({});
        return;
    }
    startLong(Kind::Traces, QStringLiteral("Extracting traces"),
              [this, wanted](const MsRun &run, const Progress &progress) -> Answer {
                  std::vector<MsInterval> windows;
                  for (const ExtractedTrace &one : wanted)
                      windows.push_back(one.masses);
                  std::vector<std::vector<double>> values = run.extractedTraces(windows, progress);
                  if (values.size() != wanted.size())
                      return {};
                  auto traces = std::make_shared<std::vector<ExtractedTrace>>(wanted);
                  for (std::size_t i = 0; i < values.size(); ++i)
                      (*traces)[i].values = std::move(values[i]);
                  return [this, traces] { emit tracesRead(*traces); };
              });
}

void RunModel::requestHostScan(qint32 scan)
{
    startLong(Kind::Host, QStringLiteral("Importing as the host does"),
              [this, scan, shared = shared_, name = fileName_](const MsRun &,
                                                               const Progress &progress) -> Answer {
                  if (!shared->host)
                      shared->host = std::make_unique<HostScans>(name);
                  auto found = std::make_shared<HostScan>(shared->host->scan(scan, progress));
                  return [this, scan, found] { emit hostScanRead(scan, *found); };
              });
}
