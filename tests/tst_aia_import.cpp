#include "program.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

const QString importer = QStringLiteral(AIA_TOOLS "/aia-import");

Run run(const QStringList &arguments, const QString &folder = QString())
{
    return runProgram(importer, arguments, folder);
}

QByteArray content(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What the program itself says, without the account that the plugin gives of a run.
QByteArrayList sentences(const QByteArray &err)
{
    QByteArrayList found;
    for (const QByteArray &line : err.split('\n')) {
        if (line.startsWith("aia-import: ") || line.startsWith("Error: ") || line.startsWith("Debug: "))
            found.append(line);
    }
    return found;
}

} // namespace

class TestAiaImport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refusal_data();
    void refusal();
    void usage_data();
    void usage();
    void asksOnADisplayOnly();
    void json();
    void summary_data();
    void summary();
    void interruptedCopy_data();
    void interruptedCopy();
    void refusalAmongOthers();
    void leavesNothingOpen();
    void interrupt();
    void messages();
    void fullDisk();

private:
    void write(const QString &name, const QByteArray &bytes);

    QTemporaryDir folder;
    const QString otherFile = QString::fromUtf8("\xE6\x97\xA5.cdf"); // in Latin-1: "?.cdf"
    const bool namesAreUtf8 = QFile::encodeName(otherFile) == otherFile.toUtf8();
};

void TestAiaImport::write(const QString &name, const QByteArray &bytes)
{
    QFile file(folder.filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void TestAiaImport::initTestCase()
{
    QVERIFY(folder.isValid());
    const QByteArray gcgc = content(fixture("gcgc"));
    write("text.cdf", "not netCDF");
    write("empty.cdf", QByteArray());
    write("cut.cdf", gcgc.left(100));
    write("run.txt", gcgc);
    write("?.cdf", gcgc);
    write("B.CDF", gcgc);
    if (namesAreUtf8)
        write(otherFile, gcgc);
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("folder.cdf")));
}

void TestAiaImport::refusal_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("text") << "text.cdf" << QByteArray("isn't a netCDF file");
    QTest::newRow("empty") << "empty.cdf" << QByteArray("is empty");
    QTest::newRow("folder") << "folder.cdf" << QByteArray("is a folder");
    QTest::newRow("missing") << "missing.cdf" << QByteArray("doesn't exist");
    QTest::newRow("cut off in its header") << "cut.cdf" << QByteArray("damaged or cut off");
    QTest::newRow("extension") << "run.txt" << QByteArray("extension");
    if (namesAreUtf8)
        QTest::newRow("another file's name") << otherFile << QByteArray("netCDF can't find it");
    QTest::newRow("no scans") << fixture("chromatogram") << QByteArray("no dimension \"scan_number\"");
    QTest::newRow("nothing of the template") << fixture("no-axes") << QByteArray("\"scan_number\"");
    QTest::newRow("attributes") << fixture("error-log-rank-1") << QByteArray("loading \"error_log\"");
}

void TestAiaImport::refusal()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, reason);
    const Run result = run({"--json", "-", file}, folder.path());
    QCOMPARE(result.code, 1);
    QCOMPARE(result.out, QByteArray());
    const QByteArrayList said = sentences(result.err);
    QCOMPARE(said.size(), 1);
    QVERIFY2(said[0].contains(reason), said[0].constData());
    QVERIFY2(said[0].contains(file.toLocal8Bit()), said[0].constData());
}

void TestAiaImport::usage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::newRow("no length") << QStringList{"--gcxgc", "0"} << 0;
    QTest::newRow("longest") << QStringList{"--gcxgc", "100"} << 0;
    QTest::newRow("too long") << QStringList{"--gcxgc", "100.01"} << 2;
    QTest::newRow("negative") << QStringList{"--gcxgc", "-0.5"} << 2;
    QTest::newRow("not a number") << QStringList{"--gcxgc", "nan"} << 2;
    QTest::newRow("text") << QStringList{"--gcxgc", "6s"} << 2;
    QTest::newRow("answer and question") << QStringList{"--gcxgc", "6", "--ask"} << 2;
    QTest::newRow("unknown option") << QStringList{"--no-such-option"} << 2;
    QTest::newRow("JSON over data") << QStringList{"--json", "run.txt", "run.txt"} << 2;
    QTest::newRow("capitals") << QStringList{"B.CDF"} << 0;
    QTest::newRow("help wins") << QStringList{"--help"} << 0;
    QTest::newRow("version wins") << QStringList{"--version"} << 0;
}

void TestAiaImport::usage()
{
    QFETCH(QStringList, options);
    const Run result = run(options << fixture("gcgc"), folder.path());
    QTEST(result.code, "status");
    QCOMPARE(result.out.isEmpty(), result.code == 2);
    QCOMPARE(run({}).code, 2);
}

void TestAiaImport::asksOnADisplayOnly()
{
    const Run result = runProgram(
        "env", {"-u", "QT_QPA_PLATFORM", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", importer, "--ask", fixture("gcgc")});
    QCOMPARE(result.code, 1);
    QVERIFY(result.err.contains("needs a display"));
}

void TestAiaImport::json()
{
    const Run result = run({"--json", "-", fixture("import-odd-scans")});
    QCOMPARE(result.code, 1); // a scan couldn't be read
    const QByteArray head = "{\"file\":\"" + fixture("import-odd-scans").toUtf8() + '"';
    QVERIFY(result.out.startsWith(head));
    QCOMPARE(result.out.mid(head.size()),
             QByteArray(R"(,"header":{"scanCount":4,"modulation":0.0,"abundanceBits":28,"abundanceCoefficient":null,)"
                        R"("date":1190524080,"device":null,"experimentName":"Café \"5\\6\"\u0009<1>",)"
                        R"("retentionUnit":"minutes","runLength":0.30000000000000004,"delay":0.1,)"
                        R"("samplingInterval":0.10000000000000002,"detectorType":512},)"
                        R"("massTable":[50.099998474121094,60.0],"scans":[)"
                        R"({"time":0.1,"total":0.1,"positions":[0,1],"abundances":[-0.0,0.10000000149011612]},)"
                        R"({"time":0.2,"total":0.0,"positions":[],"abundances":[]},)"
                        R"({"time":0.3,"total":null,"positions":[0,1],"abundances":[null,1e999]},)"
                        R"({"time":0.4,"total":0.0,"positions":[],"abundances":[]}]})"
                        "\n"));
}

void TestAiaImport::summary_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const char *line) {
        QTest::newRow(line) << name << QString::fromLatin1(line);
    };
    row("import-odd-scans", "Date: +2007-09-23T05:08:00Z");
    row("import-odd-scans", "Masses: +2, from 50.1 to 60, on a grid of 0.1");
    row("import-odd-scans", "Points read: +4");
    row("import-odd-scans", "Scans not read: +1 \\(.* 3\\)"); // the empty one isn't among them
    row("total-ion", "Scans not read: +1 \\(.* 2\\)");
    row("total-ion-no-intensity", "Scans not read: +3, as .*");
    row("gcgc", "Modulation length: +60 s");
    row("gcgc", "Scans in a modulation: +2"); // of half a minute
    row("gcgc", "Modulations: +2");
    row("gcgc", "Second-dimension step: +30 s");
    row("gcgc", "Detector type: +GCxGC, mass spectra \\(2048\\)");
    row("gcgc-total-ion", "Detector type: +GCxGC, total ion \\(1792\\)");
}

void TestAiaImport::summary()
{
    QFETCH(QString, file);
    QFETCH(QString, line);
    const Run result = run({"--gcxgc", "60", fixture(file)});
    const QRegularExpression expected('^' + line + '$', QRegularExpression::MultilineOption);
    QVERIFY2(expected.match(QString::fromUtf8(result.out)).hasMatch(), result.out.constData());
}

void TestAiaImport::interruptedCopy_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("missing");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("whole") << "gcms_float" << 0 << QByteArray();
    QTest::newRow("last scan") << "gcms_float" << 1 << QByteArray("read: 1 (counted from 0: number 4)");
    QTest::newRow("all masses") << "gcms_float" << 120 << QByteArray("masses could not be read");
    QTest::newRow("no scan") << "instruments" << 1 << QByteArray("in full; the file is cut off");
    QTest::newRow("masses out of shape") << "mass-values-rank-2" << 0 << QByteArray("masses could not be read");
}

void TestAiaImport::interruptedCopy()
{
    QFETCH(QString, file);
    QFETCH(int, missing);
    QFETCH(QByteArray, reason);
    QByteArray bytes = content(fixture(file));
    bytes.chop(missing);
    write("copy.cdf", bytes);
    const Run result = run({"copy.cdf"}, folder.path());
    QCOMPARE(result.code, reason.isEmpty() ? 0 : 1);
    QCOMPARE(sentences(result.err).join().contains("not imported in full"), !reason.isEmpty());
    QVERIFY2(result.err.contains(reason), result.err.constData());
    QCOMPARE(result.err.contains("copy.cdf\" is cut off"), missing > 0);
}

void TestAiaImport::refusalAmongOthers()
{
    // The length holds for each file, and a refused file leaves nothing behind for the next.
    const Run result =
        run({"--json", "all.json", "--gcxgc", "6", fixture("gcgc"), fixture("chromatogram"), fixture("gcgc")},
            folder.path());
    QCOMPARE(result.code, 1);
    const QByteArrayList lines = content(folder.filePath("all.json")).split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0], lines[1]);
    QCOMPARE(QJsonDocument::fromJson(lines[1]).object()["header"].toObject()["modulation"].toDouble(), 6.0);
}

void TestAiaImport::leavesNothingOpen()
{
    QStringList arguments{"-c", "ulimit -n 32 && exec \"$0\" --quiet \"$@\"", importer};
    for (int i = 0; i < 40; ++i)
        arguments << fixture("chromatogram") << fixture("import-odd-scans");
    QProcess shell;
    shell.start("/bin/sh", arguments);
    const QByteArray err = finish(shell).err;
    QCOMPARE(err.count("no dimension \"scan_number\""), 40);
    QCOMPARE(err.count("scans that could not be read: 1 "), 40);
}

void TestAiaImport::interrupt()
{
    // Many scans and nothing else; as long as nobody reads the JSON, it can't come to its end.
    write("long.cdf",
          QByteArray::fromHex("43444601000000000000000a000000010000000b") + QByteArray("scan_number", 12)
              + QByteArray::fromHex("7735940000000000000000000000000000000000"));
    QProcess program;
    program.setWorkingDirectory(folder.path());
    program.start(importer, {"--json", "-", "long.cdf", fixture("gcgc")});
    QByteArray err;
    while (!err.contains("*** fin") && program.waitForReadyRead(10000))
        err += program.readAllStandardError();
    ::kill(pid_t(program.processId()), SIGINT);
    const Run result = finish(program);
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.contains("of 2000000000 scans"), result.err.constData());
    QVERIFY(!result.err.contains("given up"));
    QVERIFY(result.err.contains("Files that were not looked at: 1."));
    QVERIFY(result.out.endsWith("]}]}\n"));
}

void TestAiaImport::messages()
{
    const Run result = run({"--quiet", fixture("import-odd-scans")});
    QCOMPARE(result.out, QByteArray());
    // First and last time for the header, then each scan; not the second look at two of them.
    const QByteArray start = "\nWarning: " + fixture("import-odd-scans").toLocal8Bit() + ": ";
    QVERIFY2(result.err.contains(start + "Data type mismatch while loading \"scan_acquisition_time\" (6 times)\n"),
             result.err.constData());
    QVERIFY(result.err.contains(start + "Mandatory attribute \"netcdf-revision\" is missing from file\n"));
}

void TestAiaImport::fullDisk()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("this system has no full disk to offer");
    const Run result = run({"--json", "/dev/full", fixture("gcgc")});
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.contains("\"/dev/full\" can't be written"), result.err.constData());
}

QTEST_GUILESS_MAIN(TestAiaImport)

#include "tst_aia_import.moc"
