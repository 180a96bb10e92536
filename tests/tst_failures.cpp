// Each netCDF call fails in turn, over files with everything in them.

#include "dvimportreceiver.h"
#include "failingnetcdf.h"
#include "messageloggerinterface.h"
#include "plugin.h"
#include "program.h"
#include "records.h"
#include "samplefile.h"
#include "table.h"

#include <QTemporaryDir>

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
