// What the toolkit makes of the scans in files of each kind: one by one, and whole runs.

#include "openfixture.h"
#include "records.h"
#include "table.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <vector>

// Number, status; points, flags, time; masses; times; intensities; peaks; values.
using OneScan = Table<QString, int, int, QString>;
using Masses = Table<QString, double, int, QVector<int>>; // scale; status, keys
using Decimals = Table<int, int, int, int>;               // distinct masses, decimals wanted; decimals, keys
using Totals = Table<QString, int, int, QString>;         // scans; status, times

class TestScans : public QObject, private OpenFixture
{
    Q_OBJECT

    void openRun(const std::vector<double> &masses, int scanCount)
    {
        const QString path = folder.filePath(QStringLiteral("run.cdf"));
        QVERIFY(writeRun(path, masses, scanCount));
        openPath(path);
    }

    QTemporaryDir folder;

private slots:
    void init() { begin(); }
    void cleanup() { end(); }

    void readsScans_data()
    {
        const auto row = [table = OneScan()](const QByteArray &fixture, int number, int status, const char *content) {
            table(fixture + ' ' + QByteArray::number(number), fixture, number, status, content);
        };
        row("no-attributes", 1, 0, "2 0 90;50,70.5;-;4,8;-;-");
        row("no-attributes", 3, -1, "0 0 -9999;-;-;-;-;-");
        row("no-attributes", -1, -1, "0 0 -9999;-;-;-;-;-");
        row("unlimited-scans", 1, 0, "2 0 90;50,70.5;-;4,8;-;-");
        row("short-intensities", 2, -1, "2 0 120;60.25,70.5;-;-;-;-");
        row("overlapping-scans", 0, 0, "3 0 60;50,70.5,60.25;-;4,8,16;-;-");
        row("overlapping-scans", 1, 0, "4 0 90;50,60.25,50,70.5;-;1,2,4,8;-;-");
        row("odd-scan-index", 1, 0, "0 0 90;-;-;-;-;-");
        row("odd-scan-index", 2, -1, "2 0 120;-;-;-;-;-");
        row("odd-scan-index", 3, -1, "2 0 150;-;-;-;-;-");
        row("odd-scan-index", 4, 0, "-3 0 180;-;-;-;-;-");
        row("odd-scan-index", 5, -1, "2147483647 0 210;-;-;-;-;-");
        row("flags-on-masses", 0, 0, "2 2 60;50,60.25;1,2;1,2;12,-12;4464,-1");
        row("flags-on-masses", 1, 0, "2 1 90;50,70.5;1,2;4,8;99;5");
        row("flags-on-masses", 2, 0, "2 1 120;60.25,70.5;1,2;16,32;-2147483648;6");
        row("flags-on-times", 0, 0, "2 1 60;-;1.5,2;1,2;7;-25536");
        row("flags-on-times", 1, 0, "2 1 90;-;1.5,2;4,8;-7;-1");
        row("flags-on-times", 2, 0, "2 1 120;-;1.5,2;16,32;-2147483648;0");
        row("flags-without-axis", 0, -1, "1 1 60;-;-;1;-;-");
        row("flags-without-axis", 1, 0, "2 0 90;-;-;4,8;-;-");
        row("float-times", 0, 0, "2 0 60.1;50,60.25;-;1,2;-;-");
        row("float-times", 2, -1, "0 0 120.3;-;-;-;-;-");
        row("no-scan-index", 0, -1, "0 0 60;-;-;-;-;-");
        row("scan-index-rank-2", 0, -1, "0 0 60;-;-;-;-;-");
        row("mass-values-rank-2", 0, -1, "2 0 60;-;-;-;-;-");
        row("no-intensities", 0, -1, "2 0 60;50,60.25;-;-;-;-");
        row("byte-values", 1, -1, "2 0 90;50,-70;-;-;-;-");
        row("char-masses", 0, -1, "2 0 60;-;-;-;-;-");
        row("wide-values", 0, 0, "2 0 60;50,60;-;1,2;-;-");
        row("wide-values", 1, -1, "2 0 90;50,70;-;-;-;-");
        row("unsigned-values", 1, 0, "2 0 90;50,70;-;4,2147483647;-;-");
        row("unsigned-values", 2, -1, "2 0 120;60,70;-;-;-;-");
        row("string-masses", 0, -1, "2 0 60;-;-;-;-;-");
        row("contradicting-formats", 1, 0, "2 0 90;50,70;-;4,8;-;-");
    }
    void readsScans()
    {
        const auto [fixture, number, status, content] = OneScan::row();
        open(fixture);
        MsScan scan = file.scan(number);
        QCOMPARE(scan.isRead(), status == 0);
        const int points = scan.point_count;
        const QStringList read = {
            QStringLiteral("%1 %2 %3").arg(points).arg(scan.flag_count).arg(double(float(scan.scan_acquisition_time))),
            shownAll(scan.masses()),
            shownAll(scan.times()),
            shownAll(scan.intensities()),
            shownAll(scan.flaggedPeaks()),
            shownAll(scan.flagValues())};
        QCOMPARE(read.join(QLatin1Char(';')), content);
        ms_init_per_scan(1, &scan, nullptr);
        QVERIFY(!scan.mass_values && scan.point_count == 0 && scan.scan_number == -1);
    }

    void readsNumbersOfOtherTypes()
    {
        open("float-times");
        MsScanDraft scan(1);
        for (int round = 0; round < 2; ++round) { // each reading warns anew
            messages.clear();
            QCOMPARE(ms_read_scan_header(file.id(), &scan), 0);
            QCOMPARE(messages.size(), 5);
            QCOMPARE(messages.first(), QStringLiteral("W Data type mismatch while loading a_d_coaddition_factor"));
            QCOMPARE(messages.last(), QStringLiteral("W Data type mismatch while loading actual_scan_number"));
        }
        QCOMPARE(int(scan.a_d_coaddition_factor), -9999);
        QCOMPARE(scan.resolution, 0.0);
        QCOMPARE(scan.scan_duration, -9999.0); // characters
        for (const int number : {2, 1, 0}) {   // a NaN and 3e10 have no 32-bit number
            scan.scan_number = number;
            QCOMPARE(ms_read_scan_header(file.id(), &scan), 0);
            QCOMPARE(scan.actual_scan_number, number == 0 ? 1 : -9999);
        }
        QCOMPARE(int(scan.a_d_coaddition_factor), 4);

        // Beyond the end of a variable, whatever its type.
        open("string-total");
        for (int number = 0; number < 2; ++number) {
            scan.scan_number = number;
            QCOMPARE(ms_read_scan_header(file.id(), &scan), -number);
        }

        messages.clear();
        open("total-ion-rank-2");
        scan.scan_number = 0;
        QCOMPARE(ms_read_scan_header(file.id(), &scan), -1);
        QCOMPARE(messages, QStringList{QStringLiteral("E Size type mismatch while loading total_intensity")});
        QCOMPARE(ms_read_scan_header(file.id(), nullptr), 0);
    }

    void takesTheCensus_data()
    {
        const Masses row;
        row("floats", "no-attributes", 1.0, 0, {5000, 6025, 7050});
        row("scaled", "no-attributes", 0.5, 0, {2500, 3013, 3525});
        row("flags count", "flags-on-masses", 1.0, 0, {-1270, 1270, 5000, 6025, 7050, 9990, 2147483647});
        row("bytes", "byte-values", 1.0, 0, {-7000, 5000, 6000, 12700});
        row("odd numbers", "odd-numbers", 1.0, 0, {-2147483647 - 1, -5013, 0, 2147483647});
        row("characters", "char-masses", 1.0, -1, {});
        row("strings", "string-masses", 1.0, -1, {});
        row("two dimensions", "mass-values-rank-2", 1.0, -1, {});
        row("no masses", "flags-on-times", 1.0, 0, {});
        row("no points", "empty-point-axis", 1.0, 0, {});
        row("one", "one-mass", 1.0, 0, {5000});
        row("only claimed", "claimed-masses", 1.0, -1, {});
    }
    void takesTheCensus()
    {
        const auto [fixture, scale, status, expected] = Masses::row();
        open(fixture);
        const MsCensus census = file.census(2, scale);
        QCOMPARE(census.isRead(), status == 0);
        QVector<int> keys(census.keys.cbegin(), census.keys.cend());
        std::sort(keys.begin(), keys.end());
        QCOMPARE(keys, expected);
        QCOMPARE(census.decimals, 2);
    }

    void losesDecimals_data()
    {
        const Decimals row;
        row("not yet", 65534, 2, 2, 65535);
        row("at a known mass", 65535, 2, 1, 6555);
        row("the last decimal", 65535, 0, -1, 65535);
        row("one decimal more", 65535, 3, 2, 6555);
    }
    void losesDecimals()
    {
        const auto [distinct, wanted, decimals, keys] = Decimals::row();
        const double step = wanted == 0 ? 1.0 : wanted == 3 ? 0.001 : 0.01;
        std::vector<double> masses;
        for (int i = 1; i <= distinct; ++i)
            masses.push_back(i * step);
        masses.push_back(step);
        masses.push_back(100000 * step); // has an earlier one's key at a decimal less
        openRun(masses, 1);
        const MsCensus census = file.census(wanted, 1.0);
        QVERIFY(census.isRead());
        QCOMPARE(census.decimals, decimals);
        QCOMPARE(census.keys.size(), keys);
    }

    // Whatever is read ahead of them.
    void readsScansInAnyOrder()
    {
        constexpr int points = 9000;
        std::vector<double> masses(5 * points);
        for (std::size_t i = 0; i < masses.size(); ++i)
            masses[i] = double(i) / 100.0;
        openRun(masses, 5);
        for (const int number : {0, 1, 2, 3, 4, 3, 0, 0, 2, 4, 1}) {
            const MsScan scan = file.scan(number);
            QVERIFY(scan.isRead());
            const double *first = masses.data() + number * points;
            QVERIFY(std::equal(first, first + points, static_cast<double *>(scan.mass_values)));
            for (int i = 0; i < points; ++i)
                QCOMPARE(static_cast<qint32 *>(scan.intensity_values)[i], number * points + i);
        }
        const MsCensus census = file.census(2, 1.0);
        QVERIFY(census.isRead());
        QCOMPARE(census.keys.size(), int(masses.size()));
    }

    void readsTraces_data()
    {
        const Totals row;
        row("float", "total-ion", 3, 0, "60,-9999,120");
        row("no scans", "total-ion", 0, -1, "-");
        row("other count", "total-ion", 2, -1, "-");
        row("absent", "total-ion-no-intensity", 3, -1, "-");
        row("no times", "total-ion-no-times", 3, -1, "-");
        row("two dimensions, as many elements", "total-ion-rank-2", 3, 0, "60,90,120");
        row("strings", "string-total", 3, -1, "-");
    }
    void readsTraces()
    {
        const auto [fixture, count, status, times] = Totals::row();
        open(fixture);
        const MsTrace trace(file.id(), count);
        QCOMPARE(trace.isRead(), status == 0);
        QCOMPARE(trace.totalIntensities().isEmpty(), status == -1);
        QCOMPARE(shownAll(trace.times()), times);
    }

    // An id that netCDF gives again, while a record of an earlier file stands under it.
    void forgetsAFileClosedBehindItsBack()
    {
        open("no-attributes");
        MsScanDraft scan(0);
        QCOMPARE(ms_read_scan_header(file.id(), &scan), 0);
        nc_close(file.id());
        const int before = file.release();
        file = MsFile(fixture("float-times")); // the longer one
        QCOMPARE(file.id(), before);
        QCOMPARE(ms_read_scan_header(file.id(), &scan), 0);
        QVERIFY(file.census(2, 1.0).isRead()); // looks at the length
        QCOMPARE(file.missingBytes(), quint64(0));
        QCOMPARE(float(scan.scan_acquisition_time), 60.1f);
    }
};

QTEST_GUILESS_MAIN(TestScans)
#include "tst_scans.moc"
