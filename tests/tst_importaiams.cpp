// The plugin as the host meets it: loaded by the plugin loader, driven through its interfaces.

#include "dvheader.h"
#include "dvimportreceiver.h"
#include "messageloggerinterface.h"
#include "plugin.h"
#include "program.h"
#include "table.h"
#include "tlogger.h"

#include <QJsonObject>

#include <ctime>
#include <functional>
#include <vector>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 10);
}

// All that a run hands on, as text.
class Receiver : public DVImportReceiver
{
public:
    void analysisStarted(const DVHeader &header, const float *table, int tableSize) override
    {
        const char *device = header.getDevice();
        head = QStringLiteral("%1 scans, %2, %3 + %4 by %5, detector %6, %7 bits, coefficient %8, device %9")
                   .arg(header.getNbScans())
                   .arg(header.getRetentionUnit(), number(header.getDelay()), number(header.getRunTimeLength()),
                        number(header.getSamplingInterval()),
                        header.isSet(DVHeader::DetectorType) ? QString::number(header.getDetectorType()) : QString("-"))
                   .arg(header.getNbBitsAbund())
                   .arg(header.isSet(DVHeader::CoeffAbund) ? "0" : "-")
                   .arg(device ? device : "-");
        date = header.getDate();
        for (int i = 0; i < tableSize; ++i)
            masses += number(double(table[i]));
    }
    void scanImported(int scan, double time, double total, int pointCount, const float *abundances,
                      const unsigned short *positions) override
    {
        QStringList points;
        if (pointCount > 1000)
            points += QStringLiteral("%1 points").arg(pointCount);
        for (int i = 0; i < pointCount && pointCount <= 1000; ++i)
            points += number(double(abundances[i])) + QLatin1Char('@') + QString::number(positions[i]);
        scans += QStringLiteral("%1: %2 %3").arg(number(time), number(total), points.join(QLatin1Char(' '))).trimmed();
        if (scan == 1 && atSecondScan)
            atSecondScan();
    }
    void progressChanged(int, int) override { }

    std::function<void()> atSecondScan;
    QString head;
    quint32 date = 1;
    QStringList masses;
    QStringList scans;
};

class Logger : public TLogger
{
public:
    void logEntry(int level, const QString &file, int line, const QString &message) override
    {
        entries += QStringLiteral("%1 %2 %3 %4").arg(level).arg(file).arg(line).arg(message);
    }
    void flushEntries() override { entries += QStringLiteral("flush"); }

    QStringList entries;
};

// Name, modulation; beginning of the head, masses, the first scans.
using Imported = Table<QString, double, QString, QString, QStringList>;
using Elsewhere = Table<QString, int, QString>;    // fixture, size of the table; what comes of the third scan
using Dates = Table<QByteArray, QString, quint32>; // zone, fixture; date

} // namespace

class TestImportAiaMs : public QObject, private Plugin
{
    Q_OBJECT

    QStringList messages;

private slots:
    void initTestCase()
    {
        MessageLoggerInterface::setReceiver(
            [this](MessageLoggerInterface::Level, const QString &text) { messages += text; });
        QVERIFY2(prototype(), qPrintable(loader.errorString()));
    }
    void init() { messages.clear(); }
    void cleanupTestCase() { MessageLoggerInterface::setReceiver({}); }

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
        QCOMPARE(receiver.head, QString());
        QVERIFY(import(copy.get(), &receiver)); // its file is open still
        QCOMPARE(receiver.scans.size(), 2);
        QVERIFY(import(copy.get(), &receiver)); // and once more
        QCOMPARE(receiver.scans.size(), 4);
        QCOMPARE(receiver.scans[3], receiver.scans[1]);
    }

    void imports_data()
    {
        const auto row = [table = Imported()](const QByteArray &name, double modulation, const char *head,
                                              const char *masses, const QStringList &scans) {
            table(name + ' ' + QByteArray::number(modulation), name, modulation, head, masses, scans);
        };
        const char *three = "50 60.25 70.5";
        row("no-attributes", 0, "3 scans, minutes, 1 + 1 by 0.5, detector 512, 28 bits, coefficient -, device -", three,
            {"1: 3 1@0 2@1", "1.5: 12 4@0 8@2", "2: 48 16@1 32@2"});
        row("no-attributes", 0.5, "3 scans, minutes, 1 + 1 by 0.5, detector 2048, 28 bits", three,
            {"0: 3 1@0 2@1", "0.5: 12 4@0 8@2", "1: 48 16@1 32@2"});
        row("two-scans", 0, "2 scans, minutes, 1 + 1 by 1, detector 512", "", {});
        row("time-units", 0, "3 scans, minutes, 60 + 60 by 30, detector 512", three, {"60: 3 1@0 2@1"});
        row("one-scan", 0, "1 scans, minutes, 1.5 + 0 by ", "", {});
        row("missing-times", 0, "3 scans, minutes, 0 + 2 by 1, detector 512", three, {"0: 3 1@0 2@1"});
        row("missing-first-time", 0, "3 scans, minutes, 0 + 2.5 by 1.25, detector 512", three, {"0: 3 1@0 2@1"});
        row("scaled-short", 0, "3 scans, minutes, 60 + 60 by 30, detector 512", "50 60.25 123.4599991",
            {"60: 9 4@0 5@1", "90: 7014 7003@0 11@2"});
        row("several-numbers", 0, "", "25 30.12999916 35.25", {"1: 7 3@0 4@1"});
        row("contradicting-formats", 0, "", "50 60 70", {"1: 3 1@0 2@1"});
        row("overlapping-scans", 0, "", three, {"1: 28 4@0 8@2 16@1", "1.5: 15 1@0 2@1 4@0 8@2"});
        row("odd-scan-index", 0, "6 scans", three, {"1: 3 1@0 2@1", "1.5: 0", "2: 0", "2.5: 0", "3: 0", "3.5: 0"});
        row("two-masses", 0, "3 scans, minutes, 1 + 1 by 0.5, detector 512", "50 60", {});
        row("zero-scale", 0, "3 scans, minutes, 1 + 1 by 0.5, detector 256", "", {"1: 3", "1.5: 12"});
        row("one-mass", 0, "3 scans, minutes, 1 + 1 by 0.5, detector 256, 32 bits, coefficient 0", "", {});
        row("total-ion", 0, "3 scans, minutes, 1 + 1 by 0.5, detector 256, 32 bits, coefficient 0", "",
            {"1: 3.299999952", "-166.65: 12.5", "2: -9999"});
        row("total-ion", 2, "3 scans, minutes, 1 + 1 by 0.5, detector 1792, 32 bits, coefficient 0", "",
            {"1: 3.299999952"});
        row("total-ion-no-intensity", 0, "3 scans, minutes, 1 + 1 by 0.5, detector -, 32 bits, coefficient -", "",
            {"1: 0", "1.5: 0", "2: 0"});
        row("total-ion-rank-2", 0, "3 scans, minutes, 0 + 2 by 1, detector 256", "", {"1: 3", "1.5: 12", "2: 48"});
        row("no-scans", 0, "0 scans", "", {});
        row("huge-scans", 0, "2 scans", "-32767 50 60", {"0: 0", "1: -5.497389711e+11 16777216 points"});
    }
    void imports()
    {
        const auto [name, modulation, head, masses, scans] = Imported::row();
        prototype()->setModulation(float(modulation));
        const auto copy = copyFor(fixture(name));
        QVERIFY(copy);
        Receiver receiver;
        QVERIFY(import(copy.get(), &receiver));
        QVERIFY2(receiver.head.startsWith(head), qPrintable(receiver.head));
        if (!masses.isEmpty())
            QCOMPARE(receiver.masses.join(QLatin1Char(' ')), masses);
        QCOMPARE(receiver.scans.mid(0, scans.size()), scans);
        QCOMPARE(receiver.scans.size(), receiver.head.section(QLatin1Char(' '), 0, 0).toInt());
    }

    // The stamps: 19930817103000+0100, 19930817103000-05, and an empty one.
    void datesInManyZones_data()
    {
        const Dates row;
        row("UTC", "UTC", "plain", 745583400u);
        row("an hour east", "XST-1", "plain", 745583400u);
        row("five hours west", "XST5", "plain", 745583400u);
        row("summer time", "XST-1XDT,M3.5.0,M10.5.0/3", "plain", 745579800u);
        row("west stamp", "UTC", "text-attributes", 745561800u);
        row("empty", "UTC", "empty-attributes", 0xffffffffu);
    }
    void datesInManyZones()
    {
        const auto [zone, name, date] = Dates::row();
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", zone);
        tzset();
        Receiver receiver;
        const auto copy = copyFor(fixture(name));
        const bool imported = copy && import(copy.get(), &receiver);
        qputenv("TZ", before);
        tzset();
        QVERIFY(imported);
        QCOMPARE(receiver.date, date);
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
        TLogger::setDefaultInstance(&logger);
        QVERIFY(import(copy.get(), nullptr));
        TLogger::setDefaultInstance(nullptr);
        QStringList expected;
        for (const char *line : {"nb de scans : 3", "codage de l'abondance : 28 bits", "Passage de seconds en minutes",
                                 "durée de l'expérience : 1", "délai : 1", "interval d'échantillonage : 0.5",
                                 "*** fin du chargement du header AIA MS ***"}) {
            expected += QStringLiteral("200 libraries\\internal\\common\\include\\ttestingmacros 61 ") + line;
            expected += QStringLiteral("flush");
        }
        QCOMPARE(logger.entries, expected);
    }

    void worksInTheMiddleOfAnother()
    {
        const auto one = copyFor(fixture("no-attributes"));
        const auto other = copyFor(fixture("scaled-short"));
        Receiver inner;
        Receiver outer;
        outer.atSecondScan = [&] { QVERIFY(import(other.get(), &inner)); };
        QVERIFY(import(one.get(), &outer));
        QCOMPARE(inner.scans.first(), QStringLiteral("60: 9 4@0 5@1"));
        QCOMPARE(outer.scans.last(), QStringLiteral("2: 48 16@1 32@2"));
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
        const Elsewhere row;
        // 60.25 isn't in that table: no abundance, but it counts in the total.
        row("shorter", "no-attributes", 1, "48: 0@0 32@0");
        row("as long", "no-attributes", 3, "48: 0@0 32@0");
        row("of a file without masses", "flags-on-times", 3, "0:");
    }
    void readsAgainstATableFromElsewhere()
    {
        const auto [name, size, expected] = Elsewhere::row();
        const auto copy = copyFor(fixture(name));
        QStringList seen;
        Receiver receiver;
        receiver.atSecondScan = [&, size = size] {
            std::vector<float> table = {70.5f, 80.0f, 90.0f};
            table.resize(std::size_t(size));
            table.shrink_to_fit();
            float found[2] = {-1, -1};
            unsigned short places[2] = {9, 9};
            double time = 0.0;
            int points = 0;
            seen += number(copy->importScan(2, &time, size, table.data(), &points, found, places)) + ':';
            for (int i = 0; i < points; ++i)
                seen += number(double(found[i])) + '@' + QString::number(places[i]);
        };
        QVERIFY(import(copy.get(), &receiver));
        QCOMPARE(seen.join(QLatin1Char(' ')), expected);
    }
};

QTEST_GUILESS_MAIN(TestImportAiaMs)
#include "tst_importaiams.moc"
