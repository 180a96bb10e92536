// The plugin as the host meets it: loaded by the plugin loader, driven through its interfaces.

#include "logger.h"
#include "messageredirection.h"
#include "plugin.h"
#include "program.h"
#include "receiver.h"
#include "rows.h"

#include <QJsonObject>
#include <QTemporaryDir>

#include <cmath>
#include <ctime>
#include <vector>

namespace {

// Of intensities that are whole numbers and have no scale.
struct Offset {
    QByteArray text;
    float zero = 0.0f; // the abundance of a negative zero
    double total = 2.0;
};

void compare(const ReceivedScan &seen, const ReceivedScan &expected)
{
    QCOMPARE(seen.time, expected.time);
    QCOMPARE(seen.total, expected.total);
    QCOMPARE(seen.abundances, expected.abundances);
    QCOMPARE(seen.positions, expected.positions);
}

} // namespace

class TestImportAiaMs : public QObject, private Plugin
{
    Q_OBJECT

    QStringList messages;
    const MessageRedirection redirection{
        [this](MessageLoggerInterface::Level, const QString &text) { messages += text; }};

    // The third scan, read against a table in the middle of an import.
    static ReceivedScan thirdScan(DVImportAnalysisInterface *copy, std::vector<float> table)
    {
        Receiver third;
        Receiver receiver;
        receiver.atSecondScan = [&] {
            float found[2] = {-1, -1};
            unsigned short places[2] = {9, 9};
            double time = 0.0;
            int points = 0;
            const double total = copy->importScan(2, &time, int(table.size()), table.data(), &points, found, places);
            third.scanImported(2, time, total, points, found, places);
        };
        const bool imported = import(copy, &receiver);
        return imported && !third.scans.empty() ? third.scans.front() : ReceivedScan{-1};
    }

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
        QVERIFY(meta->methodCount() == meta->methodOffset() && meta->propertyCount() == meta->propertyOffset());
        QCOMPARE(plugin->qt_metacast("ImportAiaMs"), static_cast<void *>(plugin));
        QVERIFY(plugin->qt_metacast("DVImportInterface") && !plugin->qt_metacast("DVImportAnalysisInterface"));
        QCOMPARE(parameters(), dynamic_cast<DVImportParamType *>(plugin));
        QCOMPARE(prototype()->getExtension(), QStringList{QStringLiteral(".cdf")});
        QVERIFY(prototype()->importQueryValue() == 0 && parameters()->paramTypeFlag());
        QVERIFY(prototype()->pluginKind() == 5 && parameters()->pluginKind() == 5);
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
        plugin->setApplicationData(reinterpret_cast<TApplicationData *>(this)); // which only the host looks into
        const Copy copy = clone();
        QCOMPARE(copy->getApplicationData(), plugin->getApplicationData());
        plugin->setApplicationData(nullptr);
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
        QCOMPARE(messages.last(), "The file <b>" + fixture("one-scan") + "</b> isn't open, so it can't be imported.");
        QCOMPARE(receiver.scanCount, -1);
        QVERIFY(import(copy.get(), &receiver)); // its file is open still
        QCOMPARE(int(receiver.scans.size()), 2);
        QVERIFY(import(copy.get(), &receiver)); // and once more
        QCOMPARE(int(receiver.scans.size()), 4);
        compare(receiver.scans[3], receiver.scans[1]);
    }

    // One with a point more can't be read.
    void takesAScanOfMostPoints()
    {
        Receiver receiver;
        QVERIFY(import(copyFor(fixture("huge-scans")).get(), &receiver));
        QCOMPARE(receiver.scans.at(0).abundances.size(), 0);
        QCOMPARE(receiver.points, 1 << 24); // all of the second scan
        QCOMPARE(receiver.scans.at(1).total, -32767.0 * ((1 << 24) - 2) + 3);
    }

    void addsTheOffset_data()
    {
        const Rows<Offset> row;
        row("zero") = {"0."};
        row("negative zero") = {"-0.", -0.0f};
        row("fraction") = {"0.5", 0.5f, 3.0};
    }
    void addsTheOffset()
    {
        const Offset &row = Rows<Offset>::current();
        const QTemporaryDir folder;
        const QString path = folder.filePath("offset.cdf");
        const QByteArray text =
            "netcdf offset { dimensions: scan_number = 1; point_number = 2;"
            "variables: int scan_index(scan_number), point_count(scan_number);"
            "float mass_values(point_number), intensity_values(point_number); intensity_values:add_offset = "
            + row.text + "; data: point_count = 2; scan_index = 0; mass_values = 50, 60; intensity_values = -0., 2.; }";
        QVERIFY(makeNetcdf(path, "classic", text));
        Receiver receiver;
        QVERIFY(import(copyFor(path).get(), &receiver));
        const float abundance = receiver.scans.at(0).abundances.at(0);
        QCOMPARE(abundance, row.zero);
        QCOMPARE(std::signbit(abundance), std::signbit(row.zero));
        QCOMPARE(receiver.scans.at(0).total, row.total);
    }

    // The stamp: 19930817103000+0100. Others are compared with the independent reading, in UTC.
    void datesInManyZones_data()
    {
        const Rows<quint32> date;
        date("XST-1") = 745583400;
        date("XST5") = 745583400;
        date("XST-1XDT,M3.5.0,M10.5.0/3") = 745579800; // summer time
    }
    void datesInManyZones()
    {
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", QTest::currentDataTag());
        tzset();
        Receiver receiver;
        const bool imported = import(copyFor(fixture("plain")).get(), &receiver);
        qputenv("TZ", before);
        tzset();
        QVERIFY(imported);
        QCOMPARE(receiver.date, Rows<quint32>::current());
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
        QVERIFY(dynamic_cast<DVImportParamType *>(copy.get())->reopenForFile(fixture("total-ion")));
        QVERIFY(import(copy.get(), nullptr)); // frees the first trace
        QVERIFY(dynamic_cast<DVImportParamType *>(copy.get())->reopenForFile(fixture("no-attributes")));
        compare(thirdScan(copy.get(), {}), {2, 0});
    }

    // 60.25 isn't in that table: no abundance, but it counts in the total.
    void readsAgainstATableFromElsewhere()
    {
        const ReceivedScan third = {2, 48, {0, 32}, {0, 0}};
        compare(thirdScan(copyFor(fixture("no-attributes")).get(), {70.5f}), third);
        compare(thirdScan(copyFor(fixture("no-attributes")).get(), {70.5f, 80.0f, 90.0f}), third);
        compare(thirdScan(copyFor(fixture("flags-on-times")).get(), {70.5f, 80.0f, 90.0f}), {2, 0}); // no masses
    }
};

QTEST_GUILESS_MAIN(TestImportAiaMs)
#include "tst_importaiams.moc"
