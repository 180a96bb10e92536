// What the programs write, and what they leave alone: nothing of the user's is lost, whatever happens.

#include "program.h"
#include "rows.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QByteArray precious = "precious";

struct Output {
    QString arguments; // of a shell that has the programs' names
    int code = 2;
    QByteArray said;           // a part of it
    QByteArray old = precious; // what old.json holds then; "{" for new JSON
};

struct Ended {
    int signal;
    bool isMoved; // what there is by then
};

struct Lost {
    QStringList command; // of a program, on run.cdf
    int stream;
    QByteArray said; // on the other one
};

// A program with a stream that nobody reads.
class Unread : public QProcess
{
public:
    explicit Unread(int descriptor) : stream(descriptor) { }

protected:
    void setupChildProcess() override
    {
        int ends[2];
        if (pipe(ends) == 0 && dup2(ends[1], stream) != -1)
            ::close(ends[0]);
        ::close(ends[1]);
    }

private:
    const int stream;
};

} // namespace

class TestOutputs : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> folder; // the current one

    static void write(const QString &name, const QByteArray &bytes) { QVERIFY(writeFile(name, bytes)); }
    static Run shell(const QString &command)
    {
        const QString names = QStringLiteral("import() { " AIA_TOOLS "/aia-import --quiet \"$@\"; }\n"
                                             "sample() { " AIA_TOOLS "/aia-sample \"$@\"; }\n");
        return runProgram("sh", {"-c", names + command});
    }
    static QStringList unfinished() { return QDir().entryList({"*.part"}, QDir::Files | QDir::Hidden); }

    // Returns once a part of the JSON has been written. There are many scans and nothing else in the file.
    static void startLongRun(QProcess &program, QStringList arguments)
    {
        write("long.cdf",
              QByteArray::fromHex("43444601000000000000000a000000010000000b") + QByteArray("scan_number", 12)
                  + QByteArray::fromHex("7735940000000000000000000000000000000000"));
        for (int i = 0; i < 20; ++i)
            arguments += "long.cdf";
        program.start(AIA_TOOLS "/aia-import", arguments);
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(unfinished().value(0, "none")).size() > 0, longestWait);
    }

private slots:
    void init()
    {
        folder.emplace();
        QVERIFY(QDir::setCurrent(folder->path()) && QDir().mkdir("folder"));
        write("old.json", precious);
        write("run.cdf", content(fixture("gcgc")));
        umask(022);
        QCOMPARE(chmod("old.json", 0640), 0);
        QCOMPARE(link("run.cdf", "hard.json"), 0);
        QCOMPARE(symlink("run.cdf", "soft.json"), 0);
        QCOMPARE(symlink("../old.json", "folder/link.json"), 0);
        QCOMPARE(symlink("folder/new.json", "dangling.json"), 0);
    }
    void cleanup() { QDir::setCurrent(QDir::rootPath()); }

    void output_data()
    {
        const Rows<Output> row;
        row("new") = {"import --json new.json run.cdf && cp new.json old.json", 0, "", "{"};
        row("existing") = {"import --json old.json run.cdf", 2, "--force"};
        row("existing, behind a link") = {"import --json folder/link.json run.cdf", 2, "--force"};
        row("forced") = {"import --force --json old.json run.cdf", 0, "", "{"};
        row("behind a link to nothing") = {"import --json dangling.json run.cdf && cp folder/new.json old.json", 0, "",
                                           "{"};
        row("nothing imported") = {"import --force --json old.json nofile.cdf", 1,
                                   "The file \"old.json\" was not written"};
        row("input") = {"import --force --json folder/../run.cdf run.cdf", 2, "data file"};
        row("hard link to an input") = {"import --force --json hard.json run.cdf", 2, "to be read"};
        row("input behind a link") = {"mv old.json a; ln -s a b.cdf; import --force --json a b.cdf; s=$?;"
                                      "mv a old.json; exit $s",
                                      2, "to be read"};
        row("data file that is new") = {"import --force --json new.cdf run.cdf", 2, "data file"};
        row("link to a data file") = {"import --force --json soft.json " + fixture("plain"), 2, "data file"};
        row("folder") = {"import --force --json folder run.cdf", 2, "is a folder"};
        row("folder that isn't there") = {"import --json no/new.json run.cdf", 1, "there is no folder \"no\""};
        row("folder that takes no files") = {"import --json /proc/new.json run.cdf", 1, "takes no new file"};
        row("pipe") = {"mkfifo pipe; cat pipe > old.json & import --json pipe run.cdf; s=$?; wait; exit $s", 0, "",
                       "{"};
        row("standard output") = {"import --json - run.cdf > old.json", 0, "", "{"};
        row("no room for the first of two") = {
            "sample gcms --scans 6000 s.cdf; import --json - s.cdf s.cdf > /dev/full", 1,
            "stopped before it looked at 1 of 2 files"};
        row("limit on size") = {"ulimit -f 0; import --force --json old.json run.cdf", 1, "File too large"};
        row("closed streams") = {AIA_TOOLS "/aia-import --verbose --force --json old.json run.cdf >&- 2>&-", 1, "",
                                 "{"};
        row("sample over a file") = {"sample gcms old.json", 2, "--force"};
        row("sample, no room for its head") = {"ulimit -f 2; sample --force gcms old.json", 1, "File too large"};
        row("sample, for its scans") = {"ulimit -f 200; sample --force gcms old.json", 1, "File too large"};
        row("sample, for its points") = {"ulimit -f 700; sample --force gcms old.json", 1, "File too large"};
        row("sample in a device") = {"sample --force gcms /dev/null", 2, "device"};
        row("sample, forced") = {"sample --force gcms old.json", 0, "", "CDF"};
    }
    void output()
    {
        const Output &row = Rows<Output>::current();
        const Run result = shell(row.arguments);
        QCOMPARE(result.code, row.code);
        QVERIFY2(result.err.contains(row.said), result.err);
        const QByteArray old = content("old.json");
        QVERIFY(old.startsWith(row.old) && (row.old != precious || old == precious));
        QVERIFY(row.old != "{" || QJsonDocument::fromJson(old).object()["complete"].toBool());
        QVERIFY(row.code != 0 || content("run.cdf") == content(fixture("gcgc")));
        QCOMPARE(unfinished(), QStringList());
        struct stat status;
        QCOMPARE(stat("old.json", &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0640));
        QVERIFY(stat("new.json", &status) != 0 || (status.st_mode & 0777) == 0644);
    }

    void ended_data()
    {
        const Rows<Ended> row;
        row("killed") = {SIGKILL, false};
        row("Ctrl-C") = {SIGINT, true};
        row("request to end") = {SIGTERM, true};
        row("terminal is gone") = {SIGHUP, true};
    }
    void ended()
    {
        const Ended &row = Rows<Ended>::current();
        QProcess program;
        startLongRun(program, {"--force", "--json", "old.json"});
        ::kill(pid_t(program.processId()), row.signal);
        program.setReadChannel(QProcess::StandardError);
        if (row.signal == SIGHUP && program.waitForReadyRead(longestWait))
            ::kill(pid_t(program.processId()), SIGHUP); // by the shell as well
        const Run result = finish(program);
        QCOMPARE(result.code, row.isMoved ? 1 : -1);
        QCOMPARE(result.err.count("The program was interrupted and stops at the next scan."), int(row.isMoved));
        QCOMPARE(result.err.contains("The program stopped before it looked at 19 of 20 files.\n"), row.isMoved);
        QCOMPARE(result.out.contains(" of 2000000000, as the import stopped before them"), row.isMoved);
        QVERIFY(!result.err.contains("given up"));
        const QByteArray old = content("old.json");
        QVERIFY(row.isMoved ? QJsonDocument::fromJson(old).object()["complete"] == QJsonValue(false) : old == precious);
        QCOMPARE(unfinished().isEmpty(), row.isMoved);
    }

    // And under nohup doesn't end with its terminal.
    void endsWhileItAsks()
    {
        QProcess program;
        program.start("/bin/sh", {"-c", "trap '' HUP; exec " AIA_TOOLS "/aia-import --ask run.cdf"});
        QVERIFY(program.waitForStarted(longestWait));
        const QString status = QStringLiteral("/proc/%1/status").arg(program.processId());
        const auto handles = [&](int signal) {
            const QByteArray text = content(status);
            return text.mid(text.indexOf("SigCgt:") + 7, 17).trimmed().toULongLong(nullptr, 16) >> (signal - 1) & 1;
        };
        QTRY_VERIFY_WITH_TIMEOUT(handles(SIGTERM), longestWait);
        QVERIFY(!handles(SIGHUP));
        program.terminate();
        QCOMPARE(finish(program).code, 1);
    }

    void leavesWhatCameMeanwhile()
    {
        QProcess program;
        startLongRun(program, {"--json", "late.json"});
        write("late.json", precious);
        program.terminate();
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        QCOMPARE(content("late.json"), precious);
        const QString left = unfinished().value(0);
        QVERIFY2(result.err.contains("File exists. What was written is in \"" + left.toUtf8() + "\"."), result.err);
        QVERIFY(content(left).contains("],\"complete\":false,") && content(left).endsWith("]}\n"));
    }

    void lostStream_data()
    {
        const Rows<Lost> row;
        row("summary") = {{"aia-import"}, STDOUT_FILENO, "Standard output can't be written: Broken pipe."};
        row("JSON") = {{"aia-import", "--json", "-"}, STDOUT_FILENO, "Standard output can't be written: Broken pipe."};
        row("warnings of an import") = {{"aia-import"}, STDERR_FILENO, "Title:"};
        row("warnings of a report") = {{"aia-info"}, STDERR_FILENO, "stored_as:"};
    }
    void lostStream()
    {
        const Lost &row = Rows<Lost>::current();
        Unread program(row.stream);
        program.start(AIA_TOOLS "/" + row.command[0], row.command.mid(1) + QStringList{"run.cdf"});
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        QVERIFY2((result.out + result.err).contains(row.said), result.out + result.err);
    }
};

QTEST_GUILESS_MAIN(TestOutputs)
#include "tst_outputs.moc"
