// Shows what the toolkit reads of a file: the first look into an unknown .cdf file.

#include "infogather.h"
#include "inforeport.h"

#include "messageloggerinterface.h"
#include "mstoolkit.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <cstdio>
#include <new>
#include <utility>

namespace {

enum ExitCode { Success = 0, Failure = 1, WrongUsage = 2 };

enum class Format { Text, Json };

struct CommandLine {
    QStringList paths;
    Format format = Format::Text;
    InfoOptions info;
};

// The toolkit's messages about one file: each once, with its count, in the order of their first coming.
class Messages
{
public:
    Messages()
    {
        before_ = MessageLoggerInterface::setReceiver(
            [this](MessageLoggerInterface::Level, const QString &text) { add(text); });
    }
    ~Messages() { MessageLoggerInterface::setReceiver(before_); }
    Q_DISABLE_COPY(Messages)

    void print(const QString &path) const
    {
        for (const auto &[text, count] : counted_) {
            const QString times = count > 1 ? QStringLiteral(" (%1 times)").arg(count) : QString();
            std::fprintf(stderr, "aia-info: %s: %s%s\n", qUtf8Printable(path), qUtf8Printable(text),
                         qUtf8Printable(times));
        }
    }

private:
    void add(QString text)
    {
        text.remove(QLatin1String("<b>")).remove(QLatin1String("</b>"));
        for (auto &[known, count] : counted_) {
            if (known == text) {
                ++count;
                return;
            }
        }
        counted_.emplace_back(text, 1);
    }

    std::vector<std::pair<QString, int>> counted_;
    MessageLoggerInterface::Receiver before_;
};

class OpenFile
{
public:
    explicit OpenFile(const QString &path) : ncid_(ms_open_read(QFile::encodeName(path).constData())) { }
    ~OpenFile() { ms_close(ncid_); }
    Q_DISABLE_COPY(OpenFile)

    int ncid() const { return ncid_; }

private:
    int ncid_;
};

int fail(const QString &path, const char *what)
{
    std::fprintf(stderr, "aia-info: %s: %s\n", qUtf8Printable(path), what);
    return Failure;
}

bool print(const InfoNode &report, Format format)
{
    const QByteArray bytes = format == Format::Json ? QJsonDocument(info_json(report)).toJson()
                                                    : info_text(report).toUtf8() + '\n';
    return std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout)
        == std::size_t(bytes.size());
}

int show(const QString &path, const CommandLine &line)
{
    // netCDF takes some names for addresses of a server, and would wait at a pipe.
    const QFileInfo info(path);
    if (!info.exists())
        return fail(path, "there is no such file");
    if (!info.isFile())
        return fail(path, "isn't a file");
    if (!info.isReadable())
        return fail(path, "may not be read");

    const OpenFile file(info.absoluteFilePath());
    if (file.ncid() == -1)
        return fail(path, "isn't a netCDF file, or a damaged one");
    const InfoResult result = gather_info(file.ncid(), path, line.info);
    if (!print(result.report, line.format))
        return fail(path, "the report can't be written");
    return result.complete ? Success : Failure;
}

int show_with_messages(const QString &path, const CommandLine &line)
{
    const Messages messages;
    int code = Failure;
    try {
        code = show(path, line);
    } catch (const std::bad_alloc &) {
        fail(path, "takes more memory than there is");
    }
    messages.print(path);
    return code;
}

// Gives the exit code where there is nothing to show, else -1.
int parse(const QStringList &arguments, CommandLine *line)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows what is in .cdf files with mass spectra, as UTF-8 text or JSON. Exit code: "
                       "0, or 1 where a "
                       "file, or a part of it that was asked for, can't be read, or 2 for wrong usage."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption json(
        QStringLiteral("json"),
        QStringLiteral("Print a JSON object for each file, one behind the other."));
    const QCommandLineOption scan(
        QStringLiteral("scan"), QStringLiteral("Show scan N too, counted from 0."), QStringLiteral("N"));
    const QCommandLineOption all(
        QStringLiteral("all"),
        QStringLiteral("Show up to 10000 of the items of a long list, not only the first 20."));
    parser.addOptions({json, scan, all});
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("The files to look into."),
                                 QStringLiteral("FILE..."));

    const auto refuse = [](const QString &why) {
        std::fprintf(stderr, "aia-info: %s\nTry aia-info --help.\n", qUtf8Printable(why));
        return int(WrongUsage);
    };
    if (!parser.parse(arguments))
        return refuse(parser.errorText());
    if (parser.isSet(help)) {
        std::fputs(qUtf8Printable(parser.helpText()), stdout);
        return Success;
    }
    if (parser.isSet(version)) {
        std::fputs("aia-info " AIA_VERSION "\n", stdout);
        return Success;
    }

    line->paths = parser.positionalArguments();
    if (line->paths.isEmpty())
        return refuse(QStringLiteral("no file was named"));
    line->format = parser.isSet(json) ? Format::Json : Format::Text;
    line->info.everything = parser.isSet(all);
    if (parser.isSet(scan)) {
        bool is_number = false;
        const int number = parser.value(scan).toInt(&is_number);
        if (!is_number || number < 0)
            return refuse(QStringLiteral("--scan takes a number from 0 on"));
        line->info.scan = number;
    }
    return -1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    CommandLine line;
    const int early = parse(QCoreApplication::arguments(), &line);
    if (early != -1)
        return early;

    int code = Success;
    for (const QString &path : qAsConst(line.paths)) {
        if (show_with_messages(path, line) != Success)
            code = Failure;
    }
    if (std::fflush(stdout) != 0) {
        std::fputs("aia-info: the report can't be written\n", stderr);
        return Failure;
    }
    return code;
}
