// What the toolkit makes of the scans in files of each kind: one by one, and whole runs.

#include "openfixture.h"
#include "records.h"
#include "rows.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

namespace {

// The tag of the row is fixture and number. A vector that is null has no numbers.
struct OneScan {
    bool isRead;
    int points;
    QVector<double> masses{};
    QVector<double> times{};
    QVector<double> intensities{};
    QVector<double> peaks{};
    QVector<double> values{};
};

struct Decimals {
    int distinct; // masses in the run
    int wanted;
    int decimals; // that are left
    int keys;
};

struct LongRun {
    int type;
    std::size_t masses;
};

constexpr double leastLong = std::numeric_limits<qint32>::min();

} // namespace

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
    void init() { messages.clear(); }

    // What an import doesn't show: flags, flight times, and what is left of a scan that can't be read. The rest
    // is compared with the independent reading.
    void readsScans_data()
    {
        const Rows<OneScan> row;
        row("no-attributes 3") = {false, 0};
        row("no-attributes -1") = {false, 0};
        row("short-intensities 2") = {false, 2, {60.25, 70.5}};
        row("odd-scan-index 1") = {true, 0};
        row("odd-scan-index 2") = {false, 2};
        row("odd-scan-index 4") = {true, -3};
        row("odd-scan-index 5") = {false, 2147483647};
        row("flags-on-masses 0") = {true, 2, {50, 60.25}, {1, 2}, {1, 2}, {12, -12}, {4464, -1}};
        row("flags-on-masses 1") = {true, 2, {50, 70.5}, {1, 2}, {4, 8}, {99}, {5}};
        row("flags-on-masses 2") = {true, 2, {60.25, 70.5}, {1, 2}, {16, 32}, {leastLong}, {6}};
        row("flags-on-times 0") = {true, 2, {}, {1.5, 2}, {1, 2}, {7}, {-25536}};
        row("flags-on-times 1") = {true, 2, {}, {1.5, 2}, {4, 8}, {-7}, {-1}};
        row("flags-on-times 2") = {true, 2, {}, {1.5, 2}, {16, 32}, {leastLong}, {0}};
        row("flags-without-axis 0") = {false, 1, {}, {}, {1}};
        row("float-times 2") = {false, 0};
        row("no-scan-index 0") = {false, 0};
        row("mass-values-rank-2 0") = {false, 2};
        row("no-intensities 0") = {false, 2, {50, 60.25}};
        row("wide-values 1") = {false, 2, {50, 70}};
        row("string-masses 0") = {false, 2};
    }
    void readsScans()
    {
        const OneScan &row = Rows<OneScan>::current();
        const QStringList tag = QString::fromLatin1(QTest::currentDataTag()).split(QLatin1Char(' '));
        open(tag[0]);
        MsScan scan = file.scan(tag[1].toInt());
        QVERIFY(scan.isRead() == row.isRead && scan.point_count == row.points);
        QCOMPARE(numbersOf(scan.masses()), row.masses);
        QCOMPARE(numbersOf(scan.times()), row.times);
        QCOMPARE(numbersOf(scan.intensities()), row.intensities);
        QCOMPARE(numbersOf(scan.flaggedPeaks()), row.peaks);
        QCOMPARE(numbersOf(scan.flagValues()), row.values);
        ms_init_per_scan(1, &scan, nullptr);
        QVERIFY(!scan.mass_values && scan.point_count == 0 && scan.scan_number == -1);
    }

    // Of a record that was used before, in a file without flags.
    void takesNoFlagsFromElsewhere()
    {
        open("two-scans");
        MsScanDraft scan(0);
        scan.flag_count = 3;
        QCOMPARE(ms_read_per_scan(file.id(), &scan, nullptr), 0);
        QCOMPARE(scan.flag_count, 0);
        ms_init_per_scan(1, &scan, nullptr);
        scan.scan_number = 0;
        QCOMPARE(ms_read_scan_at(file.id(), {0, 1, MsMissingLong}, &scan), 0);
        QVERIFY(scan.point_count == 1 && scan.flag_count == 0);
        ms_init_per_scan(1, &scan, nullptr);
        for (const int points : {1000, -1}) {
            scan.scan_number = 0;
            QCOMPARE(ms_read_scan_at(file.id(), {0, points, MsMissingLong}, &scan), -1);
            ms_init_per_scan(1, &scan, nullptr);
        }
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
        QCOMPARE(scan.scan_duration, -9999.0);  // characters
        for (const int number : {3, 2, 1, 0}) { // a NaN and 2^31 have no 32-bit number
            scan.scan_number = number;
            QCOMPARE(ms_read_scan_header(file.id(), &scan), 0);
            QCOMPARE(scan.actual_scan_number, number == 0 ? 1 : number == 2 ? 2147483647 : -9999);
        }
        QCOMPARE(int(scan.a_d_coaddition_factor), 4);

        // Beyond the end of a variable, whatever its type.
        open("string-total");
        QVERIFY(file.scanHeader(0).isRead() && !file.scanHeader(1).isRead());

        messages.clear();
        open("total-ion-rank-2");
        QVERIFY(!file.scanHeader(0).isRead());
        QCOMPARE(messages, QStringList{QStringLiteral("E Size type mismatch while loading total_intensity")});
        QCOMPARE(ms_read_scan_header(file.id(), nullptr), 0);
    }

    // The masses of an import, which takes two decimals, are compared with the independent reading.
    void takesTheCensus()
    {
        open("no-attributes");
        QCOMPARE(file.census(2, 0.5).keys, (QSet<qint32>{2500, 3013, 3525}));
        open("odd-numbers");
        QCOMPARE(file.census(2, 1.0).keys, (QSet<qint32>{-2147483647 - 1, -5013, 0, 2147483647}));
        for (const char *none : {"flags-on-times", "empty-point-axis"}) {
            open(none);
            const MsCensus census = file.census(2, 1.0);
            QVERIFY2(census.isRead() && census.keys.isEmpty() && census.decimals == 2, none);
        }
        for (const char *refused : {"char-masses", "string-masses", "mass-values-rank-2", "claimed-masses"}) {
            open(refused);
            QVERIFY2(!file.census(2, 1.0).isRead() && file.census(2, 1.0).keys.isEmpty(), refused);
        }
    }

    void losesDecimals_data()
    {
        const Rows<Decimals> row;
        row("not yet") = {65534, 2, 2, 65535};
        row("at a known mass") = {65535, 2, 1, 6555};
        row("the last decimal") = {65535, 0, -1, 65535};
        row("one decimal more") = {65535, 3, 2, 6555};
    }
    void losesDecimals()
    {
        const Decimals &row = Rows<Decimals>::current();
        const double step = row.wanted == 0 ? 1.0 : row.wanted == 3 ? 0.001 : 0.01;
        std::vector<double> masses;
        for (int i = 1; i <= row.distinct; ++i)
            masses.push_back(i * step);
        masses.push_back(step);
        masses.push_back(100000 * step); // has an earlier one's key at a decimal less
        openRun(masses, 1);
        const MsCensus census = file.census(row.wanted, 1.0);
        QVERIFY(census.isRead());
        QCOMPARE(census.decimals, row.decimals);
        QCOMPARE(census.keys.size(), row.keys);
    }

    // Behind the last decimal lie a mass that a short can't hold, and more than 32 bits count, of which nearly all
    // was never written.
    void readsNoFurtherThanTheLastDecimal_data()
    {
        const Rows<LongRun> row;
        row("masses that can't be read") = {NC_INT64, 0x20000001};
        row("more than 4 GiB") = {NC_DOUBLE, 0x20000001};
        row("more than 2^31 masses") = {NC_FLOAT, 0x80000001};
    }
    void readsNoFurtherThanTheLastDecimal()
    {
        const auto [type, claimed] = Rows<LongRun>::current();
        const QString path = folder.filePath(QStringLiteral("long.cdf"));
        std::vector<double> masses(0x10001); // a short has a number less
        std::iota(masses.begin(), masses.end(), -32768.0);
        const std::size_t start = 0;
        const std::size_t count = masses.size();
        int id = -1;
        int dimension = -1;
        int variable = -1;
        nc_create(path.toLatin1().constData(), NC_64BIT_DATA, &id);
        file = MsFile::adopt(id);
        nc_set_fill(id, NC_NOFILL, &variable);
        nc_def_dim(id, "point_number", claimed, &dimension);
        nc_def_dim(id, "instrument_number", claimed << 3, &variable);
        nc_def_var(id, "mass_values", type, 1, &dimension, &variable);
        nc_enddef(id);
        nc_put_vara_double(id, variable, &start, &count, masses.data());
        QVERIFY(file.finish());
        QVERIFY(QFile::resize(path, qint64(claimed * sizeof(double)) + 4096));

        openPath(path);
        QCOMPARE(file.record()->dimensions[MsDim_instrument_number].size, 2147483647); // the largest there
        const MsCensus census = file.census(0, 1.0);
        QVERIFY(census.isRead());
        QCOMPARE(census.decimals, -1);
        QCOMPARE(census.keys.size(), 65535);
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

    void readsTraces()
    {
        open("total-ion");
        const MsTrace trace = file.trace();
        QVERIFY(trace.isRead());
        QCOMPARE(numbersOf(trace.totalIntensities()), (QVector<double>{double(3.3f), 12.5, -9999}));
        QCOMPARE(numbersOf(trace.times()), (QVector<double>{60, -9999, 120}));
        double *totals = nullptr;
        QCOMPARE(ms_read_total_intensity(file.id(), 3, &totals, nullptr), 0); // without times
        QCOMPARE(totals[1], 12.5);
        ms_free(totals);
        for (const int otherCount : {-1, 0, 2, 4})
            QVERIFY(!MsTrace(file.id(), otherCount).isRead());
        for (const char *refused : {"total-ion-no-intensity", "total-ion-no-times", "string-total"}) {
            open(refused);
            QVERIFY2(!file.trace().isRead() && file.trace().totalIntensities().isEmpty(), refused);
        }
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
