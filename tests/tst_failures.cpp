// Each netCDF call fails in turn, over a file with everything in it.

#include "dvimportreceiver.h"
#include "failingnetcdf.h"
#include "messageloggerinterface.h"
#include "plugin.h"
#include "program.h"
#include "records.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int scanCount = 2;

struct Counts : DVImportReceiver {
    void analysisStarted(const DVHeader &, const float *, int tableSize) override { masses = tableSize; }
    void scanImported(int, double, double, int pointCount, const float *, const unsigned short *) override
    {
        points += pointCount;
    }
    void progressChanged(int, int) override { }

    int masses = 0;
    int points = 0;
};

} // namespace

class TestFailures : public QObject, private Plugin
{
    Q_OBJECT

    // Writes a library with instruments, groups, flags, and a text in each record. Whether no routine
    // reported a failure.
    bool writeAll(const QByteArray &path)
    {
        id = ms_open_write(path.constData(), MsLibrarySpectrum, scanCount, 1, 76, 74, 75, 1, 1);
        if (id == -1)
            return false;
        Globals globals;
        char text[] = "text";
        globals.admin.experiment_type = MsLibrarySpectrum;
        globals.admin.experiment_title = globals.admin.error_log = text;
        globals.sample.sample_owner = globals.test.test_comments = globals.raw.mass_long_name = text;
        globals.raw.mass_scale_factor = 1.0;
        MsInstrumentRecord instrument;
        ms_init_instrument(0, &instrument);
        instrument.component_index = 0;
        double numbers[] = {50.0, 60.0};
        const MsGroupRecord group = {0, 2, 0, numbers, numbers, numbers};
        int failures = globals.write(id) + ms_write_instrument(id, &instrument) + ms_define_groups(id, 1, 2)
            + ms_write_group(id, &group);
        for (int number = 0; number < scanCount; ++number) {
            Scan scan(number);
            OwnedEntry entry(number);
            float masses[] = {50.0f, 60.0f, 70.0f};
            qint16 times[] = {1, 2, 3};
            qint32 intensities[] = {1, 2, 3};
            scan.point_count = 3;
            scan.flag_count = 1;
            scan.mass_values = masses;
            scan.time_values = scan.flag_values = times;
            scan.intensity_values = scan.flagged_peaks = intensities;
            entry.entry_name = text;
            failures += ms_write_per_scan(id, &scan, &entry);
            entry.entry_name = nullptr;
        }
        ms_close(id);
        return failures == 0;
    }

    // Reads all of it. How many routines reported a failure.
    int readFile()
    {
        id = ms_open_read(good.constData());
        const int failures = id == -1 ? 1 : readAll(id, scanCount);
        ms_close(id);
        return failures;
    }

    bool importAll(Counts *counts)
    {
        const bool can = canImport(QString::fromLatin1(good));
        const Copy copy = clone();
        return can && import(copy.get(), counts);
    }

    QTemporaryDir folder;
    QByteArray good;
    int id = -1;

private slots:
    void initTestCase()
    {
        MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
        good = folder.filePath(QStringLiteral("good.cdf")).toLatin1();
        QVERIFY(writeAll(good));
    }
    void init() { failCall(0); }
    void cleanupTestCase() { MessageLoggerInterface::setReceiver({}); }

    void writing()
    {
        const QByteArray path = folder.filePath(QStringLiteral("failed.cdf")).toLatin1();
        QVERIFY(writeAll(path));
        const int calls = callsMade();
        QVERIFY(calls > 150);
        const int before = openFiles();
        // Results that no routine looks at: a file in the other mode refuses what comes next by itself.
        const QSet<QByteArray> unwatched = {"ncredef", "ncendef", "ncclose", "ncvarinq"};
        for (int n = 1; n <= calls; ++n) {
            failCall(n);
            const bool written = writeAll(path);
            const QByteArray failed = failedCall();
            QVERIFY2(!written || unwatched.contains(failed) || failed.startsWith("nc_inq"), failed);
            failCall(0);
            QVERIFY(!ms_file_record(id));
            QCOMPARE(openFiles(), before);
        }
    }

    void reading()
    {
        ms_close(ms_open_read(good.constData()));
        const int opening = callsMade();
        failCall(0);
        QCOMPARE(readFile(), 0);
        const int calls = callsMade();
        QVERIFY(calls > 150);
        const int before = openFiles();
        int reported = 0;
        for (int n = 1; n <= calls; ++n) {
            failCall(n);
            const int failures = readFile();
            QVERIFY2(failures >= (n > opening && QByteArray(failedCall()) == "ncattget"), failedCall());
            reported += failures > 0;
            failCall(0);
            QVERIFY(!ms_file_record(id));
            QCOMPARE(openFiles(), before);
        }
        // Many a failure reads as an absent object, by intention; yet many have to be told.
        QVERIFY(reported > 30);
        QCOMPARE(readFile(), 0);
    }

    void importing()
    {
        Counts whole;
        QVERIFY(importAll(&whole));
        const int calls = callsMade();
        QVERIFY(calls > 100);
        const int before = openFiles();
        for (int n = 1; n <= calls; ++n) {
            Counts counts;
            failCall(n);
            importAll(&counts);
            failCall(0);
            QCOMPARE(openFiles(), before);
            Counts again;
            QVERIFY2(importAll(&again), failedCall());
            QCOMPARE(again.points, scanCount * 3);
            QCOMPARE(again.masses, whole.masses);
        }
    }
};

QTEST_GUILESS_MAIN(TestFailures)
#include "tst_failures.moc"
