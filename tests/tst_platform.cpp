// The host's layers: what the plugin and the programs build on.

#include "dvheader.h"
#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"
#include "table.h"
#include "tmath.h"

#include <QLibrary>

#include <cmath>
#include <limits>
#include <new>

namespace {

// An import of a given number of scans, each of one point, that receives itself what it gives and may cancel
// itself after a scan.
class TestImport : public DVImportAnalysisInterface, public DVImportReceiver
{
public:
    explicit TestImport(int scans, int scan = -1) : scanCount(scans), cancelAfter(scan) { setReceiver(this); }

    using DVImportAnalysisInterface::findTablePosition;
    bool hasHeader() const { return header != nullptr; }

    int importQueryValue() override { return 0; }
    int pluginKind() override { return 0; }
    DVImportAnalysisInterface *clone() override { return nullptr; }
    bool importHeader() override
    {
        header = new DVHeader;
        header->setNbScans(scanCount);
        return scanCount >= 0;
    }
    unsigned short importMassTable(float **table) override
    {
        *table = new float[1]{12.5f};
        return 1;
    }
    double importScan(int scan, double *time, int, float *, int *pointCount, float *abundances,
                      unsigned short *positions) override
    {
        if (scan == 1000 && scanCount == 2000)
            throw std::bad_alloc();
        *time = scan;
        *pointCount = 1;
        abundances[0] = float(scan);
        positions[0] = 0;
        return scan;
    }

    void analysisStarted(const DVHeader &, const float *, int) override { }
    void scanImported(int scan, double, double total, int, const float *, const unsigned short *) override
    {
        ++received;
        sum += total;
        if (scan == cancelAfter)
            pBarCanceledSlot();
    }
    void progressChanged(int done, int) override
    {
        ++progress;
        lastDone = done;
    }

    const int scanCount;
    const int cancelAfter;
    int received = 0;
    double sum = 0;
    int progress = 0;
    int lastDone = 0;
};

using Rounded = Table<double, int>;
using Imported = Table<int, int, bool, int, int>; // scans, cancelled after; result, scans, messages

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void rounds_data()
    {
        const int top = std::numeric_limits<int>::max();
        const int bottom = std::numeric_limits<int>::min();
        const double infinity = std::numeric_limits<double>::infinity();
        const Rounded row;
        row("half", 0.5, 1);
        row("half below", -2.5, -3);
        row("just under a half", 0.49999999999999994, 0);
        row("just over minus a half", -0.49999999999999994, 0);
        row("just under two and a half", 2.4999999999999996, 2);
        row("large half", 1073741824.5, 1073741825);
        row("just under a large half", 1073741824.4999998, 1073741824);
        row("NaN", std::nan(""), 0);
        row("top", 2147483646.6, top);
        row("one below the top", 2147483646.4, top - 1);
        row("beyond the top", infinity, top);
        row("bottom", -2147483647.5, bottom);
        row("one above the bottom", -2147483647.4, bottom + 1);
        row("beyond the bottom", -infinity, bottom);
    }
    void rounds()
    {
        const auto [value, result] = Rounded::row();
        QCOMPARE(TMath::round(value), result);
    }

    // For programs that were built to call it.
    void exportsRounding()
    {
        QLibrary library(QStringLiteral(AIA_MATHS));
        const auto round = reinterpret_cast<int (*)(double)>(library.resolve("_ZN5TMath5roundEd"));
        QVERIFY2(round, qPrintable(library.errorString()));
        QCOMPARE(round(-2.5), -3);
    }

    void findsMasses()
    {
        TestImport import(0);
        float table[] = {1.0f, 2.5f, 2.5f, 4.0f};
        const auto place = [&](float mass, int size) {
            bool found = mass != 2.5f; // the opposite
            const int position = import.findTablePosition(mass, table, size, &found);
            return found ? position : -1 - position;
        };
        QCOMPARE(place(1.0f, 4), 0);
        QCOMPARE(place(2.5f, 4), 1);
        QCOMPARE(place(4.0f, 4), 3);
        QCOMPARE(place(4.0f, 3), -1);
        QCOMPARE(place(1.0f, 0), -1);
        for (const float mass : {0.5f, std::nextafter(2.5f, 3.0f), 5.0f, std::nanf("")})
            QCOMPARE(place(mass, 4), -1);
    }

    void runs_data()
    {
        const Imported row;
        row("whole", 900, -1, true, 900, 0);
        row("not quite two scans a step", 199, -1, true, 199, 0);
        row("no scans", 0, -1, true, 0, 0);
        row("cancelled", 900, 4, false, 5, 0);
        row("no header", -1, -1, false, 0, 0);
        row("out of memory", 2000, -1, false, 1000, 1);
    }
    void runs()
    {
        const auto [scans, cancelAfter, result, received, messages] = Imported::row();
        QStringList said;
        MessageLoggerInterface::setReceiver([&](MessageLoggerInterface::Level level, const QString &text) {
            QCOMPARE(level, MessageLoggerInterface::Level::Error);
            said += text;
        });
        TestImport import(scans, cancelAfter);
        import.pBarCanceledSlot(); // no run is active, so nothing is cancelled
        QCOMPARE(import.import(QStringLiteral("x.cdf"), QString(), QString(), nullptr), result);
        QCOMPARE(import.received, received);
        QCOMPARE(import.sum, received * (received - 1.0) / 2.0);
        QCOMPARE(said.filter(QStringLiteral("x.cdf")).size(), messages);
        QVERIFY(import.progress <= 100);
        if (received == scans)
            QCOMPARE(import.lastDone, scans);
        QVERIFY(!import.hasHeader());
        // A later run begins afresh.
        QCOMPARE(import.import(QStringLiteral("x.cdf"), QString(), QString(), nullptr), result);
        MessageLoggerInterface::setReceiver({});
        QCOMPARE(import.received, 2 * received);
    }

    void tellsNullFromEmpty()
    {
        DVHeader header;
        QCOMPARE(header.getRetentionUnit(), QStringLiteral("minutes"));
        QVERIFY(!header.getDevice() && !header.isSet(DVHeader::DetectorType));
        char empty[] = "";
        header.setDevice(empty);
        header.setDetectorType(0);
        QVERIFY(header.getDevice() && header.isSet(DVHeader::DetectorType));
        header.setDevice(nullptr);
        QVERIFY(!header.getDevice());
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
