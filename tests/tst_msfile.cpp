// The owning layer over the toolkit: what it reads and writes, and what becomes of what it owns.

#include "messageredirection.h"
#include "msfile.h"
#include "program.h"

#include <QTemporaryDir>
#include <QtTest>

using Numbers = std::vector<double>;

class TestMsFile : public QObject
{
    Q_OBJECT

    static MsFile openFixture(const QString &name) { return MsFile(fixture(name).toLatin1().constData()); }
    MsFile create(const MsFileLayout &layout) const { return MsFile::create(path.constData(), layout); }

    const Silence silence;
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath(QStringLiteral("written.cdf")).toLatin1();

private slots:
    void loopsOverScans()
    {
        const MsFile file = openFixture(QStringLiteral("odd-scan-index"));
        const std::vector<bool> isRead = {true, true, false, false, true, false};
        int number = 0;
        for (const MsScan &scan : file) {
            QVERIFY(number < file.scanCount());
            QCOMPARE(scan.scan_number, number);
            QCOMPARE(scan.isRead(), isRead[std::size_t(number++)]);
        }
        QCOMPARE(number, 6);
        for (const MsScanHeader &header : file.scanHeaders()) {
            QVERIFY(header.isRead());
            QCOMPARE(header.scan_acquisition_time, file.scan(header.scan_number).scan_acquisition_time);
            QCOMPARE(header.point_count, MsMissingLong); // not 0, which would tell of an empty scan
            --number;
        }
        QCOMPARE(number, 0);
        QVERIFY(!file.scan(6).isRead() && !file.scan(-1).isRead());
        QVERIFY(!file.entry(0).isRead()); // no library
    }

    void scalesNumbers()
    {
        const MsFile file = openFixture(QStringLiteral("scaled-short"));
        const MsGlobals globals = file.globals();
        const MsScan scan = file.scan(1);
        QCOMPARE(globals.mass(scan.masses()[1]), 123.46);
        QCOMPARE(globals.intensity(scan.intensities()[1]), 11.0);
        QCOMPARE(openFixture(QStringLiteral("no-attributes")).globals().mass(57.5), 57.5);
        QVERIFY(MsNumbers(scan.mass_values, 73, 2).isEmpty() && MsNumbers(scan.mass_values, 74, -1).isEmpty());
    }

    // What was read can be written again, and stays the reader's.
    void writesWhatWasRead()
    {
        MsFile file = create(MsFileLayout());
        MsGlobalsDraft globals;
        char text[] = "Text";
        globals.admin.error_log = globals.admin.dataset_completeness = text;
        QVERIFY(file.write(globals) && file.finish());
        QCOMPARE(globals.admin.dataset_completeness, text); // the routine itself drops it
        const MsGlobals read = MsFile(path.constData()).globals();
        QVERIFY(read.isRead());
        MsFile again = create(MsFileLayout());
        QVERIFY(again.write(read) && again.finish());
        QCOMPARE(read.admin.dataset_completeness, "C1+C2");
        QCOMPARE(MsFile(path.constData()).globals().admin.error_log, "Text");
    }

    // As the toolkit does, for a format that is none.
    void takesShortsForAnOddFormat()
    {
        MsFileLayout layout;
        layout.mass_format = 99;
        layout.intensity_format = MsLongFormat;
        MsFile file = create(layout);
        qint16 mass = 50;
        qint32 intensity = 7;
        MsScanDraft scan(0);
        scan.point_count = 1;
        scan.mass_values = &mass;
        scan.intensity_values = &intensity;
        QVERIFY(file.write(scan));
        QCOMPARE(file.scan(0).masses().toVector(), (Numbers{50}));
    }

    // The sanitizer build sees what is freed twice or never.
    void movesWhatItOwns()
    {
        MsFile first = openFixture(QStringLiteral("error-log"));
        const int id = first.id();
        MsFile file = std::move(first);
        QVERIFY(!first && file.id() == id);
        MsFile &same = file;
        file = std::move(same);
        QVERIFY(file.isOpen() && ms_file_record(id));

        MsGlobals globals = file.globals();
        QVERIFY(globals.admin.error_log);
        MsGlobals moved = std::move(globals);
        QVERIFY(moved.admin.error_log && moved.isRead() && !globals.admin.error_log && !globals.isRead());
        globals = file.globals();
        globals = std::move(moved);
        QVERIFY(globals.admin.error_log);

        file = openFixture(QStringLiteral("library")); // closes the other one
        QVERIFY(!ms_file_record(id) || file.id() == id);
        std::vector<MsScan> kept(file.begin(), file.end());
        std::vector<MsLibraryEntry> entries;
        for (MsLibraryEntry entry : file.entries())
            entries.push_back(std::move(entry));
        MsFile other = MsFile::adopt(file.release());
        QVERIFY(!file && other);
        const int before = openFiles();
        other.close();
        QCOMPARE(openFiles(), before - 2); // that of netCDF, and that of the bytes
        kept[0] = std::move(kept[2]);
        QCOMPARE(kept[0].masses().toVector(), (Numbers{60.25, 70.5}));
        QVERIFY(kept[2].masses().isEmpty() && !kept[2].isRead());
        QCOMPARE(kept[1].intensities().toVector(), (Numbers{4, 8}));
        QCOMPARE(entries[2].entry_name, "Toluene");
    }

    void isNoFile()
    {
        MsFile file(folder.filePath(QStringLiteral("absent.cdf")).toLatin1().constData());
        QVERIFY(!file && file.id() == -1 && !file.record());
        for (const MsScan &scan : file)
            QVERIFY2(scan.isRead() && false, "a scan of no file");
        QCOMPARE(file.entryCount() + file.instrumentCount() + file.groupCount() + int(file.missingBytes()), 0);
        QVERIFY(!file.globals().isRead() && !file.scan(0).isRead() && !file.scanHeader(0).isRead());
        QVERIFY(!file.trace().isRead() && !file.group(0).isRead());
        QVERIFY(!file.write(MsScanDraft(0)) && !file.finish());
        QVERIFY(!create({MsCentroidedSpectrum, 0})); // no scans
    }
};

QTEST_GUILESS_MAIN(TestMsFile)
#include "tst_msfile.moc"
