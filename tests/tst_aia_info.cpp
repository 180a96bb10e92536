// aia-info as a person or a script meets it: output, messages and exit code.

#include "program.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace {

Run run(const QStringList &arguments)
{
    return runProgram(QStringLiteral(AIA_TOOLS "/aia-info"), arguments);
}

// The value at a path such as "groups/0/group_mass_count".
QJsonValue at(QJsonValue value, const QString &path)
{
    for (const QString &step : path.split(QLatin1Char('/')))
        value = value.isArray() ? value.toArray().at(step.toInt()) : value.toObject().value(step);
    return value;
}

} // namespace

class TestAiaInfo : public QObject
{
    Q_OBJECT

private slots:
    void json_data();
    void json();
    void text_data();
    void text();
    void messagesComeOnce();
    void listsAreCutUnlessAllIsWanted();
    void exitCode_data();
    void exitCode();
    void claimsStayBounded();

private:
    QJsonObject library_;
};

void TestAiaInfo::json_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QJsonValue>("expected");

    const QJsonValue absent(QJsonValue::Undefined);
    const auto row = [](const char *path, const QJsonValue &expected) {
        QTest::newRow(path) << QString::fromLatin1(path) << expected;
    };
    row("administration/experiment_title", QString::fromUtf8("Café \x1b[31m\nred"));
    row("administration/number_of_times_processed", 3); // stored as a short
    row("administration/number_of_times_calibrated", absent);
    row("test/test_ms_inlet_temperature", 70.1); // a float
    row("raw_data/mass_units", "(not in the vocabulary)");
    row("raw_data/intensity_units", "Arbitrary Intensity Units"); // a default
    row("raw_data/mass_scale_factor", 0.5);
    row("raw_data/time_scale_factor", absent);
    row("raw_data/raw_data_mass_format", "Short");
    row("stored_as/mass_values", "Float");
    row("stored_as/time_values", absent);
    row("dimensions/scan_number", 22);
    row("lacks/0", "variable total_intensity: there is no total-ion trace");
    row("lacks/1", absent);
    row("instruments/0/instrument_name", "Quadrupole");
    row("instruments/1", QJsonObject());
    row("groups/0/masses/1", QJsonObject{{"mass", 78}, {"sampling_time", {}}, {"delay_time", 0.2}});
    row("groups/0/masses/2", absent); // beyond the group's own count
    row("groups/1/group_starting_scan", absent);
    row("library/1", QJsonObject{{"entry_name", "Toluene"}});
    row("scan/scan_acquisition_time", 1.5);
    row("scan/resolution", absent);
    row("scan/entry/melting_point", 5.53);
    row("scan/points/0", QJsonObject{{"mass", 50.1}, {"intensity", 10}});
    row("scan/points/1", QJsonObject{{"mass", 60}, {"intensity", {}}}); // NaN
    row("scan/points/3", absent);
    row("scan/flags/1", QJsonObject{{"peak", 2}, {"flag", 8}});
    row("problems", absent);
}

void TestAiaInfo::json()
{
    if (library_.isEmpty()) {
        const Run result = run({"--json", "--scan", "0", fixture("info-library")});
        QCOMPARE(result.code, 0);
        library_ = QJsonDocument::fromJson(result.out).object();
    }
    QFETCH(QString, path);
    QTEST(at(library_, path), "expected");
}

void TestAiaInfo::text_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("expected");
    QTest::newRow("control characters") << "info-library"
                                        << QString::fromUtf8("experiment_title: Café \\x1b[31m\\nred\n");
    QTest::newRow("table") << "info-library"
                           << "    mass  intensity\n    50.1         10\n      60        nan\n";
    QTest::newRow("missing number") << "info-library"
                                    << "        77              -         0.1\n";
    QTest::newRow("other template") << "info-chromatogram"
                                    << "not AIA MS, but AIA for chromatography\n";
    QTest::newRow("lack") << "info-chromatogram"
                          << "  - dimension scan_number: there are no scans\n";
    QTest::newRow("what is there all the same") << "info-chromatogram"
                                                << "experiment_title: Caffeine\n";
}

void TestAiaInfo::text()
{
    QFETCH(QString, file);
    QFETCH(QString, expected);
    const Run result = run({"--scan", "0", fixture(file)});
    QVERIFY2(QString::fromUtf8(result.out).contains(expected), result.out.constData());
}

void TestAiaInfo::messagesComeOnce()
{
    const Run result = run({fixture("info-library")});
    QVERIFY2(result.err.contains("Data type mismatch while loading \"entry_number\" (20 times)\n"),
             result.err.constData());
    QCOMPARE(result.err.count("entry_number"), 1);
    QVERIFY(!result.out.contains("mismatch"));
}

void TestAiaInfo::listsAreCutUnlessAllIsWanted()
{
    const QString file = fixture("info-library");
    const QByteArray text = run({file}).out;
    QVERIFY(text.contains("\n  19:\n") && !text.contains("\n  20:\n"));
    QVERIFY(text.contains("\n  ... and 2 more\n"));
    const QJsonObject cut = QJsonDocument::fromJson(run({"--json", file}).out).object();
    QCOMPARE(cut.value("library").toArray().size(), 20);
    QCOMPARE(cut.value("library_omitted").toInt(), 2);
    const QJsonObject all = QJsonDocument::fromJson(run({"--json", "--all", file}).out).object();
    QCOMPARE(all.value("library").toArray().size(), 22);
    QVERIFY(!all.contains("library_omitted"));
}

void TestAiaInfo::exitCode_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("said"); // in what is printed, on whichever of the two streams

    const QString good = fixture("info-library");
    const QString no_netcdf = QStringLiteral(AIA_TOOLS "/aia-info");
    QTest::newRow("no file named") << QStringList() << 2 << QByteArray("no file was named");
    QTest::newRow("unknown option") << QStringList{"--jsn", good} << 2 << QByteArray("jsn");
    QTest::newRow("scan isn't a number") << QStringList{"--scan", "two", good} << 2 << QByteArray("--scan takes");
    QTest::newRow("negative scan") << QStringList{"--scan=-1", good} << 2 << QByteArray("--scan takes");
    QTest::newRow("help") << QStringList{"--help"} << 0 << QByteArray("Usage:");
    QTest::newRow("version") << QStringList{"--version"} << 0 << QByteArray("aia-info ");
    QTest::newRow("no such file") << QStringList{"nosuch.cdf"} << 1 << QByteArray("nosuch.cdf: there is no such file");
    QTest::newRow("folder") << QStringList{AIA_FIXTURES} << 1 << QByteArray("isn't a file");
    QTest::newRow("not netCDF") << QStringList{no_netcdf} << 1 << QByteArray("isn't a netCDF file");
    QTest::newRow("scan beyond") << QStringList{"--scan", "22", good} << 1 << QByteArray("no scan 22: the file has 22");
    QTest::newRow("other template") << QStringList{fixture("info-chromatogram")} << 0 << QByteArray("lacks");
    QTest::newRow("bad file first") << QStringList{"nosuch.cdf", good} << 1 << QByteArray("Toluene");
}

void TestAiaInfo::exitCode()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, said);
    const Run result = run(arguments);
    QTEST(result.code, "code");
    QVERIFY2((result.out + result.err).contains(said), (result.out + result.err).constData());
}

void TestAiaInfo::claimsStayBounded()
{
    const Run result = run({"--scan", "2147483643", fixture("info-claims")});
    QCOMPARE(result.code, 1);
    QVERIFY(result.out.contains("scan 2147483643 can't be read whole"));
    QVERIFY(result.out.contains("... and 2147483624 more"));
    QVERIFY(result.out.size() < 10000);
}

QTEST_GUILESS_MAIN(TestAiaInfo)
#include "tst_aia_info.moc"
