// Shows what the toolkit reads of a file: the first look into an unknown .cdf file.

#include "infogather.h"
#include "inforeport.h"
#include "interruption.h"
#include "messagelist.h"
#include "messageredirection.h"
#include "msinput.h"
#include "msrun.h"
#include "namecodec.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <cstdio>
#include <new>
#include <optional>

namespace {

enum class Format { Text, Json };

struct CommandLine {
    QStringList paths;
    Format format = Format::Text;
    InfoOptions info;
};

constexpr int jsonVersion = 1; // docs/json.md

QJsonObject jsonOf(const InfoNode &report)
{
    QJsonObject object = infoJson(report);
    object.insert(QStringLiteral("version"), jsonVersion);
    return object;
}

bool print(const InfoNode &report, Format format)
{
    writeBytes(stdout,
               format == Format::Json ? QJsonDocument(jsonOf(report)).toJson()
                                      : infoText(report).toUtf8() + '\n');
    return flushOutput();
}

// Reports why a file can't be shown, and prints it where a reader waits for an object for each file.
int fail(const QString &path, const QString &sentence, Format format)
{
    report(sentence);
    if (format == Format::Json) {
        InfoNode failure;
        failure.addValue(QStringLiteral("file"), shownName(path));
        failure.addValue(QStringLiteral("complete"), false);
        failure.addValue(QStringLiteral("error"), sentence);
        print(failure, format);
    }
    return Failure;
}

// Returns what the program has to tell the shell about the file.
int show(const QString &path, const CommandLine &line, MessageList &messages)
{
    const QString obstacle = whyUnreadable(path);
    if (!obstacle.isEmpty())
        return fail(path, obstacle, line.format);
    const MsFile file = openInput(path);
    if (!file) {
        const QString reason = messages.takeSentences(MessageList::Level::Error).join(QLatin1Char(' '));
        return fail(path, whyNotOpened(path, reason), line.format);
    }
    InfoOptions options = line.info;
    {
        const Silence silence; // the same messages come from the file that is shown
        options.modulation = MsRun(path).modulation();
    }
    const InfoResult result = gatherInfo(file, path, options);
    messages.dropCutOff(); // a doubt says it
    return print(result.report, line.format) && result.complete ? Success : Failure;
}

int showWithMessages(const QString &path, const CommandLine &line)
{
    MessageList messages(path);
    const MessageRedirection redirection(
        [&](MessageList::Level level, const QString &text) { messages.add(level, text); });
    int code = Failure;
    try {
        code = show(path, line, messages);
    } catch (const std::bad_alloc &) {
        fail(path, QStringLiteral("There isn't enough memory to show the file \"%1\".").arg(path),
             line.format);
    }
    messages.reportAll(MessageList::Level::Debug);
    return code;
}

// Returns the exit code where there is nothing to show, else -1.
int parse(const QStringList &arguments, CommandLine *line)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Shows what is in .cdf files with mass spectra, as UTF-8 text or JSON. Exit code: "
        "0, or 1 where a file is cut off or can't be read in full, or a part that was asked for "
        "isn't there, or 2 for wrong usage."));
    const QCommandLineOption json(
        QStringLiteral("json"),
        QStringLiteral("Print a JSON object for each file, one after the other."));
    const QCommandLineOption scan(
        QStringLiteral("scan"), QStringLiteral("Show scan N too, counted from 0."), QStringLiteral("N"));
    const QCommandLineOption all(
        QStringLiteral("all"),
        QStringLiteral("Show up to 10000 of the items of a long list, not only the first 20."));
    parser.addOptions({json, scan, all});
    const StandardOptions standard(&parser);
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("The files to look into."),
                                 QStringLiteral("FILE..."));

    if (const std::optional<int> code = standard.parse(arguments, &parser))
        return *code;

    line->paths = namesOfFiles(parser.positionalArguments());
    if (line->paths.isEmpty())
        return refuse(QStringLiteral("No file is named."));
    line->format = parser.isSet(json) ? Format::Json : Format::Text;
    line->info.everything = parser.isSet(all);
    if (parser.isSet(scan)) {
        int number = 0;
        const QString mistake = readScanNumber(parser.value(scan), &number);
        if (!mistake.isNull())
            return refuse(mistake);
        line->info.scan = number;
    }
    return -1;
}

} // namespace

int main(int argc, char **argv)
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    watchInterruptions();
    const QCoreApplication application(argc, argv);
    CommandLine line;
    const int early = parse(QCoreApplication::arguments(), &line);
    if (early != -1)
        return early;

    int code = Success;
    int done = 0;
    for (const QString &path : qAsConst(line.paths)) {
        if (isInterrupted())
            break;
        ++done;
        if (showWithMessages(path, line) != Success)
            code = Failure;
        if (std::ferror(stdout) != 0)
            break; // reported already, and nobody would see more
    }
    if (isInterrupted() && !reportFilesLeft(done, line.paths.size()))
        code = Failure;
    return hasLostReports() ? int(Failure) : code;
}
