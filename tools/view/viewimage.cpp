#include "viewimage.h"

#include "countedtext_p.h"
#include "mappane.h"
#include "mapplot.h"
#include "namecodec.h"
#include "outputfile.h"
#include "plotimage.h"
#include "runpage.h"
#include "spectrumplot.h"
#include "standardoptions.h"
#include "terminaltext.h"
#include "traceplot.h"
#include "viewoptions.h"

#include <QEventLoop>

#include <limits>
#include <utility>

namespace {

using What = ImageRequest::What;

// Waits until a run is open and read. Returns whether it is open.
bool waitFor(RunPage *page)
{
    QEventLoop loop;
    QObject::connect(page, &RunPage::idle, &loop, &QEventLoop::quit);
    QObject::connect(page->model(), &RunModel::attributesRead, &loop, [&loop, page] {
        if (!page->model()->isBusy())
            loop.quit();
    });
    loop.exec();
    return page->model()->state() == RunModel::State::Open;
}

// Has a spectrum shown, and waits for it. Returns a sentence that says why there is none; null for one.
QString showSpectrum(RunPage *page, const ImageRequest &request)
{
    const RunSummary &summary = page->model()->summary();
    const qint32 scan =
        request.what == What::Scan ? request.scan : page->model()->scanAt(request.minutes);
    if (summary.kind == MsRun::Kind::Trace)
        return QStringLiteral("The run has no masses, so it has no spectra.");
    if (request.what == What::Time && (!summary.hasTimes || scan == -1))
        return QStringLiteral("No scan of the run has a time.");
    if (request.what == What::Time && summary.timeUnit == 1.0)
        return QStringLiteral(
            "The times of the run aren't in seconds, so --at can't find a scan; --scan can.");
    if (scan >= summary.size)
        return ms_counted_text("There is no scan %1: the run has %2 [scan|scans], counted from 0.",
                               summary.size, {QString::number(scan), QString::number(summary.size)});
    QEventLoop loop;
    SpectrumData found;
    QObject::connect(page->model(), &RunModel::spectrumRead, &loop, [&](const SpectrumData &spectrum) {
        found = spectrum;
        if (spectrum.scan == scan)
            loop.quit();
    });
    page->showScan(scan);
    loop.exec();
    return found.failure;
}

} // namespace

int drawImage(const QString &fileName, const ImageRequest &request, double modulation)
{
    OutputFile output(request.output, request.existing);
    const QString objection = output.objection({fileName});
    if (!objection.isNull())
        return refuseOutput(objection);
    ReadingThread thread;
    RunPage page(thread, fileName);
    if (!waitFor(&page)) {
        report(page.model()->refusal());
        return Failure;
    }
    RunPlot *plot = page.trace();
    QString fault;
    if (page.model()->summary().size == 0) {
        fault = QStringLiteral("It has no scans, so there is nothing to draw.");
    } else if (request.what != What::Scan && page.model()->summary().kind == MsRun::Kind::Library) {
        fault = QStringLiteral(
            "A library has no trace, map or course of time; the option --scan draws one of its spectra.");
    } else if (request.what == What::Map) {
        plot = page.map()->plot();
        if (modulation > 0.0)
            page.setModulation(modulation);
        fault = page.map()->fault();
        if (page.map()->length() == 0.0)
            fault = QStringLiteral(
                "The trace doesn't show the length of the modulation; the option --gcxgc gives it.");
    } else if (request.what != What::Trace) {
        plot = page.spectrum();
        fault = showSpectrum(&page, request);
    }
    const QString name = QStringLiteral("\"%1\": ").arg(shownName(fileName));
    if (!fault.isNull()) {
        report(name + fault);
        return Failure;
    }
    if (request.what == What::Time) {
        const RunSummary &summary = page.model()->summary();
        const qint32 scan = page.model()->scanAt(request.minutes);
        const QString remark = remarkOnTime(request.minutes, scan, summary.size, summary.shownTime(scan));
        if (!remark.isNull())
            report(name + remark);
    }
    plot->setParent(nullptr);
    plot->resize(request.width, request.height);
    plot->show(); // lays it out
    static_cast<TracePlot *>(page.trace())->markTime(std::numeric_limits<double>::quiet_NaN());
    const QByteArray image = plotImage(plot, request.output, 1.0);
    plot->setParent(&page);
    const QString failure = writeImage(&output, image);
    bool isWhole = true;
    for (const MsDoubt &doubt : page.model()->doubts().list) {
        report(doubt.text);
        isWhole = isWhole && !doubt.isLoss;
    }
    if (!isWhole)
        report(
            QStringLiteral("The image lacks what is lost of the file \"%1\".").arg(shownName(fileName)));
    if (!failure.isNull())
        report(failure);
    return failure.isNull() && isWhole ? Success : Failure;
}
