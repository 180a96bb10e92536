// aia-import as a person or a script meets it: output, messages and exit code.

#include "program.h"
#include "rows.h"
#include "table.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>

#include <csignal>

namespace {

const QString importer = QStringLiteral(AIA_TOOLS "/aia-import");

using Refusal = Table<QString, QByteArray>;   // file; what is said of it
using Usage = Table<QStringList, int>;        // arguments; status
using Summary = Table<QStringList>;           // lines, of a run with modulations of 60 s
using Copy = Table<QString, int, QByteArray>; // file, bytes that are missing; what is said of it

struct Limit {
    QString kind; // of the file
    int scans = 0;
    QString variables;
    int claimedPoints = 0; // by the header
    QByteArray reason{};   // why the run was given up
};

} // namespace

class TestAiaImport : public QObject
{
    Q_OBJECT

    Run run(const QStringList &arguments) { return runProgram(importer, arguments, folder.path()); }
    void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    QTemporaryDir folder;

private slots:
    void initTestCase()
    {
        QVERIFY(folder.isValid());
        const QByteArray gcgc = content(fixture("gcgc"));
        write("text.cdf", "not netCDF");
        write("empty.cdf", QByteArray());
        write("cut.cdf", gcgc.left(100));
        write("run.txt", gcgc);
        write("B.CDF", gcgc);
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("folder.cdf")));
    }

    void refusal_data()
    {
        const Refusal row;
        row("text", "text.cdf", "isn't a netCDF file");
        row("empty", "empty.cdf", "is empty");
        row("folder", "folder.cdf", "is a folder");
        row("missing", "missing.cdf", "doesn't exist");
        row("cut off in its header", "cut.cdf", "damaged or cut off");
        row("extension", "run.txt", "extension");
        row("no scans", fixture("chromatogram"), "no dimension \"scan_number\"");
        row("attributes", fixture("error-log-rank-1"), "loading \"error_log\"");
    }
    void refusal()
    {
        const auto [file, reason] = Refusal::row();
        const Run result = run({"--json", "-", file});
        QCOMPARE(result.code, 1);
        QCOMPARE(result.out, QByteArray());
        QVERIFY2(result.err.contains(reason) && result.err.contains(file.toLocal8Bit()), result.err);
        QCOMPARE(result.err.count("aia-import: ") + result.err.count("Error: ") + result.err.count("Debug: "), 1);
    }

    void usage_data()
    {
        const QString file = fixture("gcgc");
        const Usage row;
        row("no file", {}, 2);
        row("no length", {"--gcxgc", "0", file}, 0);
        row("longest", {"--gcxgc", "100", file}, 0);
        row("too long", {"--gcxgc", "100.01", file}, 2);
        row("negative", {"--gcxgc", "-0.5", file}, 2);
        row("not a number", {"--gcxgc", "nan", file}, 2);
        row("text", {"--gcxgc", "6s", file}, 2);
        row("answer and question", {"--gcxgc", "6", "--ask", file}, 2);
        row("unknown option", {"--no-such-option", file}, 2);
        row("JSON over data", {"--json", "run.txt", "run.txt"}, 2);
        row("capitals", {"B.CDF"}, 0);
        row("help wins", {"--help", file}, 0);
        row("version wins", {"--version", file}, 0);
    }
    void usage()
    {
        const auto [arguments, status] = Usage::row();
        const Run result = run(arguments);
        QCOMPARE(result.code, status);
        QCOMPARE(result.out.isEmpty(), status == 2);
    }

    void asksOnADisplayOnly()
    {
        const Run result = runProgram(
            "env",
            {"-u", "QT_QPA_PLATFORM", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", importer, "--ask", fixture("gcgc")});
        QCOMPARE(result.code, 1);
        QVERIFY(result.err.contains("needs a display"));
    }

    void json()
    {
        const Run result = run({"--json", "-", fixture("import-odd-scans")});
        QCOMPARE(result.code, 1); // a scan couldn't be read
        const QByteArray head = "{\"file\":\"" + fixture("import-odd-scans").toUtf8() + "\",";
        QCOMPARE(result.out, head + content(QStringLiteral(AIA_TEST_SOURCES "/expected/import-odd-scans.json")));
    }

    void summary_data()
    {
        const Summary row;
        row("import-odd-scans",
            {"Title: +Caf. \"5\\\\6\"\\?<1>", // of a control character
             "Date: +2007-09-23T05:08:00Z", "Masses: +2, from 50.1 to 60, on a grid of 0.1", "Points read: +4",
             "Scans not read: +1 \\(.* 3\\)"}); // the empty one isn't among them
        row("total-ion", {"Scans not read: +1 \\(.* 2\\)"});
        row("total-ion-no-intensity", {"Scans not read: +3, as .*"});
        row("gcgc",
            {"Modulation length: +60 s", "Scans in a modulation: +2", "Modulations: +2", "Second-dimension step: +30 s",
             "Detector type: +GCxGC, mass spectra \\(2048\\)"});
        row("gcgc-total-ion", {"Detector type: +GCxGC, total ion \\(1792\\)"});
    }
    void summary()
    {
        const auto [lines] = Summary::row();
        const QString printed = QString::fromUtf8(run({"--gcxgc", "60", fixture(QTest::currentDataTag())}).out);
        for (const QString &line : lines)
            QVERIFY2(
                QRegularExpression('^' + line + '$', QRegularExpression::MultilineOption).match(printed).hasMatch(),
                qPrintable(line + '\n' + printed));
    }

    void interruptedCopy_data()
    {
        const Copy row;
        row("whole", "plain", 0, "");
        row("last scan", "plain", 1, "read: 1 (counted from 0: number 4)");
        row("all masses", "plain", 120, "masses could not be read");
        row("no scan", "instruments", 1, "in full; the file is cut off");
    }
    void interruptedCopy()
    {
        const auto [file, missing, reason] = Copy::row();
        QByteArray bytes = content(fixture(file));
        bytes.chop(missing);
        write("copy.cdf", bytes);
        const Run result = run({"copy.cdf"});
        QCOMPARE(result.code, reason.isEmpty() ? 0 : 1);
        QCOMPARE(result.err.contains("not imported in full"), !reason.isEmpty());
        QVERIFY2(result.err.contains(reason), result.err);
        QCOMPARE(result.err.contains("copy.cdf\" is cut off"), missing > 0);
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
        QCOMPARE(err.count("scans that could not be read: 1 "), 40);
    }

    // Many scans and nothing else; as long as nobody reads the JSON, it can't come to its end.
    void interrupt()
    {
        write("long.cdf",
              QByteArray::fromHex("43444601000000000000000a000000010000000b") + QByteArray("scan_number", 12)
                  + QByteArray::fromHex("7735940000000000000000000000000000000000"));
        QProcess program;
        program.setWorkingDirectory(folder.path());
        program.start(importer, {"--json", "-", "long.cdf", fixture("gcgc")});
        QByteArray err;
        while (!err.contains("*** fin") && program.waitForReadyRead(longestWait))
            err += program.readAllStandardError();
        ::kill(pid_t(program.processId()), SIGINT);
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("of 2000000000 scans"), result.err);
        QVERIFY(!result.err.contains("given up"));
        QVERIFY(result.err.contains("Files that were not looked at: 1."));
        QVERIFY(result.out.endsWith("]}]}\n"));
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
        write("limit.cdl", text.arg(row.scans).arg(points).arg(row.variables).toLatin1());
        QCOMPARE(runProgram("ncgen", {"-k", row.kind, "-o", "limit.cdf", "limit.cdl"}, folder.path()).code, 0);
        if (row.claimedPoints > 0) {
            QByteArray bytes = content(folder.filePath("limit.cdf"));
            qToBigEndian(row.claimedPoints, bytes.data() + 4);
            write("limit.cdf", bytes);
        }
        const Run result = run({"--quiet", "limit.cdf"});
        const QByteArray sentence = "The import of \"limit.cdf\" was given up: ";
        QCOMPARE(result.err.contains(sentence), !row.reason.isEmpty());
        QVERIFY2(result.err.contains(row.reason), result.err);
    }

    void messages()
    {
        const Run result = run({"--quiet", fixture("import-odd-scans")});
        QCOMPARE(result.out, QByteArray());
        // First and last time for the header, then each scan; not the second look at two of them.
        const QByteArray start = "\nWarning: " + fixture("import-odd-scans").toLocal8Bit() + ": ";
        QVERIFY2(result.err.contains(start + "Data type mismatch while loading \"scan_acquisition_time\" (6 times)\n"),
                 result.err);
        QVERIFY(result.err.contains(start + "Mandatory attribute \"netcdf-revision\" is missing from file\n"));
    }

    void fullDisk()
    {
        if (!QFile::exists(QStringLiteral("/dev/full")))
            QSKIP("this system has no full disk to offer");
        const Run result = run({"--json", "/dev/full", fixture("gcgc")});
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("\"/dev/full\" can't be written"), result.err);
    }
};

QTEST_GUILESS_MAIN(TestAiaImport)
#include "tst_aia_import.moc"
