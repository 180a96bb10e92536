// Each netCDF call and each allocation fails in turn, over files with everything in them.

#include "dvimportreceiver.h"
#include "failingmemory.h"
#include "failingnetcdf.h"
#include "messageloggerinterface.h"
#include "plugin.h"
#include "program.h"
#include "records.h"
#include "samplefile.h"
#include "table.h"

#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr int scanCount = 2;
constexpr int pointCount = 3;

struct Counts : DVImportReceiver {
    void analysisStarted(const DVHeader &, const float *, int tableSize) override { masses = tableSize; }
    void scanImported(int, double, double, int count, const float *, const unsigned short *) override
    {
        points += count;
    }
    void progressChanged(int, int) override { }

    int masses = 0;
    int points = 0;
};

} // namespace

class TestFailures : public QObject, private Plugin
{
    Q_OBJECT

    // A library has entries, a run of selected ions has groups and flags, both have instruments. Whether
    // no failure was reported.
    bool write(const QString &path, SampleKind kind)
    {
        SampleOptions options;
        options.kind = kind;
        options.scans = scanCount;
        options.points = pointCount;
        options.intensityFormat = MsLongFormat; // so that flags have to be converted
        return writeSample(path, options).isNull();
    }

    // How many routines reported a failure.
    int readFile()
    {
        const int id = ms_open_read(good.toLatin1().constData());
        const int failures = id == -1 ? 100 : readAll(id, scanCount);
        ms_close(id);
        return failures;
    }

    bool importAll(Counts *counts)
    {
        const bool can = canImport(good);
        const Copy copy = clone();
        return can && import(copy.get(), counts);
    }

    void eachKind_data()
    {
        const Table<int> row;
        row("library", int(SampleKind::Library));
        row("sim", int(SampleKind::Sim));
    }

    const QTemporaryDir folder;
    const QString good = folder.filePath(QStringLiteral("good.cdf"));

private slots:
    void initTestCase()
    {
        MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
    }
    void init()
    {
        failCall(0);
        if (QTest::currentDataTag())
            QVERIFY(write(good, SampleKind(std::get<0>(Table<int>::row()))));
        failCall(0);
    }
    void cleanupTestCase() { MessageLoggerInterface::setReceiver({}); }

    void writing_data() { eachKind_data(); }
    void writing()
    {
        const auto kind = SampleKind(std::get<0>(Table<int>::row()));
        const QString path = folder.filePath(QStringLiteral("failed.cdf"));
        QVERIFY(write(path, kind));
        const int calls = netcdfCalls.made;
        QVERIFY(calls > 150);
        const int before = openFiles();
        // Results that no routine looks at: a file in the other mode refuses what comes next by itself, and
        // to the look at what was written an object is absent.
        const QSet<QByteArray> unwatched = {"ncredef", "ncendef", "ncclose", "ncvarinq",
                                            "ncdimid", "ncvarid", "ncattget"};
        for (int n = 1; n <= calls; ++n) {
            failCall(n);
            const bool written = write(path, kind);
            const QByteArray failed = netcdfCalls.failed;
            QVERIFY2(!written || unwatched.contains(failed) || failed.startsWith("nc_inq"), failed);
            QCOMPARE(QFile::exists(path), written);
            failCall(0);
            QCOMPARE(openFiles(), before);
        }
    }

    void reading_data() { eachKind_data(); }
    void reading()
    {
        ms_close(ms_open_read(good.toLatin1().constData()));
        const int opening = netcdfCalls.made;
        failCall(0);
        const int absent = readFile();
        const int calls = netcdfCalls.made;
        QVERIFY(absent <= 1 && calls > 150);
        const int before = openFiles();
        int reported = 0;
        for (int n = 1; n <= calls; ++n) {
            failCall(n);
            const int failures = readFile();
            const bool isAttribute = n > opening && QByteArray(netcdfCalls.failed) == "ncattget";
            QVERIFY2(failures >= 0 && (!isAttribute || failures > absent), netcdfCalls.failed);
            reported += failures > absent;
            failCall(0);
            QCOMPARE(openFiles(), before);
        }
        // Many a failure reads as an absent object, by intention; yet many have to be told.
        QVERIFY(reported > 30);
        QCOMPARE(readFile(), absent);
    }

    // Memory that runs out passes through, and leaves no file open, no record under its id and no block.
    void exhaustingMemory_data() { eachKind_data(); }
    void exhaustingMemory()
    {
        const QByteArray path = good.toLatin1();
        const QByteArray written = folder.filePath(QStringLiteral("written.cdf")).toLatin1();
        int id = -1;
        const std::pair<const char *, std::function<void()>> uses[] = {
            {"open_read", [&] { id = ms_open_read(path.constData()); }},
            {"open_write", [&] { id = ms_open_write(written.constData(), 2, 1, 1, 76, 76, 76, 1, 1); }},
            {"all readers", [&] {
                 id = ms_open_read(path.constData());
                 readAll(id, scanCount);
             }}};
        const int before = openFiles();
        for (const auto &[name, use] : uses) {
            use();
            QCOMPARE(ms_close(id), 0);
            const int free = std::exchange(id, -1); // the next file's id, if this one isn't lost
            int n = 1;
            for (; !survivesAllocation(n, use); ++n) {
                ms_close(std::exchange(id, -1));
                QVERIFY2(!ms_file_record(free) && openFiles() == before, name);
            }
            QVERIFY2(n > 1, name);
            QCOMPARE(id, free);
            QCOMPARE(ms_close(id), 0);
        }
    }

    // What was in the library's buffer may be right still; what wasn't isn't zero.
    void readingGroupsOfAFileThatIsCut()
    {
        constexpr int width = 3000; // several of the library's blocks
        const QString path = folder.filePath(QStringLiteral("groups.cdf"));
        std::vector<double> numbers(width, 5.0);
        const MsGroupRecord written = {0, width, 0, numbers.data(), numbers.data(), numbers.data()};
        for (int n = 1;; ++n) {
            int id = ms_open_write(path.toLatin1().constData(), 0, 1, 0, 76, 76, 76, 1, 0);
            QVERIFY(ms_define_groups(id, 1, width) == 0 && ms_write_group(id, &written) == 0 && ms_close(id) == 0);
            id = ms_open_read(path.toLatin1().constData());
            int groups = 0;
            int masses = 0;
            QCOMPARE(ms_inquire_groups(id, &groups, &masses), 0);
            OwnedGroup group(0);
            interruptCall(n, [&] { QFile::resize(path, QFileInfo(path).size() - width * 4); });
            const int status = ms_read_group(id, &group);
            const bool isCut = netcdfCalls.made >= n;
            failCall(0);
            QCOMPARE(ms_close(id), 0);
            QVERIFY(status == 0 ? std::equal(numbers.begin(), numbers.end(), group.group_delay_times)
                                : status == -1 && isCut && !group.group_masses);
            if (!isCut) {
                QVERIFY(n > 5 && status == 0);
                break;
            }
        }
    }

    // With more bytes of masses than 32 bits count, of which nearly all were never written.
    void stoppingTheCensus()
    {
        const QString path = folder.filePath(QStringLiteral("long.cdf"));
        constexpr std::size_t count = (std::size_t(1) << 29) + 1;
        constexpr std::size_t distinct = 65536;
        std::vector<double> masses(distinct);
        std::iota(masses.begin(), masses.end(), 0.0);
        int id = -1;
        int dimension = -1;
        int variable = -1;
        int fill = 0;
        const std::size_t start = 0;
        nc_create(path.toLatin1().constData(), NC_64BIT_DATA, &id);
        nc_set_fill(id, NC_NOFILL, &fill);
        nc_def_dim(id, "point_number", count, &dimension);
        nc_def_var(id, "mass_values", NC_DOUBLE, 1, &dimension, &variable);
        nc_enddef(id);
        nc_put_vara_double(id, variable, &start, &distinct, masses.data());
        QCOMPARE(nc_close(id), NC_NOERR);
        QVERIFY(QFile::resize(path, qint64(count * sizeof(double)) + 4096));

        id = ms_open_read(path.toLatin1().constData());
        failCall(0);
        const Census census(id, 0);
        QCOMPARE(ms_close(id), 0);
        QCOMPARE(census.status, 0);
        QCOMPARE(census.decimals, -1);
        QVERIFY2(netcdfCalls.made < 20, "reads on when no further mass counts");
    }

    void importing_data() { eachKind_data(); }
    void importing()
    {
        Counts whole;
        QVERIFY(importAll(&whole));
        QCOMPARE(whole.points, scanCount * pointCount);
        const int calls = netcdfCalls.made;
        QVERIFY(calls > 100);
        const int before = openFiles();
        for (int n = 1; n <= calls; ++n) {
            Counts counts;
            failCall(n);
            importAll(&counts);
            failCall(0);
            QCOMPARE(openFiles(), before);
            Counts again;
            QVERIFY2(importAll(&again), netcdfCalls.failed);
            QCOMPARE(again.points, whole.points);
            QCOMPARE(again.masses, whole.masses);
        }
    }
};

QTEST_GUILESS_MAIN(TestFailures)
#include "tst_failures.moc"
