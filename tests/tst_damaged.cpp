// Damaged and interrupted files: refused or read as far as they go, never a crash.

#include "openfixture.h"
#include "program.h"
#include "records.h"
#include "rows.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <cstddef>
#include <vector>

namespace {

constexpr int scanCount = 4;
constexpr int pointCount = 10;
constexpr int massBytes = 8;
constexpr int pointBytes = massBytes + 4;
constexpr int instrumentBytes = 10 * 32; // stand last in the fixed layout

// The masses of a scan are its number + 1.
bool writeRun(const QString &path, int points)
{
    std::vector<double> masses;
    for (int number = 1; number <= scanCount; ++number)
        masses.insert(masses.end(), std::size_t(points), double(number));
    return writeRun(path, masses, scanCount);
}

struct Cut {
    bool isFixed; // in the fixed layout
    int missing;  // bytes at the end
    int whole;    // scans that are left
    int masses;   // distinct ones that are left
};

struct CutWhileOpen {
    int points; // of a scan
    int missing;
};

} // namespace

class TestDamaged : public QObject, private OpenFixture
{
    Q_OBJECT

    // In place of the open file.
    void openBytes(const QByteArray &bytes)
    {
        const QString damaged = folder.filePath(QStringLiteral("damaged.cdf"));
        QVERIFY(writeFile(damaged, bytes));
        messages.clear();
        openPath(damaged);
    }

    QTemporaryDir folder;
    QByteArray unlimited; // a run as the toolkit writes it
    QByteArray fixed;     // the same in the fixed layout
    int headerSize = 0;

private slots:
    void initTestCase()
    {
        const QString path = folder.filePath(QStringLiteral("whole.cdf"));
        const QString fixedPath = folder.filePath(QStringLiteral("fixed.cdf"));
        QVERIFY(writeRun(path, pointCount));
        QCOMPARE(runProgram(QStringLiteral("nccopy"), {QStringLiteral("-u"), path, fixedPath}).code, 0);
        unlimited = content(path);
        fixed = content(fixedPath);
        // The header ends where the data of the first variable begin, in the last word of its entry.
        const int name = unlimited.indexOf("error_log");
        headerSize = int(qFromBigEndian<quint32>(unlimited.constData() + name + 12 + 4 * 7));
        QVERIFY(headerSize > 1000 && headerSize < 4000);
    }
    void init() { messages.clear(); }

    void readsWhatIsLeft_data()
    {
        const Rows<Cut> row;
        row("whole") = {false, 0, 4, 4};
        row("last byte") = {false, 1, 3, 4};
        row("last scan") = {false, pointCount * pointBytes, 3, 3};
        row("into the third") = {false, pointCount * pointBytes + 1, 2, 3};
        row("all points") = {false, scanCount * pointCount * pointBytes, 0, 0};
        row("fixed, whole") = {true, 0, 4, 4};
        row("fixed, behind the points") = {true, 1, 4, 4};
        row("fixed, last point") = {true, instrumentBytes + 1, 3, 4};
        row("fixed, two scans") = {true, instrumentBytes + 2 * pointCount * 4, 2, 4};
        row("fixed, half the masses") = {true, instrumentBytes + scanCount * pointCount * (pointBytes - massBytes / 2),
                                         0, 2};
    }
    void readsWhatIsLeft()
    {
        const Cut &row = Rows<Cut>::current();
        const QByteArray &bytes = row.isFixed ? fixed : unlimited;
        openBytes(bytes.left(bytes.size() - row.missing));
        QVERIFY(file);
        QCOMPARE(messages.size(), row.missing == 0 ? 0 : 1);
        for (const QString &part : {QStringLiteral("W "), QStringLiteral("damaged.cdf"), QString::number(row.missing),
                                    QString::number(bytes.size())})
            QVERIFY2(row.missing == 0 || messages.first().contains(part), qPrintable(messages.join(QLatin1Char('\n'))));
        for (int number = 0; number < scanCount; ++number) {
            const MsScan scan = file.scan(number);
            QCOMPARE(scan.isRead(), number < row.whole);
            if (number < row.whole)
                QCOMPARE(scan.intensities()[pointCount - 1], double((number + 1) * pointCount - 1));
        }
        const MsCensus census = file.census(2, 1.0);
        QCOMPARE(census.isRead(), row.masses > 0);
        QVERIFY(!census.keys.contains(0));
        QCOMPARE(census.keys.size(), row.masses);
    }

    // The library doesn't look at it.
    void takesAnyTagOfAnEmptyList()
    {
        QByteArray bytes = unlimited;
        const int tag = bytes.indexOf("point_count") + 12 + 8; // of its attributes
        QCOMPARE(bytes.mid(tag, 8), QByteArray(8, '\0'));
        bytes[tag + 3] = 1;
        openBytes(bytes);
        QVERIFY(file);
        QCOMPARE(messages, QStringList());
        QVERIFY(file.scan(scanCount - 1).isRead());
    }

    // Of a run so long that nobody holds its end already.
    void noticesACutWhileOpen_data()
    {
        const Rows<CutWhileOpen> row;
        row("longer than the library's block") = {50000, 1000};
        row("read ahead with others") = {7000, 1000};
        row("in the middle of an element") = {7000, 2};
    }
    void noticesACutWhileOpen()
    {
        const CutWhileOpen &row = Rows<CutWhileOpen>::current();
        const QString path = folder.filePath(QStringLiteral("long.cdf"));
        QVERIFY(writeRun(path, row.points));
        openPath(path);
        QVERIFY(QFile::resize(path, QFileInfo(path).size() - row.missing));
        for (const MsScan &scan : file)
            QCOMPARE(scan.isRead(), scan.scan_number < scanCount - 1);
        QCOMPARE(file.missingBytes(), quint64(row.missing));
    }

    // What is gone isn't zeros, the end of a text.
    void noticesACutTextWhileOpen()
    {
        const QString path = folder.filePath(QStringLiteral("text.cdf"));
        constexpr int width = 100000; // several of the library's blocks
        QVERIFY(makeNetcdf(path, QStringLiteral("classic"),
                           "netcdf text { dimensions: width = 100000; variables: char text(width); data: text = \""
                               + QByteArray(width, 'x') + "\"; }"));
        openPath(path);
        QVERIFY(QFile::resize(path, width / 2));
        QVERIFY(!ms_read_string_variable(file.id(), 0, -1, -1, width));
    }

    // All ones: the file's length tells the number. The library takes such a file for one of as many as can be.
    void findsPointsThatNobodyCounted()
    {
        QByteArray bytes = unlimited.left(unlimited.size() - pointCount * pointBytes);
        openBytes(bytes.replace(4, 4, QByteArray(4, '\xff')));
        QCOMPARE(file.record()->dimensions[MsDim_point_number].size, (scanCount - 1) * pointCount);
        for (const MsScan &scan : file)
            QCOMPARE(scan.isRead(), scan.scan_number < scanCount - 1);
        QCOMPARE(file.census(2, 1.0).keys, (QSet<qint32>{100, 200, 300}));
    }

    void findsScansThatNobodyCounted()
    {
        const std::pair<const char *, int> counts[] = {{"record-trace", 4}, {"record-trace-5", 8}}; // bytes
        for (const auto &[name, count] : counts) {
            openBytes(content(fixture(name)).replace(4, count, QByteArray(count, '\xff')));
            const MsTrace trace = file.trace();
            QCOMPARE(numbersOf(trace.totalIntensities()), (QVector<double>{60, 90, 120}));
            QCOMPARE(numbersOf(trace.times()), (QVector<double>{60, 90, 120}));
            for (const int number : {2, 3, 2000000000}) {
                const MsScanHeader scan = file.scanHeader(number);
                QCOMPARE(scan.isRead(), number == 2);
                QCOMPARE(scan.scan_acquisition_time, number == 2 ? 120.0 : -9999.0);
            }
        }
    }

    void refusesCutHeaders()
    {
        for (int size = 0; size < headerSize; ++size) {
            openBytes(unlimited.left(size));
            QVERIFY2(!file, qPrintable(QString::number(size)));
            const QString said = messages.join('\n');
            QVERIFY(size < 4 || (said.startsWith("E ") && said.contains("damaged.cdf")));
        }
    }

    // Each word of the header in turn: an opened file is read to its end, whatever it says.
    void survivesWrongWords()
    {
        for (const quint32 word : {0xffffffffu, 0x7fffffffu, 0x80000000u, 0x01000000u, 0xfffu, 0xbu, 2u, 0u}) {
            int refused = 0;
            for (int at = 4; at + 4 <= headerSize; at += 4) {
                QByteArray bytes = unlimited;
                qToBigEndian(word, bytes.data() + at);
                openBytes(bytes);
                if (!file) {
                    ++refused;
                    continue;
                }
                for (const MsDimension &dimension : file.record()->dimensions)
                    QVERIFY(dimension.size >= 0);
                QVERIFY2(readAll(file, scanCount + 1) >= 0, qPrintable(QStringLiteral("%1 at %2").arg(word).arg(at)));
            }
            QVERIFY(refused > 100 || word == 0 || word == 2 || word == 11);
        }
    }

    // What lies beyond the end of a trace is missing, not zero.
    void keepsTraceOfACutRun()
    {
        const double totals[] = {qToBigEndian(0.0), qToBigEndian(1.0), qToBigEndian(2.0)};
        const int begin =
            unlimited.indexOf(QByteArray(reinterpret_cast<const char *>(totals), sizeof totals), headerSize);
        openBytes(unlimited.left(begin + 16));
        const MsTrace trace = file.trace();
        QVERIFY(trace.isRead());
        QCOMPARE(numbersOf(trace.totalIntensities()), (QVector<double>{0, 1, -9999, -9999}));
        const MsScanHeader scan = file.scanHeader(3);
        QVERIFY(scan.isRead());
        QCOMPARE(scan.total_intensity, -9999.0);
    }
};

QTEST_GUILESS_MAIN(TestDamaged)
#include "tst_damaged.moc"
