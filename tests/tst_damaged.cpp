// Damaged and interrupted files: refused or read as far as they go, never a crash.

#include "messageloggerinterface.h"
#include "records.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <vector>

namespace {

constexpr int scanCount = 4;
constexpr int pointCount = 10;
constexpr int instrumentBytes = 10 * 32; // stand last in the fixed layout

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestDamaged : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void readsWhatIsLeft_data();
    void readsWhatIsLeft();
    void noticesACutWhileOpen_data();
    void noticesACutWhileOpen();
    void refusesCutHeaders();
    void survivesWrongWords_data();
    void survivesWrongWords();
    void keepsTraceOfACutRun();

private:
    int open(const QByteArray &bytes);

    QTemporaryDir folder;
    QByteArray unlimited; // a run as the toolkit writes it
    QByteArray fixed;     // the same in the fixed layout
    int headerSize = 0;
    QStringList messages;
};

void TestDamaged::initTestCase()
{
    const QString path = folder.filePath(QStringLiteral("whole.cdf"));
    const int id = ms_open_write(path.toLatin1().constData(), 0, scanCount, 1, 76, 76, 76, 1, 0);
    QVERIFY(id != -1);
    for (int number = 0; number < scanCount; ++number) {
        std::array<float, pointCount> points;
        points.fill(float(number + 1));
        Scan scan(number);
        scan.point_count = pointCount;
        scan.total_intensity = number;
        scan.mass_values = points.data();
        scan.intensity_values = points.data();
        QCOMPARE(ms_write_per_scan(id, &scan, nullptr), 0);
    }
    ms_close(id);
    unlimited = contentOf(path);
    const QString fixedPath = folder.filePath(QStringLiteral("fixed.cdf"));
    QCOMPARE(QProcess::execute(QStringLiteral("nccopy"), {QStringLiteral("-u"), path, fixedPath}), 0);
    fixed = contentOf(fixedPath);

    // The header ends where the data of the first variable begin, in the last word of its entry.
    const int name = unlimited.indexOf("error_log");
    headerSize = int(qFromBigEndian<quint32>(unlimited.constData() + name + 12 + 4 * 7));
    QVERIFY(headerSize > 1000 && headerSize < 4000);

    MessageLoggerInterface::setReceiver([this](MessageLoggerInterface::Level level, const QString &text) {
        messages += QString::number(int(level)) + text;
    });
}

void TestDamaged::cleanupTestCase()
{
    MessageLoggerInterface::setReceiver({});
}

int TestDamaged::open(const QByteArray &bytes)
{
    const QString path = folder.filePath(QStringLiteral("damaged.cdf"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return -2;
    file.close();
    messages.clear();
    return ms_open_read(path.toLatin1().constData());
}

void TestDamaged::readsWhatIsLeft_data()
{
    QTest::addColumn<bool>("isFixed");
    QTest::addColumn<int>("missing"); // bytes at the end
    QTest::addColumn<int>("whole");   // scans that are left
    QTest::newRow("whole") << false << 0 << 4;
    QTest::newRow("last byte") << false << 1 << 3;
    QTest::newRow("last scan") << false << pointCount * 8 << 3;
    QTest::newRow("into the third") << false << pointCount * 8 + 1 << 2;
    QTest::newRow("all points") << false << scanCount * pointCount * 8 << 0;
    QTest::newRow("fixed, whole") << true << 0 << 4;
    QTest::newRow("fixed, behind the points") << true << 1 << 4;
    QTest::newRow("fixed, last point") << true << instrumentBytes + 1 << 3;
    QTest::newRow("fixed, two scans") << true << instrumentBytes + 2 * pointCount * 4 << 2;
    QTest::newRow("fixed, half the masses") << true << instrumentBytes + scanCount * pointCount * 6 << 0;
}

void TestDamaged::readsWhatIsLeft()
{
    QFETCH(bool, isFixed);
    QFETCH(int, missing);
    QFETCH(int, whole);
    const QByteArray &bytes = isFixed ? fixed : unlimited;
    const int id = open(bytes.left(bytes.size() - missing));
    QVERIFY(id >= 0);
    QCOMPARE(messages.size(), missing == 0 ? 0 : 1);
    if (missing > 0) {
        QVERIFY(messages.first().startsWith(QLatin1Char('1')));
        for (const QString &part :
             {QStringLiteral("damaged.cdf"), QString::number(missing), QString::number(bytes.size())})
            QVERIFY2(messages.first().contains(part), qPrintable(messages.first()));
    }
    for (int number = 0; number < scanCount; ++number) {
        ReadScan scan(number);
        QCOMPARE(ms_read_per_scan(id, &scan, nullptr), number < whole ? 0 : -1);
        if (number < whole)
            QCOMPARE(static_cast<float *>(scan.intensity_values)[pointCount - 1], float(number + 1));
    }
    QSet<qint32> census;
    qint32 decimals = 0;
    int masses = missing < 4 ? scanCount : whole + missing % (pointCount * 8);
    if (isFixed)
        masses = missing < instrumentBytes + scanCount * pointCount * 4 ? scanCount : 2;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), masses == 0 ? -1 : 0);
    QVERIFY(!census.contains(0));
    QCOMPARE(census.size(), masses);
    ms_close(id);
}

void TestDamaged::noticesACutWhileOpen_data()
{
    QTest::addColumn<int>("points");
    QTest::newRow("longer than the library's block") << 50000;
    QTest::newRow("read ahead with others") << 7000;
}

// Of a run so long that nobody holds its end already.
void TestDamaged::noticesACutWhileOpen()
{
    QFETCH(int, points);
    const QString path = folder.filePath(QStringLiteral("long.cdf"));
    const int writing = ms_open_write(path.toLatin1().constData(), 0, scanCount, 0, 76, 76, 76, 1, 0);
    std::vector<float> numbers(std::size_t(points), 1.0f);
    for (int number = 0; number < scanCount; ++number) {
        Scan scan(number);
        scan.point_count = points;
        scan.mass_values = scan.intensity_values = numbers.data();
        QCOMPARE(ms_write_per_scan(writing, &scan, nullptr), 0);
    }
    ms_close(writing);

    const int id = ms_open_read(path.toLatin1().constData());
    QVERIFY(QFile::resize(path, QFileInfo(path).size() - 1000));
    for (int number = 0; number < scanCount; ++number) {
        ReadScan scan(number);
        QCOMPARE(ms_read_per_scan(id, &scan, nullptr), number < scanCount - 1 ? 0 : -1);
    }
    QCOMPARE(ms_missing_bytes(id), quint64(1000));
    ms_close(id);
}

void TestDamaged::refusesCutHeaders()
{
    for (int size = 0; size < headerSize; ++size) {
        const int id = open(unlimited.left(size));
        ms_close(id);
        QVERIFY2(id == -1, qPrintable(QString::number(size)));
        if (size >= 4)
            QVERIFY(messages.size() == 1 && messages.first().startsWith(QLatin1Char('2'))
                    && messages.first().contains(QLatin1String("damaged.cdf")));
    }
}

void TestDamaged::survivesWrongWords_data()
{
    QTest::addColumn<quint32>("word");
    for (const quint32 word : {0xffffffffu, 0x7fffffffu, 0x80000000u, 0x01000000u, 0x00000fffu, 0x0000000bu, 2u, 0u})
        QTest::addRow("%x", word) << word;
}

// Each word of the header in turn: an opened file is read to its end, whatever it says.
void TestDamaged::survivesWrongWords()
{
    QFETCH(quint32, word);
    int refused = 0;
    for (int at = 4; at + 4 <= headerSize; at += 4) {
        QByteArray bytes = unlimited;
        qToBigEndian(word, bytes.data() + at);
        const int id = open(bytes);
        if (id == -1) {
            ++refused;
        } else {
            for (const MsDimension &dimension : ms_file_record(id)->dimensions)
                QVERIFY(dimension.size >= 0);
            QVERIFY(readAll(id, scanCount + 1) >= 0);
            QCOMPARE(ms_close(id), 0);
        }
    }
    QVERIFY(refused > 100 || word == 0 || word == 2 || word == 11);
}

// What lies beyond the end of a trace is missing, not zero.
void TestDamaged::keepsTraceOfACutRun()
{
    int begin = 0;
    for (begin = headerSize; begin + 32 < unlimited.size(); begin += 4) {
        if (qFromBigEndian<double>(unlimited.constData() + begin + 8) == 1.0
            && qFromBigEndian<double>(unlimited.constData() + begin + 16) == 2.0)
            break; // the totals 0, 1, 2, 3
    }
    const int cut = open(unlimited.left(begin + 16));
    QVERIFY(cut >= 0);
    double *totals = nullptr;
    QCOMPARE(ms_read_total_intensity(cut, scanCount, &totals, nullptr), 0);
    QCOMPARE(QVector<double>(totals, totals + scanCount), QVector<double>({0, 1, -9999, -9999}));
    ms_free(totals);
    ReadScan scan(3);
    QCOMPARE(ms_read_scan_header(cut, &scan), 0);
    QCOMPARE(scan.total_intensity, -9999.0);
    ms_close(cut);
}

QTEST_GUILESS_MAIN(TestDamaged)
#include "tst_damaged.moc"
