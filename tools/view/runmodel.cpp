#include "runmodel.h"

#include "infogather.h"
#include "msinput.h"
#include "namecodec.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double secondsOfMinute = 60.0;

// Beyond this, plots can't draw a number.
constexpr double largestDrawn = 1e200;

// How many compounds of a library are listed. A file can claim any number.
constexpr qint32 mostCompounds = 200000;

// Masses of centroids that differ by less are one mass in an average, as scans scatter.
constexpr double centroidWidth = 0.5;

double drawable(double number)
{
    return std::abs(number) <= largestDrawn ? number : unknown;
}

bool isSome(const std::vector<double> &numbers)
{
    return std::any_of(numbers.begin(), numbers.end(),
                       [](double number) { return std::isfinite(number); });
}

RunSummary summaryOf(const MsRun &run)
{
    RunSummary summary;
    summary.kind = run.kind();
    summary.size = run.size();
    summary.isProfile = run.facts().spectra == MsRunFacts::Spectra::Profile;
    summary.title = run.facts().title;
    if (run.kind() == MsRun::Kind::Library)
        return summary;
    summary.timeUnit = run.hasSeconds() ? secondsOfMinute : 1.0;
    summary.times = run.times();
    for (double &time : summary.times)
        time = drawable(time / summary.timeUnit);
    summary.storedTotals = run.storedTotals();
    std::transform(summary.storedTotals.begin(), summary.storedTotals.end(), summary.storedTotals.begin(),
                   drawable);
    summary.hasTimes = isSome(summary.times);
    summary.hasStored = isSome(summary.storedTotals);
    if (summary.hasStored && run.hasSeconds())
        summary.modulation = run.modulation();
    summary.timeLabel = QStringLiteral("Scan");
    if (summary.hasTimes && run.hasSeconds())
        summary.timeLabel = QStringLiteral("Time (min)");
    else if (summary.hasTimes)
        summary.timeLabel = QStringLiteral("Time as stored (%1)").arg(run.facts().timeUnits.text);
    return summary;
}

// Returns nothing where it is stopped.
ScanSums sumsOf(const MsRun &run, const MsRun::Progress &progress)
{
    ScanSums sums;
    sums.totals.reserve(std::size_t(run.size()));
    sums.basePeaks.reserve(std::size_t(run.size()));
    for (const MsSpectrum &scan : run) {
        constexpr std::size_t often = 256;
        if (sums.totals.size() % often == 0 && !progress(double(sums.totals.size()) / run.size()))
            return {};
        sums.totals.push_back(drawable(scan.summedTotal()));
        const double *first = scan.intensities();
        const double largest = scan.size() > 0 ? *std::max_element(first, first + scan.size())
            : scan.isRead()                    ? 0.0
                                               : unknown;
        sums.basePeaks.push_back(drawable(largest));
    }
    return sums;
}

// Takes `background` off the peaks; what falls to zero or below is left out. Masses nearer than `width`
// are the same.
void subtract(MsPeaks background, double width, MsPeaks *peaks)
{
    MsPeaks left;
    std::size_t first = 0;
    for (std::size_t i = 0; i < peaks->masses.size(); ++i) {
        const double mass = peaks->masses[i];
        while (first < background.masses.size() && background.masses[first] < mass - width)
            ++first;
        double intensity = peaks->intensities[i];
        for (std::size_t j = first; j < background.masses.size() && background.masses[j] <= mass + width;
             ++j) {
            const double taken = std::min(intensity, background.intensities[j]);
            background.intensities[j] -= taken;
            intensity -= taken;
        }
        if (intensity > 0.0) {
            left.masses.push_back(mass);
            left.intensities.push_back(intensity);
        }
    }
    *peaks = std::move(left);
}

bool isGiven(const MsInterval &interval)
{
    return std::isfinite(interval.from) && std::isfinite(interval.to);
}

QString timeText(double time, const RunSummary &summary)
{
    if (!summary.hasTimes)
        return QStringLiteral("scan %1").arg(std::round(time));
    const QString number = QString::number(time, 'f', 3);
    return summary.timeUnit == secondsOfMinute ? number + QStringLiteral(" min") : number;
}

QString rangeText(const MsInterval &times, const RunSummary &summary)
{
    return QStringLiteral("%1 to %2").arg(timeText(times.from, summary), timeText(times.to, summary));
}

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
    summary_ = std::move(summary);
    for (qint32 scan = 0; scan < qint32(summary_.times.size()); ++scan) {
        const double time = shownTime(scan);
        if (std::isfinite(time))
            scansByTime_.emplace_back(time, scan);
    }
    std::sort(scansByTime_.begin(), scansByTime_.end());
    state_ = State::Open;
    emit opened();
    readAttributes();
    if (summary_.kind == MsRun::Kind::Library)
        readCompounds();
    if (summary_.kind != MsRun::Kind::Trace)
        requestSums();
}

std::vector<double> RunModel::seconds() const
{
    std::vector<double> seconds;
    if (summary_.timeUnit == secondsOfMinute)
        seconds = summary_.times;
    for (double &time : seconds)
        time *= summary_.timeUnit;
    return seconds;
}

const MsModulation &RunModel::modulation() const
{
    return summary_.hasStored || sums_.totals.empty() ? summary_.modulation : sums_.modulation;
}

double RunModel::shownTime(qint32 scan) const
{
    if (scan < 0 || scan >= summary_.size)
        return unknown;
    return summary_.hasTimes ? summary_.times[std::size_t(scan)] : double(scan);
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

void RunModel::requestSums()
{
    startLong(Kind::Sums, QStringLiteral("Reading all scans"),
              [this](const MsRun &run, const Progress &progress) {
                  auto sums = std::make_shared<ScanSums>(sumsOf(run, progress));
                  if (run.hasSeconds())
                      sums->modulation = ms_guess_modulation(run.times(), sums->totals);
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
    const double time = shownTime(scan);
    const QString at = summary_.hasTimes && std::isfinite(time)
        ? QStringLiteral(" at %1").arg(timeText(time, summary_))
        : QString();
    const bool isLibrary = summary_.kind == MsRun::Kind::Library;
    thread_.postQuick([=, isProfile = summary_.isProfile, shared = shared_] {
        if (shared->isGone || shared->newestSpectrum != request)
            return; // a newer one waits
        auto data = std::make_shared<SpectrumData>();
        data->scan = scan;
        data->time = time;
        data->isProfile = isProfile;
        data->title = QStringLiteral("Scan %1%2").arg(scan).arg(at);
        if (isLibrary) {
            const QString name = shared->run->compound(scan).name;
            data->title = name.isEmpty() ? QStringLiteral("Entry %1").arg(scan) : name;
        }
        try {
            const MsSpectrum spectrum = shared->run->spectrum(scan);
            if (!spectrum.isRead())
                data->failure = QStringLiteral("Scan %1 can't be read: %2.")
                                    .arg(QString::number(scan), spectrum.failure());
            const double *masses = spectrum.masses();
            const double *intensities = spectrum.intensities();
            for (qint32 i = 0; i < spectrum.size(); ++i) {
                if (std::abs(masses[i]) > largestDrawn || std::abs(intensities[i]) > largestDrawn)
                    continue;
                data->masses.push_back(masses[i]);
                data->intensities.push_back(intensities[i]);
            }
        } catch (const std::bad_alloc &) {
            data->failure = QStringLiteral("There is not enough memory for scan %1.").arg(scan);
        }
        answer(self, [this, data, request] {
            if (shared_->newestSpectrum == request)
                emit spectrumRead(*data);
        });
    });
}

void RunModel::requestAverage(const MsInterval &times, const MsInterval &background)
{
    if (!summary_.hasTimes) {
        emit failed(
            QStringLiteral("The run has no times, so its scans can't be averaged over a range of them."));
        return;
    }
    const quint64 request = ++shared_->newestSpectrum;
    const auto inRun = [unit = summary_.timeUnit](const MsInterval &shown) {
        return MsInterval{shown.from * unit, shown.to * unit};
    };
    const bool isLess = isGiven(background);
    const double width = summary_.isProfile ? 0.0 : centroidWidth;
    QString title = QStringLiteral("Average of %1").arg(rangeText(times, summary_));
    if (isLess)
        title += QStringLiteral(", less the background of %1; what fell below zero is left out")
                     .arg(rangeText(background, summary_));
    startLong(Kind::Average, QStringLiteral("Averaging scans"),
              [=, isProfile = summary_.isProfile](const MsRun &run, const Progress &progress) -> Answer {
                  auto data = std::make_shared<SpectrumData>();
                  MsPeaks peaks = run.averaged(inRun(times), width, progress);
                  if (isLess)
                      subtract(run.averaged(inRun(background), width, progress), width / 2.0, &peaks);
                  data->title = title;
                  data->isProfile = isProfile;
                  data->masses = std::move(peaks.masses);
                  data->intensities = std::move(peaks.intensities);
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
