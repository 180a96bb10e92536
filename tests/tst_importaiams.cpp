// The plugin as the host meets it: loaded by the plugin loader, driven through its interfaces.

#include "dvheader.h"
#include "dvimportreceiver.h"
#include "logger.h"
#include "messageredirection.h"
#include "plugin.h"
#include "program.h"
#include "rows.h"

#include <QJsonObject>

#include <algorithm>
#include <ctime>
#include <functional>
#include <iterator>
#include <limits>
#include <vector>

namespace {

struct Scan {
    double time = 0;
    double total = 0;
    QList<float> abundances{};
    QList<int> positions{};
};

void compare(const Scan &seen, const Scan &expected)
{
    QCOMPARE(seen.time, expected.time);
    QCOMPARE(seen.total, expected.total);
    QCOMPARE(seen.abundances, expected.abundances);
    QCOMPARE(seen.positions, expected.positions);
}

struct Header {
    int scanCount = 3;
    double delay = 1; // minutes
    double runLength = 1;
    double interval = 0.5;
    int detector = 512; // 0: not set
    int bits = 28;
    bool hasCoefficient = false;
};

// Keeps what a run hands on.
class Receiver : public DVImportReceiver
{
public:
    void analysisStarted(const DVHeader &given, const float *table, int tableSize) override
    {
        header = {given.getNbScans(),
                  given.getDelay(),
                  given.getRunTimeLength(),
                  given.getSamplingInterval(),
                  given.isSet(DVHeader::DetectorType) ? given.getDetectorType() : 0,
                  given.getNbBitsAbund(),
                  given.isSet(DVHeader::CoeffAbund) && given.getCoeffAbund() == 0};
        unit = given.getRetentionUnit();
        date = given.getDate();
        std::copy_n(table, tableSize, std::back_inserter(masses));
    }
    void scanImported(int scan, double time, double total, int pointCount, const float *abundances,
                      const unsigned short *positions) override
    {
        scans.push_back({time, total});
        mostPoints = std::max(mostPoints, pointCount);
        const int kept = std::min(pointCount, 100);
        std::copy_n(abundances, kept, std::back_inserter(scans.back().abundances));
        std::copy_n(positions, kept, std::back_inserter(scans.back().positions));
        if (scan == 1 && atSecondScan)
            atSecondScan();
    }
    void progressChanged(int, int) override { }

    std::function<void()> atSecondScan;
    Header header{-1};
    QString unit;
    quint32 date = 1;
    QList<float> masses;
    std::vector<Scan> scans;
    int mostPoints = 0; // of a scan
};

struct Imported {
    QString fixture;
    float modulation = 0;
    Header header{};
    QList<float> masses{};
    std::vector<Scan> scans{}; // the first ones
};

struct Date {
    QByteArray zone;
    QString fixture;
    quint32 date = 0;
};

struct Elsewhere {
    QString fixture;
    std::size_t tableSize = 0;
    Scan scan{};
};

} // namespace

class TestImportAiaMs : public QObject, private Plugin
{
    Q_OBJECT

    QStringList messages;
    const MessageRedirection redirection{
        [this](MessageLoggerInterface::Level, const QString &text) { messages += text; }};

private slots:
    void initTestCase() { QVERIFY2(prototype(), qPrintable(loader.errorString())); }
    void init() { messages.clear(); }

    void namesItself()
    {
        const QJsonObject data = loader.metaData();
        QCOMPARE(data.value("IID").toString(), QStringLiteral("DV.DVImportInterface"));
        QCOMPARE(data.value("className").toString(), QStringLiteral("ImportAiaMs"));
        QVERIFY(!data.contains("MetaData"));

        QObject *plugin = loader.instance();
        const QMetaObject *meta = plugin->metaObject();
        QCOMPARE(meta->className(), "ImportAiaMs");
        QCOMPARE(meta->superClass()->className(), "DVImportInterface");
        QCOMPARE(meta->methodCount(), meta->methodOffset());
        QCOMPARE(meta->propertyCount(), meta->propertyOffset());
        QCOMPARE(plugin->qt_metacast("ImportAiaMs"), static_cast<void *>(plugin));
        QVERIFY(plugin->qt_metacast("DVImportInterface") && !plugin->qt_metacast("DVImportAnalysisInterface"));
        QCOMPARE(parameters(), dynamic_cast<DVImportParamType *>(plugin));
        QVERIFY(loader.instance() == plugin);

        QCOMPARE(prototype()->getExtension(), QStringList{QStringLiteral(".cdf")});
        QCOMPARE(prototype()->importQueryValue(), 0);
        QCOMPARE(prototype()->pluginKind(), 5);
        QCOMPARE(parameters()->pluginKind(), 5);
        QVERIFY(parameters()->paramTypeFlag());
    }

    void opensAndMoves()
    {
        DVImportAnalysisInterface *plugin = prototype();
        QVERIFY(canImport(fixture("two-scans")));
        QCOMPARE(plugin->getFileName(), fixture("two-scans"));
        // An open object looks at no other file: not at one that has no scans either.
        QVERIFY(canImport(fixture("chromatogram")));
        QCOMPARE(plugin->getFileName(), fixture("two-scans"));
        QVERIFY(!parameters()->reopenForFile(QStringLiteral("other.txt")));
        QVERIFY(canImport(fixture("chromatogram"))); // still attached

        plugin->setModulation(2.5f);
        const Copy copy = clone();
        QCOMPARE(copy->modulationPeriod(), 2.5f);
        QCOMPARE(plugin->modulationPeriod(), 0.0f);
        QCOMPARE(copy->getFileName(), fixture("two-scans"));
        QVERIFY(!canImport(fixture("chromatogram"))); // closed, so it opens this one
        QCOMPARE(plugin->getFileName(), fixture("chromatogram"));

        messages.clear();
        QVERIFY(!parameters()->reopenForFile(QStringLiteral("missing.cdf")));
        QCOMPARE(messages, QStringList{QStringLiteral("ms_open_read failed!")});
        QVERIFY(!parameters()->reopenForFile(fixture("error-log-rank-1")));
        QCOMPARE(messages.last(), QStringLiteral("ms_read_global failed!"));
        QVERIFY(parameters()->reopenForFile(fixture("one-scan")));
        clone();

        Receiver receiver;
        QVERIFY(!import(prototype(), &receiver)); // its file went to the copy
        QCOMPARE(messages.last(), "File <b>" + fixture("one-scan") + "</b> isn't open, so it can't be imported");
        QCOMPARE(receiver.header.scanCount, -1);
        QVERIFY(import(copy.get(), &receiver)); // its file is open still
        QCOMPARE(int(receiver.scans.size()), 2);
        QVERIFY(import(copy.get(), &receiver)); // and once more
        QCOMPARE(int(receiver.scans.size()), 4);
        compare(receiver.scans[3], receiver.scans[1]);
    }

    void imports_data()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN(); // 0 by 0
        const QList<float> three = {50, 60.25f, 70.5f};
        const Header trace = {3, 1, 1, 0.5, 256, 32, true};
        const Rows<Imported> row;
        // Fixture, modulation; of the header scans, delay, length, interval, detector, bits and coefficient;
        // masses; of a scan time, total, abundances and positions.
        row("spectra") = {"no-attributes",
                          0,
                          {},
                          three,
                          {{1, 3, {1, 2}, {0, 1}}, {1.5, 12, {4, 8}, {0, 2}}, {2, 48, {16, 32}, {1, 2}}}};
        row("GCxGC") = {
            "no-attributes", 0.5f, {3, 1, 1, 0.5, 2048}, three, {{0, 3, {1, 2}, {0, 1}}, {0.5, 12, {4, 8}, {0, 2}}}};
        row("two scans") = {"two-scans", 0, {2, 1, 1, 1}, {50, 60, 70}};
        row("times not in seconds") = {"time-units", 0, {3, 60, 60, 30}, three, {{60, 3, {1, 2}, {0, 1}}}};
        row("one scan") = {"one-scan", 0, {1, 1.5, 0, nan}, {50, 60}};
        row("no times") = {"missing-times", 0, {3, 0, 2, 1}, three, {{0, 3, {1, 2}, {0, 1}}}};
        row("no first time") = {"missing-first-time", 0, {3, 0, 2.5, 1.25}, three, {{0, 3, {1, 2}, {0, 1}}}};
        row("scales and offset") = {"scaled-short",
                                    0,
                                    {3, 60, 60, 30},
                                    {50, 60.25f, 123.46f},
                                    {{60, 9, {4, 5}, {0, 1}}, {90, 7014, {7003, 11}, {0, 2}}}};
        row("more than one scale") = {"several-numbers", 0, {}, {25, 30.13f, 35.25f}, {{1, 7, {3, 4}, {0, 1}}}};
        row("formats that the attributes deny") = {
            "contradicting-formats", 0, {}, {50, 60, 70}, {{1, 3, {1, 2}, {0, 1}}}};
        row("scans that overlap") = {
            "overlapping-scans", 0, {}, three, {{1, 28, {4, 8, 16}, {0, 2, 1}}, {1.5, 15, {1, 2, 4, 8}, {0, 1, 0, 2}}}};
        row("scans that can't be read") = {
            "odd-scan-index", 0, {6, 1, 2.5}, three, {{1, 3, {1, 2}, {0, 1}}, {1.5}, {2}, {2.5}, {3}, {3.5}}};
        row("two masses") = {"two-masses", 0, {}, {50, 60}};
        row("a scale of 0") = {"zero-scale", 0, trace, {}, {{1, 3}, {1.5, 12}}};
        row("one mass") = {"one-mass", 0, trace};
        row("trace") = {"total-ion", 0, trace, {}, {{1, double(3.3f)}, {-166.65, 12.5}, {2, -9999}}};
        row("trace of GCxGC") = {"total-ion", 2, {3, 1, 1, 0.5, 1792, 32, true}, {}, {{1, double(3.3f)}}};
        row("no trace") = {"total-ion-no-intensity", 0, {3, 1, 1, 0.5, 0, 32, false}, {}, {{1}, {1.5}, {2}}};
        row("trace of rank 2") = {"total-ion-rank-2", 0, {3, 0, 2, 1, 256, 32, true}, {}, {{1, 3}, {1.5, 12}, {2, 48}}};
        row("no scans") = {"no-scans", 0, {0, 0, -1, 1}, three};
    }
    void imports()
    {
        const Imported &row = Rows<Imported>::current();
        prototype()->setModulation(row.modulation);
        const auto copy = copyFor(fixture(row.fixture));
        QVERIFY(copy);
        Receiver receiver;
        QVERIFY(import(copy.get(), &receiver));
        QCOMPARE(receiver.header.scanCount, row.header.scanCount);
        QCOMPARE(receiver.unit, QStringLiteral("minutes"));
        QCOMPARE(receiver.header.delay, row.header.delay);
        QCOMPARE(receiver.header.runLength, row.header.runLength);
        QCOMPARE(receiver.header.interval, row.header.interval);
        QCOMPARE(receiver.header.detector, row.header.detector);
        QCOMPARE(receiver.header.bits, row.header.bits);
        QCOMPARE(receiver.header.hasCoefficient, row.header.hasCoefficient);
        QCOMPARE(receiver.masses, row.masses);
        QCOMPARE(int(receiver.scans.size()), row.header.scanCount);
        for (std::size_t i = 0; i < row.scans.size() && !QTest::currentTestFailed(); ++i)
            compare(receiver.scans[i], row.scans[i]);
    }

    // One with a point more can't be read.
    void takesAScanOfMostPoints()
    {
        Receiver receiver;
        QVERIFY(import(copyFor(fixture("huge-scans")).get(), &receiver));
        QCOMPARE(receiver.scans.at(0).abundances.size(), 0);
        QCOMPARE(receiver.mostPoints, 1 << 24);
        QCOMPARE(receiver.scans.at(1).total, -32767.0 * ((1 << 24) - 2) + 3);
    }

    // The stamps: 19930817103000+0100, 19930817103000-05, and an empty one.
    void datesInManyZones_data()
    {
        const Rows<Date> row;
        row("UTC") = {"UTC", "plain", 745583400};
        row("an hour east") = {"XST-1", "plain", 745583400};
        row("five hours west") = {"XST5", "plain", 745583400};
        row("summer time") = {"XST-1XDT,M3.5.0,M10.5.0/3", "plain", 745579800};
        row("west stamp") = {"UTC", "text-attributes", 745561800};
        row("empty") = {"UTC", "empty-attributes", 0xffffffff};
    }
    void datesInManyZones()
    {
        const Date &row = Rows<Date>::current();
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", row.zone);
        tzset();
        Receiver receiver;
        const auto copy = copyFor(fixture(row.fixture));
        const bool imported = copy && import(copy.get(), &receiver);
        qputenv("TZ", before);
        tzset();
        QVERIFY(imported);
        QCOMPARE(receiver.date, row.date);
    }

    void takesThePresentForAMissingDate()
    {
        Receiver receiver;
        const quint32 before = QDateTime::currentDateTime().toTime_t();
        QVERIFY(import(copyFor(fixture("no-attributes")).get(), &receiver));
        QVERIFY(receiver.date >= before && receiver.date <= QDateTime::currentDateTime().toTime_t());
    }

    void givesAnAccount()
    {
        const auto copy = copyFor(fixture("no-attributes"));
        Logger logger;
        QVERIFY(import(copy.get(), nullptr));
        const QStringList expected = {"nb de scans : 3",
                                      "codage de l'abondance : 28 bits",
                                      "Passage de seconds en minutes",
                                      "durée de l'expérience : 1",
                                      "délai : 1",
                                      "interval d'échantillonage : 0.5",
                                      "*** fin du chargement du header AIA MS ***"};
        QCOMPARE(logger.messages, expected);
    }

    void worksInTheMiddleOfAnother()
    {
        const auto one = copyFor(fixture("no-attributes"));
        const auto other = copyFor(fixture("scaled-short"));
        Receiver inner;
        Receiver outer;
        outer.atSecondScan = [&] { QVERIFY(import(other.get(), &inner)); };
        QVERIFY(import(one.get(), &outer));
        compare(inner.scans.at(0), {60, 9, {4, 5}, {0, 1}});
        compare(outer.scans.at(2), {2, 48, {16, 32}, {1, 2}});
    }

    // Nothing of the trace of one file is left for the next: not even without its table.
    void forgetsAnEarlierTrace()
    {
        const auto copy = copyFor(fixture("total-ion"));
        QVERIFY(import(copy.get(), nullptr));
        QVERIFY(dynamic_cast<DVImportParamType *>(copy.get())->reopenForFile(fixture("no-attributes")));
        double time = 0.0;
        double total = -1.0;
        Receiver receiver;
        receiver.atSecondScan = [&] {
            int points = 0;
            total = copy->importScan(2, &time, 0, nullptr, &points, nullptr, nullptr);
        };
        QVERIFY(import(copy.get(), &receiver));
        QCOMPARE(total, 0.0);
        QCOMPARE(time, 2.0);
    }

    void readsAgainstATableFromElsewhere_data()
    {
        const Rows<Elsewhere> row;
        // 60.25 isn't in that table: no abundance, but it counts in the total.
        row("shorter") = {"no-attributes", 1, {2, 48, {0, 32}, {0, 0}}};
        row("as long") = {"no-attributes", 3, {2, 48, {0, 32}, {0, 0}}};
        row("of a file without masses") = {"flags-on-times", 3, {2, 0}};
    }
    void readsAgainstATableFromElsewhere()
    {
        const Elsewhere &row = Rows<Elsewhere>::current();
        const auto copy = copyFor(fixture(row.fixture));
        Receiver elsewhere; // what comes of the third scan
        Receiver receiver;
        receiver.atSecondScan = [&] {
            std::vector<float> table = {70.5f, 80.0f, 90.0f};
            table.resize(row.tableSize);
            table.shrink_to_fit();
            float found[2] = {-1, -1};
            unsigned short places[2] = {9, 9};
            double time = 0.0;
            int points = 0;
            const double total = copy->importScan(2, &time, int(row.tableSize), table.data(), &points, found, places);
            elsewhere.scanImported(2, time, total, points, found, places);
        };
        QVERIFY(import(copy.get(), &receiver));
        compare(elsewhere.scans.at(0), row.scan);
    }
};

QTEST_GUILESS_MAIN(TestImportAiaMs)
#include "tst_importaiams.moc"
