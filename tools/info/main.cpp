// Shows what the toolkit reads of a file: the first look into an unknown .cdf file.

#include "infogather.h"
#include "inforeport.h"
#include "messagelist.h"
#include "messageredirection.h"
#include "msinput.h"
#include "msrun.h"
#include "namecodec.h"
#include "standardoptions.h"
#include "terminaltext.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>

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
    const QByteArray bytes = format == Format::Json ? QJsonDocument(jsonOf(report)).toJson()
                                                    : infoText(report).toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    return flushOutput();
}

int fail(const QString &sentence)
{
    report(sentence);
    return Failure;
}

// Returns what the program has to tell the shell about the file.
int show(const QString &path, const CommandLine &line, const MessageList &messages)
{
    const QString obstacle = whyUnreadable(path);
    if (!obstacle.isEmpty())
        return fail(obstacle);
    const MsFile file = openInput(path);
    if (!file && messages.has(MessageList::Level::Error))
        return Failure; // the error says more
    if (!file)
        return fail(QStringLiteral("The file \"%1\" isn't a netCDF file, or its header is damaged or cut "
                                   "off.")
                        .arg(path));
    InfoOptions options = line.info;
    {
        const Silence silence; // the same messages come from the file that is shown
        options.modulation = MsRun(path).modulation();
    }
    const InfoResult result = gatherInfo(file, path, options);
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
        report(QStringLiteral("There isn't enough memory to show the file \"%1\".").arg(path));
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

    if (!parser.parse(arguments))
        return refuse(parser.errorText());
    if (standard.answer(parser))
        return Success;

    line->paths = namesOfFiles(parser.positionalArguments());
    if (line->paths.isEmpty())
        return refuse(QStringLiteral("No file is named."));
    line->format = parser.isSet(json) ? Format::Json : Format::Text;
    line->info.everything = parser.isSet(all);
    if (parser.isSet(scan)) {
        bool isNumber = false;
        const int number = parser.value(scan).toInt(&isNumber);
        if (!isNumber || number < 0)
            return refuse(QStringLiteral("\"%1\" isn't the number of a scan: they are counted from 0.")
                              .arg(parser.value(scan)));
        line->info.scan = number;
    }
    return -1;
}

} // namespace

int main(int argc, char **argv)
{
    setProgram(AIA_PROGRAM, AIA_VERSION);
    const QCoreApplication application(argc, argv);
    CommandLine line;
    const int early = parse(QCoreApplication::arguments(), &line);
    if (early != -1)
        return early;

    int code = Success;
    for (const QString &path : qAsConst(line.paths)) {
        if (showWithMessages(path, line) != Success)
            code = Failure;
        if (std::ferror(stdout) != 0)
            break; // reported already, and nobody would see more
    }
    return hasLostReports() ? int(Failure) : code;
}
