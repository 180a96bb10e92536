// aia-import as a person or a script meets it: output, messages and exit code.

#include "program.h"
#include "rows.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

const QString importer = QStringLiteral(AIA_TOOLS "/aia-import");

struct SummaryLine {
    QString file; // imported with modulations of 60 s, and verbosely
    QString line; // a regular expression
    QString modulation = QStringLiteral("60");
    QByteArray stamp{}; // instead of that of "plain"
};

struct Talk {
    QStringList arguments; // in which FILE stands for a file that isn't quite right
    QByteArray said{};     // a line on standard error
    int lines = 0;         // on standard error
    bool summary = true;
};

struct CutFile {
    QString file;
    int missing = 0;                  // bytes at the end
    QString line = "Warnings: +none"; // of the summary, a regular expression
};

struct Status {
    QStringList arguments;
    int code = 0;
    QByteArray sentence{}; // on standard error
};

struct Progress {
    QString terminal; // commands for the shell
    int length = 0;   // of the last line
};

struct Limit {
    QString kind; // of the file
    int scans = 0;
    QString variables;
    int claimedPoints = 0; // by the header
    QByteArray reason{};   // why the run was given up
};

bool hasLine(const QString &text, const QString &expression)
{
    return QRegularExpression('^' + expression + '$', QRegularExpression::MultilineOption).match(text).hasMatch();
}

} // namespace

class TestAiaImport : public QObject
{
    Q_OBJECT

    Run run(const QStringList &arguments) { return runProgram(importer, arguments, folder.path()); }
    void write(const QString &name, const QByteArray &bytes) { QVERIFY(writeFile(folder.filePath(name), bytes)); }

    QTemporaryDir folder;

private slots:
    void asksOnADisplayOnly()
    {
        for (const char *setting : {"DISPLAY=", "DISPLAY=:4711", "QT_QPA_PLATFORM=none"}) {
            const Run result = runProgram(
                "env", {"-u", "QT_QPA_PLATFORM", "-u", "WAYLAND_DISPLAY", setting, importer, "--ask", fixture("gcgc")});
            QCOMPARE(result.code, 1);
            QCOMPARE(
                result.err,
                QByteArray("aia-import: The option --ask needs a display for its dialog, and none can be opened.\n"));
        }
    }

    void json()
    {
        const Run result = run({"--json", "-", fixture("import-odd-scans")});
        QCOMPARE(result.code, 1); // a scan couldn't be read
        const QByteArray head = "{\"version\":1,\"file\":\"" + fixture("import-odd-scans").toUtf8() + "\",";
        QCOMPARE(result.out, head + content(QStringLiteral(AIA_TEST_SOURCES "/expected/import-odd-scans.json")));
    }

    void summary_data()
    {
        const Rows<SummaryLine> row;
        row("title") = {"import-odd-scans", "Title: +Caf. \"5\\\\6\"\\?<1>"}; // with a control character
        row("blank title") = {"run-facts", "Title: +not given"};
        row("stamp") = {"import-odd-scans", "Acquired: .*\\(2007-09-23 02:08:00 UTC\\)"};
        row("no stamp") = {"gcgc-total-ion", "Acquired: +not given"}; // the header has the present
        row("operator") = {"run-facts", "Operator: +A. Nobody, who [who ]{135}... \\(227 characters\\)"};
        row("instrument") = {"run-facts", "Instrument: +GC \\(Maker 7\\), Maker 8, MS, ..."};
        row("method") = {"run-facts", "Method: +RTL.M .*"};
        row("spelled otherwise") = {"run-facts", "Separation: +Gas-Liquid Chromatography"};
        row("beyond the vocabulary") = {"run-facts", "Inlet: +\"Fused silica\""};
        row("number for a text") = {"run-facts", "Ionisation: +not given"}; // the record has a default
        row("polarity") = {"run-facts", "Polarity: +negative"};
        row("no polarity") = {"gcgc", "Polarity: +not given"};
        row("profile") = {"run-facts", "Spectra: +profile"};
        row("selected ions") = {"run-facts", "Scan function: +selected ions, in 2 groups of ions"};
        row("start") = {"run-facts", "Start: +1 minutes"};
        row("end") = {"run-facts", "End: +2 minutes"};
        row("rate") = {"run-facts", "Scan rate: +0.0333333 scans per second"};
        row("other unit of time") = {"time-units", "End: +120 in Arbitrary Time Units"};
        row("no first time") = {"missing-first-time", "Start: +not given"}; // the header has 0
        row("no last time") = {"missing-times", "End: +not given"};         // the header has the scan's number
        row("rate without times") = {"missing-times", "Scan rate: +not known"};
        row("pause") = {"a-pause", "Longest pause: +30 s before scan 6", "0"};
        row("pause of a trace") = {"trace-with-a-pause", "Longest pause: +30 s before scan 6", "0"};
        row("first of several maxima") = {"a-pause", "Trace maximum: +2 at .*, in scan 1", "0"};
        row("maximum") = {"run-facts", "Trace maximum: +48 at 1.5 minutes, in scan 1"};
        row("masses") = {"import-odd-scans", "Masses: +2, from 50.1 to 60, on a grid of 0.1"};
        row("decimals of masses") = {"plain", "Masses: .*, on a grid of 0.01"};
        row("points") = {"import-odd-scans", "Points read: +4"};
        row("unread scan") = {"import-odd-scans", "Scans not read: +1 \\(.* 3\\)"}; // the empty one isn't meant
        row("unread total") = {"total-ion", "Scans not read: +1 \\(.* 2\\)"};
        row("no warning") = {"plain", "Warnings: +none"};
        row("messages only") = {"gcgc", "Warnings: +\\d+ on standard error"};
        row("warning") = {"import-odd-scans", "Warning: +In \"import-odd-scans.cdf\", 2 intensities are infinite .*"};
        row("nothing to read") = {"total-ion-no-intensity",
                                  "Scans not read: +all 3: the file has neither masses nor .*"};
        row("modulation") = {"gcgc", "Modulation length: +60 s"};
        row("scans of one") = {"gcgc", "Scans in a modulation: +2"};
        row("modulations") = {"gcgc", "Modulations: +2"};
        row("second dimension") = {"gcgc", "Second-dimension step: +30 s"};
        row("host's date") = {"import-odd-scans", "Date: +2007-09-23T05:08:00Z"};
        row("no date for the host") = {"plain", "Date: +-", "0", "19510817103000+0100"};
        row("delay for the host") = {"plain", "Delay: +0.0875 minutes"};
        row("present for the host") = {"gcgc-total-ion", "Date: +the present, as the file has none"};
        row("spectra for the host") = {"gcgc", "Detector type: +GCxGC, mass spectra \\(2048\\)"};
        row("total ion for the host") = {"gcgc-total-ion", "Detector type: +GCxGC, total ion \\(1792\\)"};
    }
    void summary()
    {
        const SummaryLine &row = Rows<SummaryLine>::current();
        const QString file = row.stamp.isEmpty() ? fixture(row.file) : QStringLiteral("stamped.cdf");
        if (!row.stamp.isEmpty())
            write(file, content(fixture(row.file)).replace("19930817103000+0100", row.stamp));
        const QString printed = QString::fromUtf8(run({"--verbose", "--gcxgc", row.modulation, file}).out);
        QVERIFY2(hasLine(printed, row.line), qPrintable(printed));
    }

    void talk_data()
    {
        const QString other = fixture("gcgc");
        const QByteArray warning = "Warning for the file \"FILE\": Mandatory attribute \"netcdf-revision\" is missing";
        const Rows<Talk> row;
        row("summary and warnings") = {{"FILE"}, warning, 6};
        // First and last time for the header, then each scan; not the second look at two of them.
        row("once each") = {{"FILE"}, "Data type mismatch while loading \"scan_acquisition_time\" (6 times).\n", 6};
        row("for a script") = {{"--json", "-", "FILE"}, "Title:  ", 31, false};
        row("account") = {{"--verbose", "FILE"}, "nb de scans : 4\n", 13};
        row("account of several") = {{"--verbose", other, "FILE"}, "\"FILE\": nb de scans : 4\n", 24};
        row("errors") = {{"--quiet", "FILE"}, "The file \"FILE\" was not imported in full", 3, false};
    }
    void talk()
    {
        const Talk &row = Rows<Talk>::current();
        const QString file = fixture("import-odd-scans");
        const Run result = run(QStringList(row.arguments).replaceInStrings("FILE", file));
        const QByteArray said = QByteArray(row.said).replace("FILE", file.toLocal8Bit());
        QVERIFY2(result.err.contains(said), result.err);
        QCOMPARE(result.err.count('\n'), row.lines);
        QCOMPARE(result.out.contains("Title:  "), row.summary);
    }

    void interruptedCopy_data()
    {
        const Rows<CutFile> row;
        row("whole") = {"plain"};
        row("last scan") = {"plain", 1, "Scans not read: +1 \\(counted from 0: number 4\\)"};
        row("all masses") = {"plain", 120, "Warning: +In \"copy.cdf\", the masses can't be read.*"};
        row("ten scans") = {"a-pause", 40, "Scans not read: +10 \\(.*number 2, 3, 4, 5, 6, 7, 8, 9, 10, 11\\)"};
        row("no scan") = {"instruments", 1, "Scans not read: +none"};
    }
    void interruptedCopy()
    {
        const CutFile &row = Rows<CutFile>::current();
        QByteArray bytes = content(fixture(row.file));
        bytes.chop(row.missing);
        write("copy.cdf", bytes);
        const Run result = run({"copy.cdf"});
        const bool isCut = row.missing > 0;
        QCOMPARE(result.code, isCut ? 1 : 0);
        QVERIFY2(hasLine(result.out, row.line), result.out);
        QCOMPARE(hasLine(result.out, "Warning: +\"copy.cdf\" is cut off: .*"), isCut);
        QCOMPARE(result.err.contains("aia-import: The file \"copy.cdf\" was not imported in full.\n"), isCut);
    }

    void status_data()
    {
        const Rows<Status> row;
        row("right") = {{"--strict", fixture("plain")}, 0};
        row("longest modulation") = {{"--gcxgc", "100", fixture("plain")}, 0};
        row("doubted") = {{fixture("overlapping-scans")}, 0};
        row("doubted, strictly") = {{"--strict", fixture("overlapping-scans")}, 1, "and the option --strict is set.\n"};
        row("messages, strictly and quietly") = {
            {"--strict", "--quiet", fixture("gcgc")}, 1, "aia-import: Warning for the file \""};
        row("doubted, strictly and quietly") = {
            {"--strict", "--quiet", fixture("overlapping-scans")}, 1, "\", 2 of 3 scans begin among the points"};
        row("lossy") = {{fixture("total-ion")}, 1, "was not imported in full.\n"};
        row("lossy, quietly") = {
            {"--quiet", fixture("total-ion")}, 1, "the total intensity of 1 of 3 scans is missing"};
    }
    void status()
    {
        const Status &row = Rows<Status>::current();
        const Run result = run(QStringList(row.arguments) << "--json"
                                                          << "-");
        QCOMPARE(result.code, row.code);
        QVERIFY2(result.err.contains(row.sentence), result.err);
        const QJsonObject json = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(json["complete"].toBool(), !row.arguments.contains(fixture("total-ion")));
    }

    // Cut while the import waits for someone who reads its JSON.
    void cutWhileItIsOpen()
    {
        const QStringList sample{"gcms", "--scans", "20000", "--points", "100", "open.cdf"};
        QCOMPARE(runProgram(AIA_TOOLS "/aia-sample", sample, folder.path()).code, 0);
        const QString path = folder.filePath("open.cdf");
        const QByteArray length = QByteArray::number(QFileInfo(path).size());
        QProcess program;
        program.setWorkingDirectory(folder.path());
        program.start(importer, {"--json", "-", "open.cdf"});
        QVERIFY(program.waitForReadyRead(longestWait));
        QVERIFY(QFile::resize(path, 0));
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("The import of the file \"open.cdf\" was given up: 16 scans in a row could not be "
                                     "read, as the file was cut to 0 of "
                                     + length + " bytes while it was open.\n"),
                 result.err);
        QVERIFY2(hasLine(result.err, "Scans not read: +\\d+ of 20000, as the import stopped before them, and 15 more"),
                 result.err);
        QVERIFY(result.out.contains("\"complete\":false,\"doubts\":["));
        QVERIFY(result.out.contains("{\"code\":\"unreadable-scans\"")); // though there was more to come
    }

    // The length holds for each file, and a refused file leaves nothing behind for the next. Two imports are
    // equal only of a file with a stamp: the date of any other is the present.
    void refusalAmongOthers()
    {
        const Run result =
            run({"--json", "all.json", "--gcxgc", "6", fixture("plain"), fixture("chromatogram"), fixture("plain")});
        QCOMPARE(result.code, 1);
        const QByteArrayList lines = content(folder.filePath("all.json")).split('\n');
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0], lines[1]);
        QCOMPARE(QJsonDocument::fromJson(lines[1]).object()["header"].toObject()["modulation"].toDouble(), 6.0);
    }

    void leavesNothingOpen()
    {
        QStringList arguments{"-c", "ulimit -n 32 && exec \"$0\" --quiet \"$@\"", importer};
        for (int i = 0; i < 40; ++i)
            arguments << fixture("chromatogram") << fixture("import-odd-scans");
        const QByteArray err = runProgram("/bin/sh", arguments).err;
        QCOMPARE(err.count("no dimension \"scan_number\""), 40);
        QCOMPARE(err.count("1 of 4 scans can't be read"), 40);
    }

    // A run is given up where it claims more than the file can hold, and not before.
    void limit_data()
    {
        const QString nothing;
        const QString stored = "byte resolution(scan_number);";
        // Each scan has all 16,384 points.
        const QString layout = "short mass_values(point_number), intensity_values(point_number);"
                               "int scan_index(scan_number), point_count(scan_number);"
                               "scan_index:_FillValue = 0; point_count:_FillValue = 16384;"
                               "%1 data: mass_values = 50"
            + QString(", 60").repeated(16383) + ';';
        const QString spectra = layout.arg("");
        const QString packed = layout.arg("mass_values:_DeflateLevel = 9; intensity_values:_DeflateLevel = 9;");
        const QByteArray empty = "more than 1048576 scans in a row are empty";
        const QByteArray shared = "its scans have more points than the file can hold";
        const Rows<Limit> row;
        row("scans that are there") = {"classic", 1100000, stored};
        row("scans that are claimed") = {"classic", 1100000, nothing, 0, empty};
        row("scans that are packed") = {"nc4", 1100000, stored + "resolution:_DeflateLevel = 9;"};
        row("more than can be packed") = {"nc4", 3000000, nothing, 0, "scans in a row are empty"};
        row("points used often") = {"classic", 1000, spectra};
        row("points used too often") = {"classic", 1200, spectra, 0, shared};
        row("points used too often, CDF-5") = {"cdf5", 1200, spectra, 0, shared};
        row("points that are packed") = {"nc4", 1200, packed};
        row("points that are claimed") = {"classic", 2000, spectra, 2000000000, shared};
    }
    void limit()
    {
        const Limit &row = Rows<Limit>::current();
        const QString text = "netcdf limit { dimensions: scan_number = %1; point_number = %2; variables: %3 }";
        const char *points = row.claimedPoints > 0 ? "UNLIMITED" : "16384";
        const QByteArray cdl = text.arg(row.scans).arg(points).arg(row.variables).toLatin1();
        QVERIFY(makeNetcdf(folder.filePath("limit.cdf"), row.kind, cdl));
        if (row.claimedPoints > 0) {
            QByteArray bytes = content(folder.filePath("limit.cdf"));
            qToBigEndian(row.claimedPoints, bytes.data() + 4);
            write("limit.cdf", bytes);
        }
        const Run result = run({"--quiet", "limit.cdf"});
        const QByteArray sentence = "aia-import: The import of the file \"limit.cdf\" was given up: ";
        QCOMPARE(result.err.contains(sentence), !row.reason.isEmpty());
        QVERIFY2(result.err.contains(row.reason), result.err);
    }

    // A terminal breaks a line that is longer than it is wide.
    void progress_data()
    {
        const Rows<Progress> row;
        row("wide") = {"stty cols 200", 58};
        row("narrow") = {"stty cols 30", 29};
        row("narrow by its own word") = {"stty cols 200; export COLUMNS=30", 29};
        row("no room for a bar") = {"stty cols 9", 5};
        row("no room") = {"stty cols 4", 0};
    }
    void progress()
    {
        const Progress &row = Rows<Progress>::current();
        const QString command = row.terminal + "; exec " + importer + ' ' + fixture("gcgc") + " 2>&1 >/dev/null";
        const Run result = runProgram("script", {"-qec", command, "/dev/null"});
        int longest = 0;
        for (const QByteArray &line : result.out.split('\r')) {
            if (line.contains("100 %"))
                longest = std::max(longest, line.size());
        }
        QCOMPARE(longest, row.length);
    }
};

QTEST_GUILESS_MAIN(TestAiaImport)
#include "tst_aia_import.moc"
