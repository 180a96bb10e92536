// The owning layer over the toolkit: what it reads and writes, and what becomes of what it owns.

#include "messageloggerinterface.h"
#include "msfile.h"
#include "program.h"
#include "rows.h"

#include <QTemporaryDir>

#include <csignal>
#include <limits>
#include <sys/resource.h>

namespace {

using Numbers = std::vector<double>;

struct ReadRun {
    QString fixture;
    std::vector<bool> read; // scan by scan
    std::vector<Numbers> masses;
    std::vector<Numbers> intensities;
};

struct Stored {
    qint32 format;
    Numbers numbers;
};

MsFile openFixture(const QString &name)
{
    return MsFile(fixture(name).toLatin1().constData());
}

double hundredths(double number)
{
    return double(qRound64(number * 100)) / 100;
}

Numbers looped(const MsNumbers &numbers)
{
    Numbers result;
    for (const double number : numbers)
        result.push_back(number);
    return result;
}

} // namespace

class TestMsFile : public QObject
{
    Q_OBJECT

    MsFile create(const MsFileLayout &layout) const { return MsFile::create(path.constData(), layout); }

    const QTemporaryDir folder;
    const QByteArray path = folder.filePath(QStringLiteral("written.cdf")).toLatin1();

private slots:
    void initTestCase()
    {
        MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
    }
    void cleanupTestCase() { MessageLoggerInterface::setReceiver({}); }

    void readsRuns_data()
    {
        const Rows<ReadRun> row;
        row("floats") = {
            "no-attributes", {true, true, true}, {{50, 60.25}, {50, 70.5}, {60.25, 70.5}}, {{1, 2}, {4, 8}, {16, 32}}};
        row("scaled") = {"scaled-short",
                         {true, true, true},
                         {{50, 60.25}, {50, 123.46}, {60.25, 123.46}},
                         {{4, 5}, {7003, 11}, {0, 214748367.7}}};
        row("flight times only") = {"flags-on-times", {true, true, true}, {{}, {}, {}}, {{1, 2}, {4, 8}, {16, 32}}};
        row("unreadable scans between others") = {"odd-scan-index",
                                                  {true, true, false, false, true, false},
                                                  {{50, 60.25}, {}, {}, {}, {}, {}},
                                                  {{1, 2}, {}, {}, {}, {}, {}}};
        row("half a scan") = {
            "short-intensities", {true, true, false}, {{50, 60.25}, {50, 70.5}, {60.25, 70.5}}, {{1, 2}, {4, 8}, {}}};
        row("no scans") = {"no-scans", {}, {}, {}};
    }
    void readsRuns()
    {
        const ReadRun &row = Rows<ReadRun>::current();
        const MsFile file = openFixture(row.fixture);
        QVERIFY(file);
        const MsGlobals globals = file.globals();
        std::size_t number = 0;
        for (const MsScan &scan : file) {
            QVERIFY(number < row.read.size());
            QCOMPARE(scan.scan_number, qint32(number));
            QCOMPARE(scan.isRead(), row.read[number]);
            Numbers masses;
            for (const double mass : scan.masses())
                masses.push_back(hundredths(globals.mass(mass)));
            QCOMPARE(masses, row.masses[number]);
            Numbers intensities;
            for (const double intensity : scan.intensities())
                intensities.push_back(hundredths(globals.intensity(intensity)));
            QCOMPARE(intensities, row.intensities[number]);
            ++number;
        }
        QCOMPARE(number, row.read.size());
        QCOMPARE(file.scans().size(), file.scanCount());
        for (const MsScanHeader &header : file.scanHeaders()) {
            QVERIFY(header.isRead());
            QCOMPARE(header.scan_acquisition_time, file.scan(header.scan_number).scan_acquisition_time);
            QCOMPARE(header.point_count, MsMissingLong); // not 0, which would tell of an empty scan
            --number;
        }
        QCOMPARE(number, std::size_t(0));
        QVERIFY(!file.scan(file.scanCount()).isRead());
        QVERIFY(!file.scan(-1).isRead());
    }

    void keepsNumbers_data()
    {
        const Rows<Stored> row;
        row("short") = {MsShortFormat, {-32768, 0, 32767}};
        row("long") = {MsLongFormat, {-2147483648.0, 1, 2147483647}};
        row("float") = {MsFloatFormat, {double(1.1f), -0.5, double(std::numeric_limits<float>::max())}};
        row("double") = {MsDoubleFormat, {1.1, -1e300, 3}};
    }
    void keepsNumbers()
    {
        const Stored &row = Rows<Stored>::current();
        const auto count = qint32(row.numbers.size());
        MsFileLayout layout;
        layout.mass_format = layout.time_format = layout.intensity_format = row.format;
        layout.has_time_values = true;
        MsFile file = create(layout);
        MsScanDraft draft(0);
        Numbers stored(row.numbers.size()); // room enough for each format
        ms_transcode_vector(row.numbers.data(), MsDoubleFormat, count, stored.data(), row.format, 0);
        qint32 peak = 50;
        qint16 value = -3;
        draft.point_count = count;
        draft.mass_values = draft.time_values = draft.intensity_values = stored.data();
        draft.flag_count = 1;
        draft.flagged_peaks = &peak;
        draft.flag_values = &value;
        QVERIFY(file.write(draft));
        QVERIFY(file.finish());

        const MsScan scan = MsFile(path.constData()).scan(0); // outlives its file
        for (const MsNumbers &numbers : {scan.masses(), scan.times(), scan.intensities()}) {
            QCOMPARE(numbers.toVector(), row.numbers);
            QCOMPARE(looped(numbers), row.numbers);
            QCOMPARE(numbers[count - 1], row.numbers.back());
        }
        QCOMPARE(scan.flaggedPeaks().toVector(), Numbers{50});
        QCOMPARE(scan.flagValues().toVector(), Numbers{-3});
        QVERIFY(MsNumbers(stored.data(), 73, count).isEmpty());
        QVERIFY(MsNumbers(stored.data(), row.format, -1).isEmpty());
    }

    void keepsRecords()
    {
        MsFileLayout layout;
        layout.experiment_type = MsLibrarySpectrum;
        layout.scan_count = layout.instrument_count = 2;
        MsFile file = create(layout);
        MsGlobalsDraft globals;
        char title[] = "Title";
        char log[] = "Log";
        char completeness[] = "mine";
        globals.admin.experiment_title = title;
        globals.admin.experiment_type = MsLibrarySpectrum;
        globals.admin.error_log = log;
        globals.admin.dataset_completeness = completeness;
        QVERIFY(file.write(globals));
        QCOMPARE(globals.admin.dataset_completeness, completeness); // the routine itself drops it
        QVERIFY(file.defineGroups(2, 3));
        double masses[] = {50.25, 60.5, 70.75};
        for (const int number : {0, 1}) {
            MsInstrumentDraft instrument(number);
            instrument.instrument_name = title;
            QVERIFY(file.write(instrument));
            MsGroupDraft group(number);
            group.group_mass_count = number == 0 ? 2 : 1000; // a claim that the arrays have no room for
            group.group_masses = group.group_sampling_times = group.group_delay_times = masses;
            QVERIFY(file.write(group));
            MsLibraryDraft entry(number);
            entry.entry_name = title;
            QVERIFY(file.write(MsScanDraft(number), entry));
        }
        QVERIFY(!file.write(MsScanDraft(2)));
        QVERIFY(file.finish());

        const MsFile written(path.constData());
        const MsGlobals read = written.globals();
        QVERIFY(read.isRead());
        QCOMPARE(read.admin.error_log, "Log");
        QCOMPARE(read.mass(57.5), 57.5); // without a scale
        int entries = 0;
        for (const MsLibraryEntry &entry : written.entries()) {
            QVERIFY(entry.isRead());
            QCOMPARE(entry.entry_name, "Title");
            QCOMPARE(entry.entry_index, entries++);
        }
        for (const MsInstrument &instrument : written.instruments())
            QCOMPARE(instrument.instrument_name, "Title");
        std::vector<Numbers> groups;
        for (const MsGroup &group : written.groups())
            groups.push_back(group.masses().toVector());
        QCOMPARE(groups, (std::vector<Numbers>{{50.25, 60.5}, {50.25, 60.5, 70.75}}));
        QCOMPARE(written.group(1).delayTimes().size(), 3);
        QVERIFY(!written.group(2).isRead() && written.group(2).masses().isEmpty());
        QCOMPARE(QVector<int>({entries, written.instruments().size(), written.groups().size()}),
                 QVector<int>({2, 2, 2}));

        // What was read can be written again, and stays the reader's.
        const QByteArray second = path + "2";
        MsFile again = MsFile::create(second.constData(), layout);
        QVERIFY(again.write(read) && again.finish());
        QCOMPARE(read.admin.dataset_completeness, "C1+C2");
        QCOMPARE(MsFile(second.constData()).globals().admin.error_log, "Log");
    }

    void readsWholeRuns()
    {
        const MsFile file = openFixture(QStringLiteral("total-ion"));
        const MsTrace trace = file.trace();
        QVERIFY(trace.isRead());
        QCOMPARE(trace.times().toVector(), (Numbers{60, -9999, 120}));
        QCOMPARE(trace.totalIntensities().size(), 3);
        const MsTrace none = openFixture(QStringLiteral("total-ion-no-times")).trace();
        QVERIFY(!none.isRead() && none.totalIntensities().isEmpty());

        const MsFile scaled = openFixture(QStringLiteral("scaled-short"));
        const MsCensus census = scaled.census(1, 0.01);
        QVERIFY(census.isRead());
        QCOMPARE(census.keys, (QSet<qint32>{500, 603, 1235}));
        QVERIFY(!openFixture(QStringLiteral("char-masses")).census(2, 1.0).isRead());
        QVERIFY(!openFixture(QStringLiteral("no-attributes")).entry(0).isRead()); // no library
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
        QVERIFY(openFiles() < before);
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
        MsFileLayout layout;
        layout.scan_count = 0;
        QVERIFY(!create(layout));
    }

    void tellsOfAFullDisk()
    {
        MsFile file = create(MsFileLayout());
        QVERIFY(file);
        rlimit before;
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        rlimit full = before;
        full.rlim_cur = 1;
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
        file.write(MsScanDraft(0));
        const bool written = file.finish();
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
        std::signal(SIGXFSZ, handler);
        QVERIFY(!written && !file);
    }
};

QTEST_GUILESS_MAIN(TestMsFile)
#include "tst_msfile.moc"
