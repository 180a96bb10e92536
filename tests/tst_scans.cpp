// What the toolkit makes of the scans in files of each kind: one by one, and whole runs.

#include "openfixture.h"
#include "records.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <numeric>
#include <vector>

class TestScans : public QObject, private OpenFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { end(); }
    void readsScans_data();
    void readsScans();
    void readsNumbersOfOtherTypes();
    void takesTheCensus_data();
    void takesTheCensus();
    void losesDecimals_data();
    void losesDecimals();
    void readsScansInAnyOrder();
    void countsNoMassesThatWereOnlyClaimed();
    void readsTraces_data();
    void readsTraces();
    void forgetsAFileClosedBehindItsBack();

private:
    void openRun(const std::vector<double> &masses, int scanCount);

    QTemporaryDir folder;
};

// Opens a run of these masses in scans of equal length, with ascending intensities.
void TestScans::openRun(const std::vector<double> &masses, int scanCount)
{
    const QByteArray path = folder.filePath(QStringLiteral("run.cdf")).toLatin1();
    id = ms_open_write(path.constData(), 0, scanCount, 0, 77, 77, 75, 1, 0);
    std::vector<qint32> intensities(masses.size());
    std::iota(intensities.begin(), intensities.end(), 0);
    const int points = int(masses.size()) / scanCount;
    for (int number = 0; number < scanCount; ++number) {
        Scan scan(number);
        scan.point_count = points;
        scan.mass_values = const_cast<double *>(masses.data()) + number * points;
        scan.intensity_values = intensities.data() + number * points;
        QCOMPARE(ms_write_per_scan(id, &scan, nullptr), 0);
    }
    ms_close(id);
    id = ms_open_read(path.constData());
}

void TestScans::readsScans_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("content"); // points, flags, time; masses; times; intensities; peaks; values
    const auto row = [](const char *fixture, int number, int status, const char *content) {
        QTest::addRow("%s %d", fixture, number) << fixture << number << status << content;
    };
    row("no-attributes", 1, 0, "2 0 90;50,70.5;-;4,8;-;-");
    row("no-attributes", 3, -1, "0 0 -9999;-;-;-;-;-");
    row("no-attributes", -1, -1, "0 0 -9999;-;-;-;-;-");
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

void TestScans::readsScans()
{
    QFETCH(QString, fixture);
    QFETCH(int, number);
    open(fixture);
    const MsFileRecord &file = *ms_file_record(id);
    ReadScan scan(number);
    QTEST(ms_read_per_scan(id, &scan, nullptr), "status");
    const int points = scan.point_count;
    const QStringList content = {
        QStringLiteral("%1 %2 %3").arg(points).arg(scan.flag_count).arg(double(float(scan.scan_acquisition_time))),
        shownAll(file.mass_format, scan.mass_values, points),
        shownAll(file.time_format, scan.time_values, points),
        shownAll(file.intensity_format, scan.intensity_values, points),
        shownAll<qint32>(scan.flagged_peaks, scan.flag_count),
        shownAll<qint16>(scan.flag_values, scan.flag_count)};
    QTEST(content.join(QLatin1Char(';')), "content");
    ms_init_per_scan(1, &scan, nullptr);
    QVERIFY(!scan.mass_values && scan.point_count == 0 && scan.scan_number == -1);
}

void TestScans::readsNumbersOfOtherTypes()
{
    open("float-times");
    Scan scan(1);
    for (int round = 0; round < 2; ++round) { // each reading warns anew
        messages.clear();
        QCOMPARE(ms_read_scan_header(id, &scan), 0);
        QCOMPARE(messages.size(), 5);
        QCOMPARE(messages.first(), QStringLiteral("W Data type mismatch while loading a_d_coaddition_factor"));
        QCOMPARE(messages.last(), QStringLiteral("W Data type mismatch while loading actual_scan_number"));
    }
    QCOMPARE(scan.actual_scan_number, -9999); // 3e10 has no 32-bit number
    QCOMPARE(int(scan.a_d_coaddition_factor), -9999);
    QCOMPARE(scan.resolution, 0.0);
    QCOMPARE(scan.scan_duration, -9999.0); // characters
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    QCOMPARE(scan.actual_scan_number, 1);
    QCOMPARE(int(scan.a_d_coaddition_factor), 4);

    // Beyond the end of a variable, whatever its type.
    open("string-total");
    for (int number = 0; number < 2; ++number) {
        scan.scan_number = number;
        QCOMPARE(ms_read_scan_header(id, &scan), -number);
    }

    messages.clear();
    open("total-ion-rank-2");
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), -1);
    QCOMPARE(messages, QStringList{QStringLiteral("E Size type mismatch while loading total_intensity")});
    QCOMPARE(ms_read_scan_header(id, nullptr), 0);
    QCOMPARE(ms_read_scan_header(-1, nullptr), -1);
}

void TestScans::takesTheCensus_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("status");
    QTest::addColumn<QVector<int>>("keys");
    QTest::newRow("floats") << "no-attributes" << 1.0 << 0 << QVector<int>{5000, 6025, 7050};
    QTest::newRow("scaled") << "no-attributes" << 0.5 << 0 << QVector<int>{2500, 3013, 3525};
    QTest::newRow("flags count") << "flags-on-masses" << 1.0 << 0
                                 << QVector<int>{-1270, 1270, 5000, 6025, 7050, 9990, 2147483647};
    QTest::newRow("bytes") << "byte-values" << 1.0 << 0 << QVector<int>{-7000, 5000, 6000, 12700};
    QTest::newRow("characters") << "char-masses" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("strings") << "string-masses" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("two dimensions") << "mass-values-rank-2" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("no masses") << "flags-on-times" << 1.0 << 0 << QVector<int>{};
    QTest::newRow("no points") << "empty-point-axis" << 1.0 << 0 << QVector<int>{};
    QTest::newRow("one") << "one-mass" << 1.0 << 0 << QVector<int>{5000};
}

void TestScans::takesTheCensus()
{
    QFETCH(QString, fixture);
    QFETCH(double, scale);
    open(fixture);
    QSet<qint32> census;
    qint32 decimals = 2;
    QTEST(ms_read_mass_census(id, census, &decimals, scale), "status");
    QVector<int> keys(census.cbegin(), census.cend());
    std::sort(keys.begin(), keys.end());
    QTEST(keys, "keys");
    QCOMPARE(decimals, 2);
}

void TestScans::losesDecimals_data()
{
    // Masses 0.01, 0.02, ..., then the first one again, then one that has an earlier one's key at a decimal less.
    QTest::addColumn<int>("distinct");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<int>("keys");
    QTest::newRow("not yet") << 65534 << 2 << 2 << 65535;
    QTest::newRow("at a known mass") << 65535 << 2 << 1 << 6555;
    QTest::newRow("the last decimal") << 65535 << 0 << -1 << 65535;
    QTest::newRow("one decimal more") << 65535 << 3 << 2 << 6555;
}

void TestScans::losesDecimals()
{
    QFETCH(int, distinct);
    QFETCH(int, wanted);
    const double step = wanted == 0 ? 1.0 : wanted == 3 ? 0.001 : 0.01;
    std::vector<double> masses;
    for (int i = 1; i <= distinct; ++i)
        masses.push_back(i * step);
    masses.push_back(step);
    masses.push_back(100000 * step);
    openRun(masses, 1);
    QSet<qint32> census;
    qint32 decimals = wanted;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), 0);
    QTEST(decimals, "decimals");
    QTEST(census.size(), "keys");
}

// Whatever is read ahead of them.
void TestScans::readsScansInAnyOrder()
{
    constexpr int points = 9000;
    std::vector<double> masses(5 * points);
    for (std::size_t i = 0; i < masses.size(); ++i)
        masses[i] = double(i) / 100.0;
    openRun(masses, 5);
    for (const int number : {0, 1, 2, 3, 4, 3, 0, 0, 2, 4, 1}) {
        ReadScan scan(number);
        QCOMPARE(ms_read_per_scan(id, &scan, nullptr), 0);
        const int first = number * points;
        QVERIFY(
            std::equal(masses.data() + first, masses.data() + first + points, static_cast<double *>(scan.mass_values)));
        for (int i = 0; i < points; ++i)
            QCOMPARE(static_cast<qint32 *>(scan.intensity_values)[i], first + i);
    }
    QSet<qint32> census;
    qint32 decimals = 2;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), 0);
    QCOMPARE(census.size(), int(masses.size()));
}

// A few kilobytes that claim two thousand million masses.
void TestScans::countsNoMassesThatWereOnlyClaimed()
{
    const QByteArray path = folder.filePath(QStringLiteral("claim.cdf")).toLatin1();
    int writing = -1;
    int points = -1;
    int masses = -1;
    QCOMPARE(nc_create(path.constData(), NC_NETCDF4, &writing), NC_NOERR);
    nc_def_dim(writing, "point_number", 2147483647, &points);
    nc_def_var(writing, "mass_values", NC_SHORT, 1, &points, &masses);
    QCOMPARE(nc_close(writing), NC_NOERR);
    id = ms_open_read(path.constData());
    QSet<qint32> census;
    qint32 decimals = 2;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), -1);
    QVERIFY(census.isEmpty());
}

void TestScans::readsTraces_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("status");
    QTest::newRow("float") << "total-ion" << 3 << 0;
    QTest::newRow("no scans") << "total-ion" << 0 << -1;
    QTest::newRow("other count") << "total-ion" << 2 << -1;
    QTest::newRow("absent") << "total-ion-no-intensity" << 3 << -1;
    QTest::newRow("no times") << "total-ion-no-times" << 3 << -1;
    QTest::newRow("two dimensions, as many elements") << "total-ion-rank-2" << 3 << 0;
    QTest::newRow("strings") << "string-total" << 3 << -1;
}

void TestScans::readsTraces()
{
    QFETCH(QString, fixture);
    QFETCH(int, count);
    QFETCH(int, status);
    open(fixture);
    double *totals = nullptr;
    double *times = nullptr;
    QCOMPARE(ms_read_total_intensity(id, count, &totals, &times), status);
    QCOMPARE(totals != nullptr && times != nullptr, status == 0);
    QCOMPARE(totals != nullptr || times != nullptr, status == 0);
    if (status == 0)
        QCOMPARE(shownAll<double>(times, 3),
                 fixture == QLatin1String("total-ion") ? QStringLiteral("60,-9999,120") : QStringLiteral("60,90,120"));
    ms_free(totals);
    ms_free(times);
}

// An id that netCDF gives again, while a record of an earlier file stands under it.
void TestScans::forgetsAFileClosedBehindItsBack()
{
    open("no-attributes");
    Scan scan(0);
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    nc_close(id);
    const int before = id;
    id = ms_open_read(AIA_FIXTURES "/float-times.cdf"); // the longer one
    QCOMPARE(id, before);
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    QSet<qint32> census;
    qint32 decimals = 2;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), 0); // looks at the length
    QCOMPARE(ms_missing_bytes(id), quint64(0));
    QCOMPARE(float(scan.scan_acquisition_time), 60.1f);
}

QTEST_GUILESS_MAIN(TestScans)
#include "tst_scans.moc"
