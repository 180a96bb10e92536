// The host's layers: what the plugin and the programs build on.

#include "dvheader.h"
#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "messageredirection.h"
#include "rows.h"
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

struct Rounded {
    double value = 0;
    int result = 0;
};

struct LookUp {
    float mass = 0;
    int size = 4; // of the table
    int place = -1;
};

struct Imported {
    int scans = 0;
    int cancelAfter = -1; // number of a scan
    bool result = true;
    int received = 0;
    int messages = 0;
};

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
        const Rows<Rounded> row;
        row("half") = {0.5, 1};
        row("just under a half") = {0.49999999999999994, 0};
        row("NaN") = {std::nan(""), 0};
        row("top") = {2147483646.6, top};
        row("beyond the top") = {infinity, top};
        row("bottom") = {-2147483647.5, bottom};
        row("beyond the bottom") = {-infinity, bottom};
    }
    void rounds()
    {
        const Rounded &row = Rows<Rounded>::current();
        QCOMPARE(TMath::round(row.value), row.result);
    }

    // For programs that were built to call it.
    void exportsRounding()
    {
        QLibrary library(QStringLiteral(AIA_MATHS));
        const auto round = reinterpret_cast<int (*)(double)>(library.resolve("_ZN5TMath5roundEd"));
        QVERIFY2(round, qPrintable(library.errorString()));
        QCOMPARE(round(-2.5), -3);
    }

    void findsMasses_data()
    {
        const Rows<LookUp> row;
        row("first") = {1.0f, 4, 0};
        row("twice there") = {2.5f, 4, 1};
        row("last") = {4.0f, 4, 3};
        row("behind the last") = {4.0f, 3};
        row("no table") = {1.0f, 0};
        row("just above one") = {std::nextafter(2.5f, 3.0f)};
        row("above all") = {5.0f};
        row("NaN") = {std::nanf("")};
    }
    void findsMasses()
    {
        const LookUp &row = Rows<LookUp>::current();
        float table[] = {1.0f, 2.5f, 2.5f, 4.0f};
        bool found = row.place == -1; // the opposite of what comes
        const int place = TestImport(0).findTablePosition(row.mass, table, row.size, &found);
        QCOMPARE(found, row.place != -1);
        QCOMPARE(place, found ? row.place : 0);
    }

    void refusesAFolder()
    {
        QString reason;
        QVERIFY(!TestImport(0).canImport(nullptr, QStringLiteral("/"), reason));
        QCOMPARE(reason, QStringLiteral("\"/\" is a folder, not a file."));
    }

    void runs_data()
    {
        const Rows<Imported> row;
        row("whole") = {900, -1, true, 900};
        row("not quite two scans a step") = {199, -1, true, 199};
        row("no scans") = {0};
        row("cancelled") = {900, 4, false, 5};
        row("no header") = {-1, -1, false};
        row("out of memory") = {2000, -1, false, 1000, 1};
    }
    void runs()
    {
        const Imported &row = Rows<Imported>::current();
        QStringList said;
        const MessageRedirection redirection([&](MessageLoggerInterface::Level level, const QString &text) {
            QCOMPARE(level, MessageLoggerInterface::Level::Error);
            said += text;
        });
        TestImport import(row.scans, row.cancelAfter);
        import.pBarCanceledSlot(); // no run is active, so nothing is cancelled
        QCOMPARE(import.import(QStringLiteral("x.cdf"), QString(), QString(), nullptr), row.result);
        QCOMPARE(import.received, row.received);
        QCOMPARE(import.sum, row.received * (row.received - 1.0) / 2.0);
        QCOMPARE(said.filter(QStringLiteral("x.cdf")).size(), row.messages);
        QVERIFY(import.progress <= 100);
        if (row.result)
            QCOMPARE(import.lastDone, row.scans);
        QVERIFY(!import.hasHeader());
        // A later run begins afresh.
        QCOMPARE(import.import(QStringLiteral("x.cdf"), QString(), QString(), nullptr), row.result);
        QCOMPARE(import.received, 2 * row.received);
    }
};

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
