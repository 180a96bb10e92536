// The host's layers: what the plugin and the programs build on.

#include "dvheader.h"
#include "dvimportanalysisinterface.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"
#include "tmath.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

// An import of a given number of scans, each of one point.
class TestImport : public DVImportAnalysisInterface
{
public:
    explicit TestImport(int scans) : scanCount(scans) { }

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
        if (scan == 1000)
            throw std::bad_alloc();
        *time = scan;
        *pointCount = 1;
        abundances[0] = float(scan);
        positions[0] = 0;
        return scan;
    }

private:
    int scanCount;
};

class TestReceiver : public DVImportReceiver
{
public:
    explicit TestReceiver(TestImport *import, int cancelAt) : source(import), cancelAfter(cancelAt) { }

    void analysisStarted(const DVHeader &, const float *table, int) override { firstMass = table[0]; }
    void scanImported(int scan, double, double total, int, const float *, const unsigned short *) override
    {
        ++scans;
        sum += total;
        if (scan == cancelAfter)
            source->pBarCanceledSlot();
    }
    void progressChanged(int done, int) override
    {
        ++progress;
        lastDone = done;
    }

    int scans = 0;
    double sum = 0;
    int progress = 0;
    int lastDone = 0;
    float firstMass = 0;

private:
    TestImport *source;
    int cancelAfter;
};

} // namespace

class TestPlatform : public QObject
{
    Q_OBJECT

private slots:
    void rounds_data();
    void rounds();
    void findsMasses();
    void runs_data();
    void runs();
    void tellsNullFromEmpty();
};

void TestPlatform::rounds_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("result");
    const int top = std::numeric_limits<int>::max();
    const int bottom = std::numeric_limits<int>::min();
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("half") << 0.5 << 1;
    QTest::newRow("half below") << -2.5 << -3;
    QTest::newRow("just under a half") << 0.49999999999999994 << 0;
    QTest::newRow("just over minus a half") << -0.49999999999999994 << 0;
    QTest::newRow("just under two and a half") << 2.4999999999999996 << 2;
    QTest::newRow("large half") << 1073741824.5 << 1073741825;
    QTest::newRow("just under a large half") << 1073741824.4999998 << 1073741824;
    QTest::newRow("NaN") << std::nan("") << 0;
    QTest::newRow("top") << 2147483646.6 << top;
    QTest::newRow("one below the top") << 2147483646.4 << top - 1;
    QTest::newRow("beyond the top") << infinity << top;
    QTest::newRow("bottom") << -2147483647.5 << bottom;
    QTest::newRow("one above the bottom") << -2147483647.4 << bottom + 1;
    QTest::newRow("beyond the bottom") << -infinity << bottom;
}

void TestPlatform::rounds()
{
    QFETCH(double, value);
    QTEST(TMath::round(value), "result");
}

void TestPlatform::findsMasses()
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

void TestPlatform::runs_data()
{
    QTest::addColumn<int>("scans");
    QTest::addColumn<int>("cancelAt");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("received");
    QTest::addColumn<int>("messages");
    QTest::newRow("whole") << 900 << -1 << true << 900 << 0;
    QTest::newRow("not quite two scans a step") << 199 << -1 << true << 199 << 0;
    QTest::newRow("no scans") << 0 << -1 << true << 0 << 0;
    QTest::newRow("cancelled") << 900 << 4 << false << 5 << 0;
    QTest::newRow("no header") << -1 << -1 << false << 0 << 0;
    QTest::newRow("out of memory") << 2000 << -1 << false << 1000 << 1;
}

void TestPlatform::runs()
{
    QFETCH(int, scans);
    QFETCH(int, cancelAt);
    int messages = 0;
    MessageLoggerInterface::setReceiver([&](MessageLoggerInterface::Level level, const QString &text) {
        QCOMPARE(level, MessageLoggerInterface::Level::Error);
        QVERIFY(text.contains(QStringLiteral("x.cdf")));
        ++messages;
    });
    TestImport import(scans);
    TestReceiver receiver(&import, cancelAt);
    import.setReceiver(&receiver);
    QTEST(import.import(QStringLiteral("x.cdf"), QString(), QString(), nullptr), "result");
    MessageLoggerInterface::setReceiver({});
    QTEST(receiver.scans, "received");
    QCOMPARE(receiver.sum, receiver.scans * (receiver.scans - 1) / 2.0);
    QTEST(messages, "messages");
    QVERIFY(receiver.progress <= 100);
    if (receiver.scans == scans)
        QCOMPARE(receiver.lastDone, scans);
    QVERIFY(!import.hasHeader());
}

void TestPlatform::tellsNullFromEmpty()
{
    DVHeader header;
    QCOMPARE(header.getRetentionUnit(), QStringLiteral("minutes"));
    QVERIFY(!header.getDevice() && !header.isSet(DVHeader::DetectorType));
    header.setDevice("");
    header.setDetectorType(0);
    QVERIFY(header.getDevice() && header.isSet(DVHeader::DetectorType));
    header.setDevice(nullptr);
    QVERIFY(!header.getDevice());
}

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"
