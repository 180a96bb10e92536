#include "manyfiles.h"

#include "countedtext_p.h"
#include "fileconversion.h"
#include "interruption.h"
#include "outputfile.h"
#include "progressbar.h"
#include "terminaltext.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int watchPeriod = 100; // ms between two looks for an interruption

class ManyFiles
{
public:
    explicit ManyFiles(const ConvertOptions &commandLine)
        : options(commandLine), isOne(commandLine.pairs.size() == 1),
          progress(commandLine.conversion.quiet || isOne ? ProgressBar::Mode::Hidden
                                                         : ProgressBar::Mode::OnTerminal)
    {
    }

    bool run()
    {
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [this] {
            if (isInterrupted())
                stop();
        });
        watch.start(watchPeriod);
        showProgress();
        for (int i = 0; i < options.jobs; ++i)
            startNext();
        if (running > 0)
            loop.exec();
        progress.clear();
        summarise();
        return failed.isEmpty() && done == int(options.pairs.size());
    }

private:
    struct Worker {
        QProcess process;
        const ConversionPair *pair;
        QByteArray part;
    };

    void startNext()
    {
        if (next == options.pairs.size() || isInterrupted())
            return;
        workers.push_back(std::make_unique<Worker>());
        Worker *worker = workers.back().get();
        worker->pair = &options.pairs[next++];
        worker->part = OutputFile(worker->pair->output, options.existing).makeTemporaryName();
        QStringList arguments = options.passedOptions;
        arguments << "--part=" + QFile::decodeName(worker->part) << "-o" << worker->pair->output << "--"
                  << worker->pair->input;
        QObject::connect(&worker->process, &QProcess::errorOccurred,
                         [this, worker](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart)
                                 end(worker, QStringLiteral("its process couldn't be started"));
                         });
        QObject::connect(
            &worker->process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished),
            [this, worker](int code, QProcess::ExitStatus status) {
                end(worker, status == QProcess::CrashExit ? whyCrashed(worker->pair->input) : QString(),
                    code);
            });
        ++running;
        // What it says is passed on when it ends, so that files don't mix, or at once where it is the
        // only one.
        if (isOne)
            worker->process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        worker->process.start(QCoreApplication::applicationFilePath(), arguments);
    }

    // A part of a sentence. A process that hears twice of an interruption ends so, too, which is said in
    // its place.
    static QString whyCrashed(const QString &input)
    {
        return isMzMlOrMzXml(formatOfName(input))
            ? QStringLiteral("its process was killed, or crashed on a damaged file")
            : QStringLiteral("its process was killed or crashed");
    }

    void end(Worker *worker, const QString &accident, int code = 1)
    {
        progress.clear();
        const QByteArray said = worker->process.readAllStandardError();
        std::fwrite(said.constData(), 1, std::size_t(said.size()), stderr);
        if (!accident.isNull()) {
            report(whyNotConverted(worker->pair->input, accident));
            // A process that is killed leaves its file behind.
            if (!worker->part.isEmpty())
                QFile::remove(QFile::decodeName(worker->part));
        }
        if (!accident.isNull() || code != 0)
            failed += worker->pair->input;
        ++done;
        --running;
        showProgress();
        startNext();
        if (running == 0)
            loop.quit();
    }

    void stop()
    {
        for (const auto &worker : workers) {
            if (worker->process.state() != QProcess::NotRunning)
                worker->process.terminate(); // it removes its file
        }
    }

    void showProgress() { progress.show(done, int(options.pairs.size())); }

    void summarise() const
    {
        const auto all = int(options.pairs.size());
        if (done < all)
            report(QStringLiteral("The program stopped before it came to %1 of %2 files.")
                       .arg(all - done)
                       .arg(all));
        if (isOne)
            return;
        if (!failed.isEmpty())
            report(ms_counted_text(
                "%1 of %2 files [was|were] not converted, or not in full: \"%3\".", failed.size(),
                {QString::number(failed.size()), QString::number(all), failed.join("\", \"")}));
        else if (done == all && !options.conversion.quiet)
            report(QStringLiteral("%1 files were converted.").arg(all));
    }

    const ConvertOptions &options;
    const bool isOne; // file, which needs no summary
    ProgressBar progress;
    QEventLoop loop;
    std::vector<std::unique_ptr<Worker>> workers;
    std::size_t next = 0;
    int running = 0;
    int done = 0;
    QStringList failed;
};

} // namespace

bool convertFiles(const ConvertOptions &options)
{
    ManyFiles files(options);
    return files.run();
}
