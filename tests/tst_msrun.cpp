// A run read with judgement: where its points and times come from, what is no data, and what is said of it.

#include "messageredirection.h"
#include "msfile.h"
#include "msrun.h"
#include "program.h"
#include "rows.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// A run whose point i, from 0 on, has the mass i + 1 and the intensity 10 i.
struct Places {
    QByteArray index; // of each scan; empty where the file has none
    QByteArray counts;
    QByteArray flags;
    int positions = 10;
    QString masses{}; // of the scans, "-" for one that can't be read
    QStringList codes{};
    quint32 claimed = 0; // positions by a damaged header
};

struct Times {
    QByteArray variables; // with data behind a bar
    QString times;        // of the four scans
    QStringList codes{};
};

struct Opening {
    QString file;
    QString error; // in which FILE stands for the file; empty where it can be opened
    MsRun::Kind kind = MsRun::Kind::Trace;
    int size = 0;
};

struct Moment {
    QString stamp;
    QString utc{}; // null without a zone
    bool isUnderstood = true;
};

QString join(const double *numbers, int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts += QString::number(numbers[i]);
    return texts.join(' ');
}

QString massesOf(const MsRun &run)
{
    QStringList scans;
    for (const MsSpectrum &scan : run)
        scans += scan.isRead() ? join(scan.masses(), scan.size()) : QStringLiteral("-");
    return scans.join(", ");
}

QStringList codesOf(const MsRun &run)
{
    QStringList codes;
    for (const MsDoubt &doubt : run.doubts())
        codes += doubt.code;
    return codes;
}

} // namespace

class TestMsRun : public QObject
{
    Q_OBJECT

    MsRun make(const QByteArray &cdl, const QString &kind = QStringLiteral("classic"), quint32 claimed = 0) const
    {
        const QString path = folder.filePath(QStringLiteral("made.cdf"));
        bool isMade = makeNetcdf(path, kind, cdl);
        if (claimed > 0) {
            QByteArray bytes = content(path);
            qToBigEndian(claimed, bytes.data() + 4); // the count of records
            isMade = isMade && writeFile(path, bytes);
        }
        return MsRun(isMade ? path : QString(), options);
    }

    const Silence silence;
    const QTemporaryDir folder;
    const MsRunOptions options{QStringLiteral(AIA_LOOK)};

private slots:
    void places_data()
    {
        const Rows<Places> row;
        row("right") = {"0, 3, 7", "3, 4, 3", "", 10, "1 2 3, 4 5 6 7, 8 9 10"};
        row("gaps and flags that are right") = {"1, 5, 8", "2, 2, 1", "1, 0, 1", 10, "2 3, 6 7, 9", {"unowned-points"}};
        row("no index") = {"", "3, 0, 7", "", 10, "1 2 3, , 4 5 6 7 8 9 10", {"scans-in-a-row"}};
        row("no index, flags") = {"", "3, 2, 3", "0, 2, 0", 10, "1 2 3, 4 5, 8 9 10", {"scans-in-a-row"}};
        row("no index, too few counted") = {"", "3, 0, 6", "", 10, "-, -, -", {"unreadable-scans"}};
        row("no index, never finished") = {
            "", "3, 7, _", "", 10, "1 2 3, 4 5 6 7 8 9 10, -", {"unwritten-scans", "scans-in-a-row"}};
        row("index never written") = {"_, _, _", "3, 0, 7", "", 10, "1 2 3, , 4 5 6 7 8 9 10", {"scans-in-a-row"}};
        row("index written but once") = {"0, _, 7", "3, 4, 3", "", 10, "1 2 3, 4 5 6 7, 8 9 10", {"scans-in-a-row"}};
        row("zeros") = {"0, 0, 0", "3, 4, 3", "", 10, "1 2 3, 4 5 6 7, 8 9 10", {"scans-in-a-row"}};
        row("from 1") = {"1, 4, 8", "3, 4, 3", "", 10, "1 2 3, 4 5 6 7, 8 9 10", {"scans-in-a-row"}};
        // As ms_write_per_scan leaves it where the second scan is written first.
        row("another order") = {"6, 0, 3", "4, 3, 3", "", 10, "7 8 9 10, 1 2 3, 4 5 6", {"falling-scan-index"}};
        row("another order, too few counted") = {
            "6, 0, 3", "4, 4, 3", "", 10, "7 8 9 10, 1 2 3 4, 4 5 6", {"falling-scan-index", "overlapping-scans"}};
        row("no counts") = {"0, 3, 7", "", "", 10, "1 2 3, 4 5 6 7, 8 9 10", {"counts-from-index"}};
        row("no counts, flags") = {"0, 3, 7", "", "1, 0, 2", 10, "1 2, 4 5 6 7, 8", {"counts-from-index"}};
        row("no counts, falling") = {"3, 0, 7", "", "", 10, "-, -, -", {"unreadable-scans"}};
        row("overlaps") = {"0, 3, 5", "4, 4, 4", "", 10, "1 2 3, 4 5, 6 7 8 9 10", {"counts-from-index"}};
        row("overlaps, flags") = {"0, 3, 6", "4, 3, 3", "0, 1, 0", 10, "1 2 3, 4 5, 7 8 9 10", {"counts-from-index"}};
        row("overlaps, and points before") = {
            "2, 5, 7", "4, 4, 4", "", 10, "3 4 5, 6 7, 8 9 10", {"unowned-points", "counts-from-index"}};
        row("last one over the end") = {"0, 3, 7", "3, 4, 9", "", 10, "1 2 3, 4 5 6 7, 8 9 10", {"counts-from-index"}};
        row("negative count") = {"0, 3, 7", "3, -4, 3", "", 10, "1 2 3, -, 8 9 10", {"bad-counts", "unowned-points"}};
        row("points that no file holds") = {"0, 3, 7",   "3, 4, 3", "", 10, "1 2 3, 4 5 6 7, 8 9 10",
                                            {"cut-off"}, 0x7fffffff};
    }
    void places()
    {
        const Places &row = Rows<Places>::current();
        const auto variable = [](const char *name, const QByteArray &data) {
            return data.isEmpty() ? QByteArray() : QByteArray(" int ") + name + "(scan_number) ;\n";
        };
        const auto values = [](const char *name, const QByteArray &data) {
            return data.isEmpty() ? QByteArray() : QByteArray(" ") + name + " = " + data + " ;\n";
        };
        QStringList masses;
        QStringList intensities;
        for (int i = 0; i < row.positions; ++i) {
            masses += QString::number(i + 1);
            intensities += QString::number(10 * i);
        }
        const MsRun run = make(
            "netcdf made {\ndimensions:\n scan_number = 3 ;\n point_number = "
                + (row.claimed > 0 ? QByteArray("UNLIMITED") : QByteArray::number(row.positions)) + " ;\nvariables:\n"
                + variable("scan_index", row.index) + variable("point_count", row.counts)
                + variable("flag_count", row.flags)
                + " double scan_acquisition_time(scan_number) ;\n float mass_values(point_number) ;\n"
                  " int intensity_values(point_number) ;\ndata:\n"
                + values("scan_index", row.index) + values("point_count", row.counts) + values("flag_count", row.flags)
                + " scan_acquisition_time = 1, 2, 3 ;\n" + values("mass_values", masses.join(", ").toLatin1())
                + values("intensity_values", intensities.join(", ").toLatin1()) + "}\n",
            "classic", row.claimed);
        QVERIFY2(run.isOpen(), qPrintable(run.error()));
        QCOMPARE(massesOf(run), row.masses);
        QCOMPARE(codesOf(run), row.codes);
        // From back to front, and what comes of the intensities.
        double total = 0.0;
        int readScans = 0;
        for (int i = run.size() - 1; i >= 0; --i) {
            const MsSpectrum scan = run.spectrum(i);
            QCOMPARE(scan.index(), i);
            const double sum = std::accumulate(scan.masses(), scan.masses() + scan.size(), 0.0);
            if (!scan.isRead())
                continue;
            QCOMPARE(scan.summedTotal(), 10.0 * (sum - scan.size()));
            total += scan.summedTotal();
            ++readScans;
        }
        const std::vector<double> average = run.averaged({0, 9}).intensities; // of those that can be read
        QCOMPARE(std::accumulate(average.begin(), average.end(), 0.0) * readScans, total);
    }

    void times_data()
    {
        const Rows<Times> row;
        row("there") = {"scan_acquisition_time|1, 2, 3, 5", "1 2 3 5"};
        row("durations") = {"scan_duration|1, 1, 2, 1;inter_scan_time|0.5, 0, 0, 0", "0 1.5 2.5 4.5", {"made-times"}};
        row("some durations") = {"scan_acquisition_time|-9999, 7, NaN, _;scan_duration|2, 1, -9999, 3",
                                 "5 7 8 nan",
                                 {"unwritten-scans", "missing-times", "bad-times", "made-times"}};
        row("twice the same") = {"scan_acquisition_time|1, 2, 2, 5", "1 2 2 5", {"equal-times"}};
        row("length") = {"|:actual_run_time_length = 30. ; :actual_delay_time = 5. ;", "5 15 25 35", {"made-times"}};
        row("nothing") = {"", "nan nan nan nan", {"missing-times"}};
        row("other unit") = {
            "scan_acquisition_time|1, 2, 3, 5;|time_values:units = \"Other Time\" ;", "1 2 3 5", {"time-units"}};
    }
    void times()
    {
        const Times &row = Rows<Times>::current();
        QByteArray variables;
        QByteArray data;
        for (const QString &each : QString(row.variables).split(QRegularExpression(";(?=[a-z|])"))) {
            const QString name = each.section('|', 0, 0);
            const QString value = each.section('|', 1);
            if (name.isEmpty()) {
                variables += ' ' + value.toLatin1() + '\n';
                continue;
            }
            variables += " double " + name.toLatin1() + "(scan_number) ;\n";
            data += ' ' + name.toLatin1() + " = " + value.toLatin1() + " ;\n";
        }
        const MsRun run = make("netcdf made {\ndimensions:\n scan_number = 4 ;\n point_number = 4 ;\nvariables:\n"
                               " int scan_index(scan_number) ;\n int point_count(scan_number) ;\n"
                               " short time_values(point_number) ;\n"
                               " float mass_values(point_number) ;\n float intensity_values(point_number) ;\n"
                               + variables
                               + "data:\n scan_index = 0, 1, 2, 3 ;\n point_count = 1, 1, 1, 1 ;\n"
                                 " time_values = 0, 0, 0, 0 ;\n mass_values = 5, 6, 7, 8 ;\n"
                                 " intensity_values = 1, 1, 1, 1 ;\n"
                               + data + "}\n");
        QVERIFY2(run.isOpen(), qPrintable(run.error()));
        const std::vector<double> times = run.times();
        QCOMPARE(join(times.data(), int(times.size())), row.times);
        QCOMPARE(codesOf(run), row.codes);
        for (const MsDoubt &doubt : run.doubts())
            QVERIFY(!doubt.isLoss || doubt.code == QByteArray("unwritten-scans"));
        const auto firstAt = [&](double time) {
            return int(std::find(times.begin(), times.end(), time) - times.begin());
        };
        for (int i = run.size() - 1; i >= 0; --i) {
            const double time = run.spectrum(i).time();
            QVERIFY(time == times[std::size_t(i)] || (std::isnan(time) && std::isnan(times[std::size_t(i)])));
            if (!std::isnan(time))
                QCOMPARE(run.scanAt(time + 0.1), firstAt(time));
        }
        // In the middle of two scans, the first one is taken.
        for (std::size_t i = 1; i < times.size(); ++i) {
            const double middle = (times[i - 1] + times[i]) / 2.0;
            if (!std::isnan(middle))
                QCOMPARE(run.scanAt(middle), firstAt(times[i - 1]));
        }
    }

    void opening_data()
    {
        const Rows<Opening> row;
        row("run") = {"plain", "", MsRun::Kind::Spectra, 5};
        row("dashes") = {"dashes", "", MsRun::Kind::Spectra, 3};
        row("newer kind") = {"wide-values", "", MsRun::Kind::Spectra, 3};
        row("trace") = {"total-ion", "", MsRun::Kind::Trace, 3};
        row("library") = {"library", "", MsRun::Kind::Library, 3};
        row("no scans") = {"no-scans", "", MsRun::Kind::Spectra, 0};
        row("scans beyond all bytes") = {"info-claims", "", MsRun::Kind::Library, 1 << 20};
        row("counts beyond all points") = {"odd-scan-index", "", MsRun::Kind::Spectra, 6};
        row("absent") = {"absent", "The file \"FILE\" doesn't exist."};
        row("chromatogram") = {"chromatogram",
                               "The file \"FILE\" can't be read: it has no dimension \"scan_number\", so "
                               "it isn't a mass spectrometry file of the AIA MS template."};
        row("attribute that can't be read") = {"int64-attribute",
                                               "The file \"FILE\" can't be read: its global attributes "
                                               "can't be read."};
    }
    void opening()
    {
        const Opening &row = Rows<Opening>::current();
        const MsRun run(fixture(row.file), options);
        QCOMPARE(run.error(), QString(row.error).replace("FILE", fixture(row.file)));
        QCOMPARE(run.isOpen(), row.error.isEmpty());
        QCOMPARE(run.size(), row.size);
        QVERIFY(!run.isOpen() || run.kind() == row.kind);
        qint64 leftOut = 0;
        for (const MsDoubt &doubt : run.doubts())
            leftOut += qstrcmp(doubt.code, "claimed-scans") == 0 ? doubt.count : 0;
        QCOMPARE(leftOut, run.isOpen() ? qint64(MsFile(run.name()).scanCount()) - run.size() : 0);
        QVERIFY(!run.spectrum(run.size()).isRead() && !run.spectrum(-1).isRead());
    }

    // As the toolkit has it, by scale and offset.
    void readsWhatIsRight()
    {
        for (const char *name : {"plain", "scaled-short", "double-masses", "continuum", "gcgc", "flags-on-masses"}) {
            const MsFile file(fixture(name));
            const MsGlobals globals = file.globals();
            const MsRun run(fixture(name), options);
            QCOMPARE(run.size(), file.scanCount());
            for (const MsScan &expected : file) {
                const MsSpectrum scan = run.spectrum(expected.scan_number);
                QCOMPARE(scan.isRead(), expected.isRead());
                QCOMPARE(scan.size(), expected.masses().size());
                QCOMPARE(scan.flagValues().toVector(), expected.flagValues().toVector());
                QCOMPARE(scan.summedTotal(),
                         std::accumulate(scan.intensities(), scan.intensities() + scan.size(), 0.0));
                const bool isFloat = file.record()->mass_format == MsFloatFormat && globals.mass(1.0) == 1.0;
                QCOMPARE(scan.storedMasses() != nullptr, isFloat && scan.size() > 0);
                for (int i = 0; i < scan.size(); ++i) {
                    QCOMPARE(scan.masses()[i], globals.mass(expected.masses()[i]));
                    QCOMPARE(scan.intensities()[i], globals.intensity(expected.intensities()[i]));
                    QVERIFY(!isFloat || double(scan.storedMasses()[i]) == scan.masses()[i]);
                }
            }
        }
    }

    void leavesOutWhatIsNoData()
    {
        const MsRun run = make("netcdf made {\ndimensions:\n scan_number = 2 ;\n point_number = 10 ;\nvariables:\n"
                               " float mass_values(point_number) ;\n"
                               " int scan_index(scan_number) ;\n int point_count(scan_number) ;\n"
                               " double scan_acquisition_time(scan_number) ;\n double total_intensity(scan_number) ;\n"
                               " float intensity_values(point_number) ;\n"
                               " double time_values(point_number) ;\n mass_values:scale_factor = 0. ;\n"
                               " intensity_values:scale_factor = Infinity ;\n"
                               "data:\n scan_index = 0, 5 ;\n point_count = 5, 5 ;\n scan_acquisition_time = 1, 2 ;\n"
                               " total_intensity = 9.969209968386869e+36, 90 ;\n"
                               " mass_values = 1, _, 3, 4, 5, 1, 2, 2.5, 3, 4 ;\n"
                               " intensity_values = 10, 20, NaNf, 40, -Infinityf, 10, 20, 30, _, 40 ;\n"
                               " time_values = 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 ;\n}\n");
        QCOMPARE(massesOf(run), QString("1 4, 1 2 2.5 4")); // such factors don't count
        QVERIFY(codesOf(run).contains("ignored-factor"));
        QCOMPARE(run.spectrum(0).pointTimes().toVector(), (std::vector<double>{1, 4}));
        QCOMPARE(run.spectrum(1).number(), 1); // the file has no number of its own
        QCOMPARE(run.summedTotals(), (std::vector<double>{50, 100}));
        QVERIFY(std::isnan(run.storedTotals()[0]));
        QCOMPARE(run.storedTotals()[1], 90.0);
        const auto traces = run.extractedTraces({{1, 1}, {2, 4}, {7, 9}});
        QCOMPARE(traces, (std::vector<std::vector<double>>{{10, 10}, {40, 90}, {0, 0}}));
        QVERIFY(run.extractedTraces({{1, 4}}, [](double) { return false; }).empty());
        const MsPeaks sum = run.summed({0, 9});
        QCOMPARE(sum.masses, (std::vector<double>{1, 2, 2.5, 4}));
        QCOMPARE(sum.intensities, (std::vector<double>{20, 20, 30, 80}));
        const MsPeaks average = run.averaged({1, 2}, 0.75);
        QCOMPARE(average.masses, (std::vector<double>{1, 2.3, 4}));
        QCOMPARE(average.intensities, (std::vector<double>{10, 25, 40}));
        QCOMPARE(run.averaged({1, 2}, 0.5).masses, (std::vector<double>{1, 2, 2.5, 4})); // less than the width
        QVERIFY(run.averaged({5, 9}).masses.empty());
    }

    void leavesOutWholeNumbersNeverWritten()
    {
        const MsRun run = make("netcdf made {\ndimensions:\n scan_number = 1 ;\n point_number = 4 ;\nvariables:\n"
                               " short mass_values(point_number) ;\n int intensity_values(point_number) ;\n"
                               " int scan_index(scan_number) ;\n int point_count(scan_number) ;\n"
                               " intensity_values:add_offset = Infinity ;\n"
                               "data:\n scan_index = 0 ;\n point_count = 4 ;\n mass_values = 1, _, 3, 4 ;\n"
                               " intensity_values = 10, 20, _, 40 ;\n}\n");
        QCOMPARE(massesOf(run), QString("1 4"));
        QCOMPARE(run.summedTotals(), std::vector<double>{50}); // such an offset doesn't count
        QVERIFY(codesOf(run).contains("ignored-factor"));
    }

    void knowsCompounds()
    {
        const MsRun run(fixture(QStringLiteral("library")), options);
        const MsCompound benzene = run.compound(0);
        QCOMPARE(benzene.name, QString("Benzene"));
        QCOMPARE(benzene.casNumber, 71432);
        QVERIFY(std::isnan(benzene.chemicalMass));
        QVERIFY(run.compound(1).name.isNull());
        QCOMPARE(run.compound(1).number, -1);
        QCOMPARE(run.compound(1).casNumber, -1); // 1e12
        QVERIFY(run.compound(3).name.isNull());
        QCOMPARE(join(run.spectrum(2).masses(), 2), QString("60.25 70.5"));
    }

    void survivesALibraryWithoutMasses()
    {
        const MsRun run = make("netcdf made {\ndimensions:\n scan_number = 1 ;\n point_number = 2 ;\nvariables:\n"
                               " int scan_index(scan_number) ;\n int point_count(scan_number) ;\n"
                               " short time_values(point_number) ;\n int intensity_values(point_number) ;\n"
                               " :experiment_type = \"Library Mass Spectrum\" ;\ndata:\n scan_index = 0 ;\n"
                               " point_count = 2 ;\n time_values = 1, 2 ;\n intensity_values = 3, 4 ;\n}\n");
        QCOMPARE(int(run.kind()), int(MsRun::Kind::Library));
        const MsSpectrum entry = run.spectrum(0);
        QCOMPARE(entry.size(), 0);
        QVERIFY(entry.masses() == entry.intensities()); // there are none, of either
        QCOMPARE(entry.summedTotal(), 0.0);
    }

    void knowsTheRun()
    {
        const MsRun run(fixture(QStringLiteral("run-facts")), options);
        const MsRunFacts &facts = run.facts();
        QVERIFY(facts.title.isNull());
        QCOMPARE(facts.separation.code, ms_enum_code("Gas-Liquid Chromatography"));
        QCOMPARE(facts.inlet.code, -1);
        QCOMPARE(facts.inlet.text, QString("Fused silica"));
        QVERIFY(!facts.ionisation.isStated());
        QCOMPARE(int(facts.polarity), int(MsRunFacts::Polarity::Negative));
        QCOMPARE(int(facts.spectra), int(MsRunFacts::Spectra::Profile));
        QCOMPARE(int(facts.scan), int(MsRunFacts::Scan::SelectedIons));
        QCOMPARE(facts.groups, 2);
        const MsRun other = make("netcdf made {\ndimensions:\n scan_number = 1 ;\n point_number = 1 ;\n"
                                 " group_number = 3 ;\n group_max_masses = 500000 ;\n"
                                 " instrument_number = 4 ;\n _32_byte_string = 32 ;\nvariables:\n"
                                 " char instrument_name(instrument_number, _32_byte_string) ;\n"
                                 " double total_intensity(scan_number) ;\n"
                                 " :test_scan_function = \"Other Function\" ;\n"
                                 "data:\n instrument_name = \"A\", \"B\", \"C\", \"D\" ;\n}\n");
        QCOMPARE(other.facts().instrument, QString("A, B, C, D")); // none is left out
        QCOMPARE(other.facts().groups, 3);
        QCOMPARE(other.groups().size(), std::size_t(2)); // a million masses are enough
        QCOMPARE(int(other.facts().scan), int(MsRunFacts::Scan::Unknown));
        // Defaults of the template are no facts.
        const MsRun silent(fixture(QStringLiteral("no-attributes")), options);
        QVERIFY(!silent.facts().ionisation.isStated() && silent.facts().ionisation.code == -1);
        QCOMPARE(int(silent.facts().polarity), int(MsRunFacts::Polarity::Unknown));
        QCOMPARE(int(silent.facts().spectra), int(MsRunFacts::Spectra::Unknown));
        QCOMPARE(run.instruments().size(), std::size_t(MsFile(run.name()).instrumentCount()));
        QCOMPARE(MsRun(fixture(QStringLiteral("groups")), options).groups()[0].masses()[0],
                 MsFile(fixture(QStringLiteral("groups"))).group(0).masses()[0]);
    }

    // Each from its own attribute, which says its own name here, or a number.
    void readsEachFact()
    {
        const std::pair<QByteArray, QString MsRunFacts::*> texts[] = {
            {"experiment_title", &MsRunFacts::title},
            {"operator_name", &MsRunFacts::operatorName},
            {"dataset_owner", &MsRunFacts::owner},
            {"dataset_origin", &MsRunFacts::origin},
            {"administrative_comments", &MsRunFacts::comments},
            {"external_file_ref_0", &MsRunFacts::methodName},
            {"source_file_reference", &MsRunFacts::sourceFile},
            {"source_file_format", &MsRunFacts::sourceFormat},
            {"pre_experiment_program_name", &MsRunFacts::acquiredWith},
            {"post_experiment_program_name", &MsRunFacts::exportedWith},
            {"sample_external_id", &MsRunFacts::sampleName},
            {"sample_internal_id", &MsRunFacts::sampleId},
            {"sample_owner", &MsRunFacts::sampleOwner},
            {"sample_comments", &MsRunFacts::sampleComments},
            {"test_comments", &MsRunFacts::testComments},
            {"raw_data_comments", &MsRunFacts::rawDataComments},
            {"test_reagent_gas", &MsRunFacts::reagentGas},
        };
        const std::pair<QByteArray, MsTerm MsRunFacts::*> terms[] = {
            {"experiment_type", &MsRunFacts::experiment},
            {"test_separation_type", &MsRunFacts::separation},
            {"test_ms_inlet", &MsRunFacts::inlet},
            {"test_ionization_mode", &MsRunFacts::ionisation},
            {"test_ionization_polarity", &MsRunFacts::ionisationSign},
            {"test_detector_type", &MsRunFacts::detector},
            {"test_resolution_type", &MsRunFacts::resolution},
            {"test_scan_function", &MsRunFacts::scanFunction},
            {"test_scan_direction", &MsRunFacts::scanDirection},
            {"test_scan_law", &MsRunFacts::scanLaw},
            {"sample_state", &MsRunFacts::sampleState},
            {"mass_values:units", &MsRunFacts::massUnits},
            {"time_values:units", &MsRunFacts::timeUnits},
            {"intensity_values:units", &MsRunFacts::intensityUnits},
            {"total_intensity:units", &MsRunFacts::totalUnits},
        };
        const std::pair<QByteArray, double MsRunFacts::*> numbers[] = {
            {"test_electron_energy", &MsRunFacts::electronEnergy},
            {"test_source_temperature", &MsRunFacts::sourceTemperature},
            {"test_ms_inlet_temperature", &MsRunFacts::inletTemperature},
            {"test_detector_potential", &MsRunFacts::detectorPotential},
        };
        QByteArray cdl = "netcdf made {\ndimensions:\n scan_number = 1 ;\n point_number = 1 ;\nvariables:\n"
                         " double total_intensity(scan_number) ;\n float mass_values(point_number) ;\n"
                         " float time_values(point_number) ;\n float intensity_values(point_number) ;\n";
        const auto state = [&cdl](const QByteArray &name, const QByteArray &value) {
            cdl += (name.contains(':') ? " " : " :") + name + " = " + value + " ;\n";
        };
        for (const auto &[name, fact] : texts)
            state(name, '"' + name + '"');
        for (const auto &[name, fact] : terms)
            state(name, '"' + name + '"');
        for (const auto &[name, fact] : numbers)
            state(name, QByteArray::number(int(name[5])) + ".f");
        const MsRun run = make(cdl + "}\n");
        QVERIFY2(run.isOpen(), qPrintable(run.error()));
        for (const auto &[name, fact] : texts)
            QCOMPARE(run.facts().*fact, QString(name));
        for (const auto &[name, fact] : terms)
            QCOMPARE((run.facts().*fact).text, QString(name));
        for (const auto &[name, fact] : numbers)
            QCOMPARE(run.facts().*fact, double(name[5]));
    }

    void moment_data()
    {
        const Rows<Moment> row;
        row("template") = {"20070923040800+0200", "2007-09-23 02:08:00"};
        row("template, west") = {"20070923223800-0530", "2007-09-24 04:08:00"};
        row("template, farthest zone") = {"20070923040800+1400", "2007-09-22 14:08:00"};
        row("template, no seconds") = {"200709230408-0200", "2007-09-23 06:08:00"};
        row("template, no zone") = {"20070923040800"};
        row("ISO") = {"2007-09-23T04:08:00Z", "2007-09-23 04:08:00"};
        row("ISO, fraction") = {"2007-09-23 04:08:00.5+02:00", "2007-09-23 02:08:00"};
        row("ISO, no zone") = {"2007-09-23T04:08:00"};
        row("commas") = {"2007,09,23,04:08:00+0200", "2007-09-23 02:08:00"};
        row("commas only") = {"2007,9,23,4,08,00"};
        row("midnight of another year") = {"20080101003000+0100", "2007-12-31 23:30:00"};
        row("no such day") = {"20070230040800+0200", {}, false};
        row("no such zone") = {"20070923040800+2500", {}, false};
        row("day or month first") = {"09/10/2007 04:08:00", {}, false};
        row("words") = {"yesterday", {}, false};
    }
    void moment()
    {
        const Moment &row = Rows<Moment>::current();
        const MsMoment moment = ms_moment_of(row.stamp);
        QCOMPARE(moment.text, row.stamp);
        QCOMPARE(moment.time.isValid(), row.isUnderstood);
        QCOMPARE(moment.hasZone, !row.utc.isNull());
        if (moment.hasZone)
            QCOMPARE(moment.time.toString("yyyy-MM-dd hh:mm:ss"), row.utc);
        else if (row.isUnderstood)
            QCOMPARE(moment.time.time(), QTime(4, 8));
    }
};

QTEST_GUILESS_MAIN(TestMsRun)
#include "tst_msrun.moc"
