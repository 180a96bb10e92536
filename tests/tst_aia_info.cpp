// aia-info as a person or a script meets it: output, messages and exit code.

#include "program.h"
#include "rows.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <sys/types.h>
#include <utility>

namespace {

const QString tool = QStringLiteral(AIA_TOOLS "/aia-info");

Run run(const QStringList &arguments)
{
    return runProgram(tool, arguments);
}

// The value at a path such as "groups/0/group_mass_count".
QJsonValue at(QJsonValue value, const QString &path)
{
    for (const QString &step : path.split(QLatin1Char('/')))
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    return value;
}

struct Value {
    QJsonValue value = QJsonValue::Undefined; // at the path that the row is named after
};

struct Text {
    QString file;
    QString part; // of what is printed
};

} // namespace

class TestAiaInfo : public QObject
{
    Q_OBJECT

    const QTemporaryDir folder;
    QJsonObject library;

private slots:
    void initTestCase()
    {
        const Run result = run({"--json", "--scan", "0", fixture("info-library")});
        QCOMPARE(result.code, 0);
        library = QJsonDocument::fromJson(result.out).object();
    }

    void json_data()
    {
        const Rows<Value> row;
        row("administration/experiment_title") = {QString::fromUtf8("Café \x1b[31m\nred")};
        row("administration/number_of_times_processed") = {3}; // stored as a short
        row("administration/number_of_times_calibrated") = {};
        row("test/test_ms_inlet_temperature") = {70.1}; // a float
        row("raw_data/mass_units") = {"Furlongs (not in the vocabulary)"};
        row("raw_data/mass_units_is_default") = {};
        row("raw_data/intensity_units") = {"Arbitrary Intensity Units"};
        row("raw_data/intensity_units_is_default") = {true};
        row("raw_data/mass_scale_factor") = {0.5};
        row("raw_data/time_scale_factor") = {};
        row("raw_data/raw_data_mass_format") = {"Short"};
        row("kind") = {"netCDF classic"};
        row("stored_as/mass_values") = {"Float"};
        row("stored_as/time_values") = {};
        row("dimensions/scan_number") = {22};
        row("lacks/0") = {"variable total_intensity: there is no total-ion trace"};
        row("lacks/1") = {};
        row("instruments/0/instrument_name") = {"Quadrupole"};
        row("instruments/1") = {QJsonObject()};
        row("groups/0/masses/1") = {QJsonObject{{"mass", 78}, {"sampling_time", {}}, {"delay_time", 0.2}}};
        row("groups/0/masses/2") = {}; // beyond the group's own count
        row("groups/1/group_starting_scan") = {};
        // Of the numbers as they are meant; NaN doesn't count.
        row("ranges/0") = {QJsonObject{{"quantity", "mass"},
                                       {"claimed_min", 25},
                                       {"claimed_max", 35},
                                       {"measured_min", 25.05},
                                       {"measured_max", 35}}};
        row("ranges/1") = {QJsonObject{{"quantity", "intensity"},
                                       {"claimed_min", {}},
                                       {"claimed_max", {}},
                                       {"measured_min", 10},
                                       {"measured_max", 30}}};
        row("library/2") = {QJsonObject()}; // never written
        row("library/1") = {QJsonObject{{"entry_name", "Toluene"}}};
        row("scan/scan_acquisition_time") = {1.5};
        row("scan/resolution") = {};
        row("scan/entry/melting_point") = {5.53};
        row("scan/points/0") = {QJsonObject{{"mass", 50.1}, {"intensity", 10}}};
        row("scan/points/1") = {QJsonObject{{"mass", 60}, {"intensity", {}}}}; // NaN
        row("scan/points/3") = {};
        row("scan/ranges/0/measured_max") = {35};
        row("scan/flags/0") = {QJsonObject{{"peak", 1}, {"flag", -9999}}}; // which is missing among doubles only
        row("scan/flags/1") = {QJsonObject{{"peak", 2}, {"flag", 8}}};
        row("problems") = {};
        row("doubts/0/code") = {"bad-intensities"};
        row("complete") = {true};
        row("version") = {1};
    }
    void json() { QCOMPARE(at(library, QString::fromLatin1(QTest::currentDataTag())), Rows<Value>::current().value); }

    void text_data()
    {
        const Rows<Text> row;
        row("control characters") = {"info-library", "experiment_title: Café \\x1b[31m\\nred\n"};
        row("long attribute") = {"text-attributes", "789012345678901234567890123456789\n"}; // whole
        row("table") = {"info-library", "    mass  intensity\n    50.1         10\n      60        nan\n"};
        row("missing number") = {"info-library", "        77              -         0.1\n"};
        row("default") = {"info-library", "  test_scan_law: Linear (default: the file doesn't say)\n"};
        row("other template") = {"info-chromatogram", "not AIA MS, but AIA for chromatography\n"};
        row("nothing") = {"info-chromatogram", "stored_as: (nothing)\n"};
        row("lack") = {"info-chromatogram", "  - dimension scan_number: there are no scans\n"};
        row("what is there all the same") = {"info-chromatogram", "experiment_title: Caffeine\n"};
    }
    void text()
    {
        const Text &row = Rows<Text>::current();
        const Run result = run({"--scan", "0", fixture(row.file)});
        QVERIFY2(QString::fromUtf8(result.out).contains(row.part), result.out);
    }

    void messagesComeOnce()
    {
        const Run result = run({fixture("info-library")});
        QVERIFY2(result.err.contains("aia-info: Warning for the file \"" + fixture("info-library").toLocal8Bit()
                                     + "\": Data type mismatch while loading \"entry_number\" (20 times).\n"),
                 result.err);
        QCOMPARE(result.err.count("entry_number"), 1);
        QVERIFY(!result.out.contains("mismatch"));
    }

    void listsAreCutUnlessAllIsWanted()
    {
        const QString file = fixture("info-library");
        const QByteArray text = run({file}).out;
        QVERIFY(text.contains("\n  19: ") && text.contains("\n  ... and 2 more\n") && !text.contains("\n  20: "));
        for (const bool isAll : {false, true}) {
            const QByteArray out = run({"--json", file, isAll ? "--all" : "--json"}).out;
            const QJsonObject json = QJsonDocument::fromJson(out).object();
            QCOMPARE(json["library"].toArray().size(), isAll ? 22 : 20);
            QCOMPARE(json["library_omitted"], isAll ? QJsonValue(QJsonValue::Undefined) : QJsonValue(2));
        }
    }

    void saysFirstWhatIsLost()
    {
        const QString cut = folder.filePath("cut.cdf");
        QByteArray bytes = content(fixture("plain"));
        bytes.chop(1);
        QVERIFY(writeFile(cut, bytes));
        const Run result = run({cut});
        QCOMPARE(result.code, 1);
        const QByteArray name = cut.toUtf8();
        const QByteArray start = "file: " + name + "\ncomplete: false\ndoubts:\n  - \"" + name + "\" is cut off: ";
        QCOMPARE(result.out.left(start.size()), start);
        QVERIFY(!result.err.contains("cut off")); // which is said
        const QJsonObject json = QJsonDocument::fromJson(run({"--json", cut}).out).object();
        QCOMPARE(at(json, "complete"), QJsonValue(false));
        QCOMPARE(at(json, "doubts/0/code"), QJsonValue("cut-off"));
        QCOMPARE(at(json, "doubts/0/loss"), QJsonValue(true));
    }

    void aRefusedFileHasAnObject()
    {
        const QString path = folder.filePath("damaged.cdf");
        QVERIFY(writeFile(path, content(fixture("plain")).left(200)));
        const Run result = run({"--json", path});
        QCOMPARE(result.code, 1);
        const QJsonObject json = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(json["complete"], QJsonValue(false));
        QCOMPARE(result.err, "aia-info: " + json["error"].toString().toUtf8() + '\n');
    }

    // The pipe is full long before the last file.
    void stopsAtCtrlC()
    {
        QStringList files;
        for (int i = 0; i < 1000; ++i)
            files += fixture("info-library");
        QProcess program;
        program.start(tool, files);
        QVERIFY(program.waitForReadyRead(longestWait));
        ::kill(pid_t(program.processId()), SIGINT);
        const Run result = finish(program);
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("The program stopped before it looked at "), result.err);
    }

    // Said once, as the next file can't be shown either.
    void refusedOutput()
    {
        const QString file = fixture("info-library");
        for (const auto &[output, reason] :
             {std::pair{"1</dev/null", "Bad file descriptor"}, std::pair{">/dev/full", "No space left on device"}}) {
            const Run result = runProgram(
                "/bin/sh", {"-c", QStringLiteral("exec \"$0\" --json \"$@\" %1").arg(output), tool, file, file});
            QCOMPARE(result.code, 1);
            QCOMPARE(result.err.count(QByteArray("aia-info: Standard output can't be written: ") + reason + ".\n"), 1);
        }
    }

    void countsThatWereNeverWrittenAreNone()
    {
        const QString path = folder.filePath("counts.cdf");
        QVERIFY(makeNetcdf(path, "classic",
                           "netcdf counts { dimensions: scan_number = 1; variables: int scan_index(scan_number), "
                           "point_count(scan_number), flag_count(scan_number); data: scan_index = 0; }"));
        const Run result = run({"--scan", "0", path});
        QVERIFY2(result.out.contains("scan: 0\n") && !result.out.contains("_count: "), result.out);
    }

    void claimsStayBounded()
    {
        const Run result = run({"--scan", "2147483643", fixture("info-claims")});
        QCOMPARE(result.code, 1);
        QVERIFY(result.out.contains("Scan 2147483643 can't be read whole."));
        QVERIFY(result.out.contains("... and 2147483624 more"));
        QVERIFY(result.out.contains("... and 2147483643 more")); // groups, which are as wide
        QVERIFY(result.out.size() < 10000);
    }
};

QTEST_GUILESS_MAIN(TestAiaInfo)
#include "tst_aia_info.moc"
