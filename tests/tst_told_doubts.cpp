// What can't be right about a run is told to the host: at the table of masses, after the last scan, or at the
// end; each of it once.

#include "changedsamples.h"
#include "dvheader.h"
#include "messageredirection.h"
#include "plugin.h"
#include "rows.h"

#include <array>
#include <cerrno>
#include <dlfcn.h>
#include <sys/types.h>
#include <utility>

// What reads a file's bytes meets with, in place of the file; 0: nothing.
static int readError = 0;

extern "C" ssize_t pread(int descriptor, void *target, std::size_t size, off_t place)
{
    static auto *const real = reinterpret_cast<ssize_t (*)(int, void *, std::size_t, off_t)>(dlsym(RTLD_NEXT, "pread"));
    if (readError == 0)
        return real(descriptor, target, size, place);
    errno = readError;
    return -1;
}

namespace {

// The plugin's working copy, driven by a loop that isn't the host's own.
class HostRun
{
public:
    HostRun(Plugin &plugin, const QString &path) : copy(plugin.copyFor(path)) { }

    ~HostRun() { end(); }

    int makeTable()
    {
        delete std::exchange(header(), nullptr);
        copy->importHeader();
        float *masses = nullptr;
        size = copy->importMassTable(&masses);
        table.reset(masses);
        return size;
    }

    void importScan(int scan)
    {
        double time = 0.0;
        int points = 0;
        copy->importScan(scan, &time, size, table.get(), &points, abundances.data(), positions.data());
    }

    void importScans(int first, int last)
    {
        for (int scan = first; scan <= last; ++scan)
            importScan(scan);
    }

    QByteArray property() const
    {
        QByteArrayList found;
        for (const QVariant &each : copy->property("doubts").toList()) {
            const QVariantMap doubt = each.toMap();
            found += doubt[QStringLiteral("code")].toByteArray() + ' ' + doubt[QStringLiteral("count")].toByteArray();
        }
        return found.join(", ");
    }

    // The file, and what was told of it, goes to a copy of the copy.
    void passOn()
    {
        Plugin::Copy next(copy->clone());
        end();
        copy = std::move(next);
    }

    void end()
    {
        if (copy)
            delete std::exchange(header(), nullptr);
        copy.reset();
    }

    Plugin::Copy copy;
    int size = 0;

private:
    struct Opened : DVImportAnalysisInterface {
        using DVImportAnalysisInterface::header;
    };
    DVHeader *&header() { return copy.get()->*(&Opened::header); } // the host's to free

    std::unique_ptr<float[]> table;
    std::array<float, 1000> abundances;
    std::array<unsigned short, 1000> positions;
};

} // namespace

class TestToldDoubts : public QObject, private ChangedSamples
{
    Q_OBJECT

    // Since the last call.
    QByteArray newMessages() { return std::exchange(messages, {}).join("; "); }

    Plugin plugin;
    QByteArrayList messages;
    const MessageRedirection redirection{[this](MessageLoggerInterface::Level level, const QString &text) {
        messages += (level == MessageLoggerInterface::Level::Error ? "E " : "W ") + text.toLatin1();
    }};

private slots:
    void initTestCase() { makeSamples(); }

    // What is known at the table, and the rest after the last scan, whichever it is; each of them once.
    void theHostIsTold()
    {
        HostRun run(
            plugin,
            changedCopy(QStringLiteral("gcms"), {put("scan_acquisition_time", 7, -9999), put("mass_values", 95, -50)}));
        messages.clear();
        QVERIFY(run.makeTable() > 20);
        QCOMPARE(newMessages(),
                 QByteArray("W In &quot;copy.cdf&quot;, 1 of 20 scans has no time; the first is scan 7."));
        QCOMPARE(run.property(), QByteArray("missing-times 1"));
        run.importScans(1, 19);
        QCOMPARE(newMessages(), QByteArray());
        run.importScan(0);
        QCOMPARE(newMessages(), QByteArray("W In &quot;copy.cdf&quot;, 1 mass is below 0; the first is in scan 3."));
        QCOMPARE(run.property(), QByteArray("negative-masses 1, missing-times 1"));
        run.makeTable();
        run.importScans(0, 19);
        run.end();
        QCOMPARE(newMessages(), QByteArray());
    }

    // A host may give up, or never begin.
    void theRestIsToldAtTheEnd()
    {
        const QString file = changedCopy(QStringLiteral("gcms"), {put("mass_values", 95, -50)});
        for (const int last : {-1, 3, 18}) {
            HostRun run(plugin, file);
            messages.clear();
            run.makeTable();
            run.importScans(0, last);
            QCOMPARE(messages.size(), 0);
            run.end();
            QCOMPARE(messages.size(), last < 3 ? 0 : 1);
        }
        HostRun run(plugin, file);
        run.end();
        QCOMPARE(messages.size(), 1);
    }

    void ofPointsWithoutAPlace()
    {
        HostRun run(plugin, path(QStringLiteral("gcms")));
        messages.clear();
        QVERIFY(run.makeTable() > 20);
        run.size = 20; // the host's table may be another
        run.importScans(0, 19);
        const QByteArray property = run.property();
        QVERIFY(property.startsWith("unplaced-points "));
        const QVariantMap unplaced = run.copy->property("doubts").toList().value(0).toMap();
        QCOMPARE(unplaced[QStringLiteral("example")].toString(), QStringLiteral("scan 0"));
        run.makeTable();
        run.size = 20;
        run.importScans(0, 19);
        QCOMPARE(run.property(), property); // of the second run alone
        run.passOn();
        QCOMPARE(messages.size(), 1);
        run.makeTable();
        QCOMPARE(run.property(), QByteArray());
        run.size = 20;
        run.importScans(0, 19);
        QCOMPARE(run.property(), property);
        run.end();
        QCOMPARE(messages.size(), 1);
    }

    void ofARightRunTheHostIsToldNothing_data()
    {
        const Rows<double> modulation;
        for (const char *kind : {"gcms", "tic", "library", "sim"})
            modulation(kind) = 0.0;
        modulation("gcxgc") = 4.0;
    }
    void ofARightRunTheHostIsToldNothing()
    {
        HostRun run(plugin, path(QLatin1String(QTest::currentDataTag())));
        run.copy->setModulation(float(Rows<double>::current()));
        messages.clear();
        run.makeTable();
        run.importScans(0, 19);
        run.end();
        QCOMPARE(newMessages(), QByteArray());
    }

    // GCxGC counts by the modulation that the user gave.
    void ofAGcxgcRun()
    {
        HostRun run(plugin, changedCopy(QStringLiteral("gcxgc"), {add("scan_acquisition_time", 19, 0.1)}));
        run.copy->setModulation(4.0f);
        run.makeTable();
        QCOMPARE(run.property(), QByteArray("odd-times 1, uneven-times 16"));
    }

    void ofATraceAllIsToldAtTheTable()
    {
        HostRun run(plugin,
                    changedCopy(QStringLiteral("gcms"),
                                {put("mass_values", 0, notANumber, 600), put("total_intensity", 4, -9999)}));
        messages.clear();
        QCOMPARE(run.makeTable(), 0);
        QCOMPARE(run.property(), QByteArray("bad-totals 1, bad-masses 600"));
        run.importScan(4);
        QCOMPARE(run.copy->property("scanFailure").toString(), QStringLiteral("its total intensity is missing"));
        run.end();
        QCOMPARE(messages.size(), 2);
    }

    void ofATraceWithPoints()
    {
        HostRun run(plugin, changedCopy(QStringLiteral("tic"), {put("total_intensity", 4, 5)}));
        QCOMPARE(run.makeTable(), 0);
        QCOMPARE(run.property(), QByteArray("wrong-totals 1"));
        HostRun shifted(
            plugin,
            changedCopy(QStringLiteral("tic"),
                        {add("total_intensity", 0, 1e6, 20), putAttribute("intensity_values", "add_offset", 1e6)}));
        QCOMPARE(shifted.makeTable(), 0);
        QCOMPARE(shifted.property(), QByteArray());
    }

    void whyAScanCantBeRead()
    {
        HostRun run(plugin, changedCopy(QStringLiteral("gcms"), {put("scan_index", 5, 590)}));
        run.makeTable();
        run.importScan(4);
        QVERIFY(run.copy->dynamicPropertyNames() == QByteArrayList{"doubts"});
        run.importScan(5);
        QCOMPARE(run.copy->property("scanFailure").toString(),
                 QStringLiteral("its positions, 590 up to 619, lie outside the 600 of mass_values"));
        run.importScan(6);
        QVERIFY(!run.copy->property("scanFailure").isValid());
    }

    // It would be taken for a trace.
    void aRefusedReadIsAnError()
    {
        HostRun run(plugin, path(QStringLiteral("gcms")));
        messages.clear();
        readError = EIO;
        const int size = run.makeTable();
        readError = 0;
        QCOMPARE(size, 0);
        const QByteArray told = newMessages();
        QVERIFY2(told.contains("E The system couldn't read &quot;gcms.cdf&quot;")
                     && told.contains(": Input/output error."),
                 told.constData());
        QVERIFY2(told.contains("W In &quot;gcms.cdf&quot;, the masses can't be read"), told.constData());
    }
};

QTEST_GUILESS_MAIN(TestToldDoubts)
#include "tst_told_doubts.moc"
