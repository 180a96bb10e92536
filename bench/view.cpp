// Measures the window on two runs of the benchmarks: bench_view SIX-MILLION HUNDRED-MILLION. Prints a
// line for each measure: its name, the figure, the bar and a detail, with semicolons between them.

#include "mappane.h"
#include "mapplot.h"
#include "runpage.h"
#include "spectrumplot.h"
#include "traceplot.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>

#include <algorithm>
#include <cstdio>

namespace {

constexpr double mebi = 1024.0;
constexpr double milli = 1e-3;

// Waits until `signal` of `sender` comes.
template <class Sender, class Signal> void waitFor(Sender *sender, Signal signal)
{
    QEventLoop loop;
    QObject::connect(sender, signal, &loop, &QEventLoop::quit);
    loop.exec();
}

// In MiB, of the process so far.
double peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).simplified().split(' ').first().toDouble() / mebi;
    }
    return 0.0;
}

void print(const char *measure, double figure, double bar, const char *detail)
{
    std::printf("%s;%.4f;%.4f;%s\n", measure, figure, bar, detail);
}

void showPage(RunPage *page)
{
    page->resize(1200, 800);
    page->show();
    waitFor(page->model(), &RunModel::opened);
}

void measureSixMillion(ReadingThread &thread, const QString &file)
{
    QElapsedTimer clock;
    clock.start();
    RunPage page(thread, file);
    showPage(&page);
    page.trace()->replot();
    print("aia-view: trace of 6 million points shown [s]", double(clock.elapsed()) * milli, 1.0, "");
    if (page.model()->isBusy())
        waitFor(&page, &RunPage::idle);

    constexpr int steps = 200;
    clock.restart();
    for (int step = 0; step < steps; ++step) {
        page.stepScans(step == 0 ? -page.model()->summary().size : 1);
        waitFor(page.model(), &RunModel::spectrumRead);
        page.spectrum()->replot();
        page.trace()->replot();
    }
    print("aia-view: from scan to scan [ms]", double(clock.elapsed()) / steps, 20.0, "drawing included");
}

void measureHundredMillion(ReadingThread &thread, const QString &file)
{
    QElapsedTimer clock;
    clock.start();
    RunPage page(thread, file);
    showPage(&page);
    const std::vector<double> seconds = page.model()->seconds();
    page.setModulation(100.0 * (seconds[1] - seconds[0]));
    page.map()->plot()->replot();
    print("aia-view: map of 100 million points shown [s]", double(clock.elapsed()) * milli, 5.0,
          page.map()->plot()->map().isEmpty() ? "no map" : "");

    // While all scans are read, the window has to answer.
    qint64 longest = 0;
    QElapsedTimer answer;
    while (page.model()->isBusy()) {
        answer.start();
        page.stepScans(1);
        waitFor(page.model(), &RunModel::spectrumRead);
        longest = std::max(longest, answer.elapsed());
    }
    print("aia-view: a spectrum while all is read, at most [ms]", double(longest), 500.0, "");
    print("aia-view: peak memory at 100 million points [MiB]", peakMemory(), 300.0, "");
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3)
        return 2;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QApplication application(argc, argv);
    ReadingThread thread;
    measureSixMillion(thread, QString::fromLocal8Bit(argv[1]));
    measureHundredMillion(thread, QString::fromLocal8Bit(argv[2]));
    return 0;
}
