// A run that is read in the background. Its calls return at once; what they ask for comes with a signal.
#ifndef RUNMODEL_H
#define RUNMODEL_H

#include "hostscans.h"
#include "readingthread.h"
#include "rundata.h"

#include <QObject>

#include <functional>
#include <map>
#include <memory>

class RunModel : public QObject
{
    Q_OBJECT

public:
    enum class State { Opening, Refused, Open };

    // Opens the file of that name. `thread` has to outlive the object.
    RunModel(ReadingThread &thread, const QString &fileName, QObject *parent = nullptr);
    // Gives up what is still being read.
    ~RunModel() override;

    State state() const { return state_; }
    QString fileName() const { return fileName_; }
    QString shownName() const; // without its folder

    // The sentence that says why the file was refused.
    QString refusal() const { return refusal_; }

    const RunSummary &summary() const { return *summary_; }
    const ScanSums &sums() const { return sums_; } // empty until sumsRead
    // A number for each scan; empty until known. The summed totals where there are no stored ones.
    const std::vector<double> &trace(TraceSource source) const;
    // Returns the scan where that trace is highest; the first one where no number is known, -1 without
    // scans.
    qint32 highestScan(TraceSource source) const;

    const RunDoubts &doubts() const { return doubts_; }
    const InfoNode &attributes() const { return attributes_; } // empty until attributesRead
    const std::vector<MsCompound> &compounds() const { return compounds_; }

    // The times of the scans in seconds; empty where the file counts in another unit.
    std::vector<double> seconds() const;
    // What is guessed of the modulation, by the stored totals or else by the summed ones.
    const MsModulation &modulation() const;

    double shownTime(qint32 scan) const { return summary_->shownTime(scan); }
    // Returns the scan whose shown time is nearest; -1 where there is none.
    qint32 scanAt(double shownTime) const;

    // Ask for a scan, for the average of a range of shown times less that of another one, and for traces.
    // A newer request of a kind replaces the older one.
    void requestSpectrum(qint32 scan);
    void requestAverage(const MsInterval &times, const std::optional<MsInterval> &background);
    // Asks for a scan as the host gets it.
    void requestHostScan(qint32 scan);
    void requestTraces(const std::vector<ExtractedTrace> &wanted);

    // Reads all scans for the sums, and the compounds of a library, as it happens without asking once the
    // file is open. What is known already isn't read again.
    void requestRest();

    // Whether long work is under way, and the call that ends all of it.
    bool isBusy() const { return !tickets_.empty(); }
    void cancel();

signals:
    void opened();
    void refused(const QString &sentence);
    void attributesRead();
    void sumsRead();
    void doubtsChanged();
    void compoundsRead();
    void spectrumRead(const SpectrumData &spectrum);
    void tracesRead(const std::vector<ExtractedTrace> &traces);
    void hostScanRead(qint32 scan, const HostScan &hostScan);
    void progressed(const QString &what, double part); // 0 to 1
    void idle(bool wasCancelled);                      // long work has come to its end
    void failed(const QString &sentence);              // work that couldn't be done

private:
    enum class Kind { Sums, Traces, Average, Compounds, Host };
    struct Shared;
    using Progress = MsRun::Progress;

    void open();
    void readAttributes();
    void readSums();
    void readCompounds();
    void takeSummary(RunSummary summary);

    // Has `read` done on the thread with the run and a progress, which it has to ask. What it returns is
    // called back here unless the work was cancelled.
    using Answer = std::function<void()>;
    void startLong(Kind kind, const QString &what,
                   std::function<Answer(const MsRun &, const Progress &)> read);
    void finishLong(Kind kind, const Ticket &ticket, const Answer &done, const QString &failure);
    void stop(Kind kind);

    ReadingThread &thread_;
    const QString fileName_;
    std::shared_ptr<Shared> shared_;
    State state_ = State::Opening;
    QString refusal_;
    // The reading thread has it, too; it doesn't change once the file is open.
    std::shared_ptr<const RunSummary> summary_ = std::make_shared<const RunSummary>();
    std::vector<std::pair<double, qint32>> scansByTime_;
    ScanSums sums_;
    RunDoubts doubts_;
    InfoNode attributes_;
    std::vector<MsCompound> compounds_;
    std::map<Kind, Ticket> tickets_;
};

#endif // RUNMODEL_H
