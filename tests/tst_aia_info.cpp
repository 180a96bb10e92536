// aia-info as a person or a script meets it: output, messages and exit code.

#include "program.h"
#include "table.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

using Json = Table<QJsonValue>;                       // at the path that the row is named after
using Text = Table<QString, QString>;                 // file; a part of what is printed
using ExitCode = Table<QStringList, int, QByteArray>; // arguments; status, what is printed on either stream

} // namespace

class TestAiaInfo : public QObject
{
    Q_OBJECT

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
        const QJsonValue absent(QJsonValue::Undefined);
        const Json row;
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
    void json()
    {
        const auto [expected] = Json::row();
        QCOMPARE(at(library, QString::fromLatin1(QTest::currentDataTag())), expected);
    }

    void text_data()
    {
        const Text row;
        row("control characters", "info-library", "experiment_title: Café \\x1b[31m\\nred\n");
        row("table", "info-library", "    mass  intensity\n    50.1         10\n      60        nan\n");
        row("missing number", "info-library", "        77              -         0.1\n");
        row("other template", "info-chromatogram", "not AIA MS, but AIA for chromatography\n");
        row("nothing", "info-chromatogram", "stored_as: (nothing)\n");
        row("lack", "info-chromatogram", "  - dimension scan_number: there are no scans\n");
        row("what is there all the same", "info-chromatogram", "experiment_title: Caffeine\n");
    }
    void text()
    {
        const auto [file, expected] = Text::row();
        const Run result = run({"--scan", "0", fixture(file)});
        QVERIFY2(QString::fromUtf8(result.out).contains(expected), result.out);
    }

    void messagesComeOnce()
    {
        const Run result = run({fixture("info-library")});
        QVERIFY2(result.err.contains("Data type mismatch while loading \"entry_number\" (20 times)\n"), result.err);
        QCOMPARE(result.err.count("entry_number"), 1);
        QVERIFY(!result.out.contains("mismatch"));
    }

    void listsAreCutUnlessAllIsWanted()
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

    void exitCode_data()
    {
        const QString good = fixture("info-library");
        const QString noNetcdf = QStringLiteral(AIA_TOOLS "/aia-info");
        const ExitCode row;
        row("no file named", {}, 2, "no file was named");
        row("unknown option", {"--jsn", good}, 2, "jsn");
        row("scan isn't a number", {"--scan", "two", good}, 2, "--scan takes");
        row("negative scan", {"--scan=-1", good}, 2, "--scan takes");
        row("help", {"--help"}, 0, "Usage:");
        row("version", {"--version"}, 0, "aia-info ");
        row("no such file", {"nosuch.cdf"}, 1, "nosuch.cdf: there is no such file");
        row("folder", {AIA_FIXTURES}, 1, "isn't a file");
        row("not netCDF", {noNetcdf}, 1, "isn't a netCDF file");
        row("scan beyond", {"--scan", "22", good}, 1, "no scan 22: the file has 22");
        row("other template", {fixture("info-chromatogram")}, 0, "lacks");
        row("bad file first", {"nosuch.cdf", good}, 1, "Toluene");
    }
    void exitCode()
    {
        const auto [arguments, code, said] = ExitCode::row();
        const Run result = run(arguments);
        QCOMPARE(result.code, code);
        QVERIFY2((result.out + result.err).contains(said), result.out + result.err);
    }

    void claimsStayBounded()
    {
        const Run result = run({"--scan", "2147483643", fixture("info-claims")});
        QCOMPARE(result.code, 1);
        QVERIFY(result.out.contains("scan 2147483643 can't be read whole"));
        QVERIFY(result.out.contains("... and 2147483624 more"));
        QVERIFY(result.out.size() < 10000);
    }
};

QTEST_GUILESS_MAIN(TestAiaInfo)
#include "tst_aia_info.moc"
