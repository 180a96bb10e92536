#include "fileimport.h"

#include "debugger.h"
#include "dvheader.h"
#include "dvimportparamtype.h"
#include "interruption.h"
#include "messageredirection.h"
#include "msinput.h"
#include "msrun.h"
#include "terminaltext.h"

#include <QApplication>
#include <QFileInfo>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

namespace {

// Whether a file that was refused has scans. It failed another of the plugin's tests then.
bool hasScans(const QString &name)
{
    const Silence silence;
    const MsFile file = openInput(name);
    int dimension = -1;
    return nc_inq_dimid(file.id(), "scan_number", &dimension) == NC_NOERR;
}

} // namespace

FileImport::FileImport(DVImportAnalysisInterface &plugin, const ImportOptions &commandLine,
                       ImportJson *jsonWriter, const QString &name)
    : prototype(plugin), options(commandLine), json(jsonWriter), fileName(name), messages(name),
      progress(commandLine.quiet ? ProgressBar::Mode::Hidden : ProgressBar::Mode::OnTerminal)
{
}

bool FileImport::run()
{
    const MessageRedirection collection(
        [this](MessageLoggerInterface::Level level, const QString &text) { messages.add(level, text); });
    // The running account, which goes to standard error otherwise.
    const Redirection<Debugger> account([this](const QString &line) { showAccount(line); });
    bool imported = false;
    try {
        imported = importIfPossible();
    } catch (const std::bad_alloc &) {
        report(QStringLiteral("There isn't enough memory to import the file \"%1\".").arg(fileName));
        if (json)
            json->endFile(false, {});
        closePrototype();
    }
    messages.reportAll(options.verbose                        ? MessageList::Level::Debug
                           : options.quiet && !options.strict ? MessageList::Level::Error
                                                              : MessageList::Level::Warning);
    return imported;
}

void FileImport::showAccount(const QString &line) const
{
    if (!options.verbose)
        return;
    const QString text = line.trimmed();
    report(options.files.size() > 1 ? QStringLiteral("\"%1\": %2").arg(fileName, text) : text);
}

bool FileImport::importIfPossible()
{
    lostFile.start(fileName);
    QString text;
    if (!prototype.canImport(nullptr, fileName, text)) {
        report(refusal(text));
        closePrototype();
        return false;
    }

    if (options.ask)
        askParameters();
    if (!takeModulation()) {
        closePrototype();
        return false;
    }
    return importOn(std::unique_ptr<DVImportAnalysisInterface>(prototype.clone()));
}

// The prototype keeps a file that it opened and that isn't imported. A copy takes the file over and
// closes it.
void FileImport::closePrototype()
{
    delete prototype.clone();
}

void FileImport::askParameters()
{
    auto *questions = static_cast<DVImportParamType *>(prototype.qt_metacast("DVImportParamType"));
    if (!questions)
        return;
    // A signal's handler can't close the dialog.
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [] {
        if (isInterrupted())
            QApplication::closeAllWindows();
    });
    watch.start(100); // milliseconds
    questions->askParameters(nullptr);
}

// Sets the length that was asked for. Returns false, after a report, if the trace should show it and
// doesn't.
bool FileImport::takeModulation()
{
    if (options.modulation)
        prototype.setModulation(*options.modulation);
    if (!options.guessModulation)
        return true;
    const Silence silence; // the import sends the messages
    const MsModulation found = MsRun(fileName).modulation();
    if (found.isConfident) {
        prototype.setModulation(float(found.seconds));
        return true;
    }
    const QString why = std::isnan(found.seconds)
        ? QStringLiteral("its trace shows no modulation")
        : QStringLiteral("its trace may show a modulation of %1 s, but that isn't sure")
              .arg(found.seconds);
    report(QStringLiteral("The file \"%1\" was not imported: %2. Name the length after --gcxgc.")
               .arg(fileName, why));
    return false;
}

bool FileImport::importOn(std::unique_ptr<DVImportAnalysisInterface> copy)
{
    working = copy.get();
    copy->setReceiver(this);
    const bool finished =
        copy->import(fileName, QFileInfo(fileName).fileName(), fileName, nullptr) && complaint.isNull();
    working = nullptr;
    progress.clear();
    // Of a run that stopped, the copy lists what hangs on points when it ends.
    std::vector<RunDoubt> doubts;
    QObject::connect(copy.get(), &QObject::destroyed,
                     [&doubts](QObject *ending) { doubts = doubtsOf(*ending); });
    copy.reset();
    return judge(finished, doubts);
}

// Says what came of the run, and returns whether that will do.
bool FileImport::judge(bool finished, const std::vector<RunDoubt> &doubts)
{
    const bool isLossy = summary.unreadCount() > 0
        || std::any_of(doubts.begin(), doubts.end(), [](const RunDoubt &doubt) { return doubt.isLoss; });
    if (json)
        json->endFile(finished && !isLossy, doubts);
    for (const RunDoubt &doubt : doubts) {
        messages.drop(doubt.text); // which is said here
        if (options.quiet && (doubt.isLoss || options.strict))
            report(doubt.text);
    }
    messages.dropCutOff();
    const int otherWarnings = messages.count(MessageList::Level::Warning);
    if (started && !options.quiet)
        writeSummary(doubts, otherWarnings);

    const bool hasWarnings = !doubts.empty() || otherWarnings > 0;
    if (!complaint.isNull())
        report(
            QStringLiteral("The import of the file \"%1\" was given up: %2.").arg(fileName, complaint));
    if (!finished) {
        report(QStringLiteral("The import of the file \"%1\" stopped after %2 of %3 scans.")
                   .arg(fileName, QString::number(scansDone), QString::number(scanCount)));
    } else if (isLossy) {
        report(QStringLiteral("The file \"%1\" was not imported in full.").arg(fileName));
    } else if (options.strict && hasWarnings) {
        report(QStringLiteral("The file \"%1\" has warnings, and the option --strict is set.")
                   .arg(fileName));
    }
    return finished && !isLossy && !(options.strict && hasWarnings);
}

void FileImport::writeSummary(const std::vector<RunDoubt> &doubts, int otherWarnings)
{
    std::FILE *stream = options.json == QLatin1String("-") ? stderr : stdout;
    const int largest = summary.largestScan();
    summary.write(stream,
                  largest == -1 ? std::nullopt : timeOfScan(file, largest, facts && facts->inMinutes),
                  doubts, otherWarnings);
    if (options.verbose)
        summary.writeHeader(stream);
}

void FileImport::analysisStarted(const DVHeader &header, const float *table, int tableSize)
{
    started = true;
    scanCount = header.getNbScans();
    {
        const Silence silence; // the import has sent the messages already
        file = openInput(fileName);
    }
    if (file)
        facts = readRunFacts(file);
    summary.start(fileName, facts, header, table, tableSize);
    limit.start(file, QFileInfo(fileName).size());
    if (json)
        json->beginFile(fileName, header, table, tableSize);
}

void FileImport::scanImported(int scan, double time, double total, int pointCount,
                              const float *abundances, const unsigned short *positions)
{
    const QString failure = pointCount == 0 ? scanFailureOf(*working) : QString();
    complaint = limit.add(pointCount, total);
    if (failure.isNull())
        lostFile.addReadScan();
    else if (complaint.isNull())
        complaint = lostFile.addFailure(file, scan);
    if (!complaint.isNull())
        return working->pBarCanceledSlot();
    ++scansDone;
    summary.addScan(scan, time, total, pointCount, failure);
    if (json)
        json->addScan(time, total, pointCount, abundances, positions, failure);
    if (isInterrupted() || (json && json->hasFailed()))
        working->pBarCanceledSlot();
}

void FileImport::progressChanged(int done, int count)
{
    progress.show(done, count);
}

QString FileImport::refusal(const QString &hostText)
{
    // Neither is reported by itself: the sentence says what the notes say, and it has the errors in it.
    const QStringList traces = messages.take(MessageList::Level::Debug);
    const QString errors = messages.takeSentences(MessageList::Level::Error).join(QLatin1Char(' '));
    const QString obstacle = whyUnreadable(fileName);
    if (!obstacle.isEmpty())
        return obstacle;
    if (!hostText.isEmpty())
        return hostText;

    QString reason;
    if (traces.contains(QStringLiteral("ms_open_read failed!"))) {
        if (!errors.isEmpty())
            return errors;
        reason =
            QStringLiteral("netCDF can't open it: it isn't a netCDF file, or its header is damaged or "
                           "cut off");
    } else if (hasScans(fileName)) {
        reason = QStringLiteral("its global attributes can't be read");
    } else {
        // A file of another kind needn't have what the template demands.
        messages.take(MessageList::Level::Warning);
        reason =
            QStringLiteral("it has no dimension \"scan_number\", so it isn't a mass spectrometry file "
                           "of the AIA MS template");
    }
    const QString refused =
        QStringLiteral("The file \"%1\" can't be imported: %2.").arg(fileName, reason);
    return errors.isEmpty() ? refused : refused + QLatin1Char(' ') + errors;
}
