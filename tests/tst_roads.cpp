// Numbers and texts of classic files come from their bytes as they come from the netCDF library.

#include "messageredirection.h"
#include "msfile.h"
#include "program.h"
#include "rows.h"
#include "samplefile.h"
#include "tworoads.h"

#include <QTemporaryDir>
#include <QtEndian>

class TestRoads : public QObject
{
    Q_OBJECT

    // Writes a small run.
    QByteArray makeSample(SampleKind kind, qint32 format) const
    {
        SampleOptions options;
        options.kind = kind;
        options.scans = 20;
        options.points = 9;
        options.massFormat = options.timeFormat = options.intensityFormat = format;
        return writeSample(QFile::encodeName(path), options).isNull() ? content(path) : QByteArray();
    }

    const Silence silence;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file.cdf"));

private slots:
    void fixtures()
    {
        const QFileInfoList files = QDir(QStringLiteral(AIA_FIXTURES)).entryInfoList({"*.cdf"});
        QVERIFY(files.size() > 60);
        for (const QFileInfo &file : files) {
            const QByteArray name = QFile::encodeName(file.filePath());
            QVERIFY2(differenceOfRoads(name).isEmpty(), name + ": " + differenceOfRoads(name));
        }
    }

    void samples()
    {
        for (const SampleKind kind :
             {SampleKind::Gcms, SampleKind::Gcxgc, SampleKind::Tic, SampleKind::Library, SampleKind::Sim}) {
            for (const qint32 format : {MsShortFormat, MsLongFormat, MsFloatFormat, MsDoubleFormat}) {
                QVERIFY(!makeSample(kind, format).isEmpty());
                const QString copied = folder.filePath(QStringLiteral("copied.cdf"));
                for (const char *type : {"classic", "64-bit offset", "cdf5"}) {
                    QCOMPARE(runProgram(QStringLiteral("nccopy"), {"-u", "-k", type, path, copied}).code, 0);
                    QCOMPARE(differenceOfRoads(QFile::encodeName(copied)), QByteArray());
                }
                QCOMPARE(differenceOfRoads(QFile::encodeName(path)), QByteArray());
            }
        }
    }

    // The last variable of the records may lie anywhere behind the others: what lies between isn't its own.
    void placesOfRecords()
    {
        const QByteArray bytes = makeSample(SampleKind::Gcms, MsDoubleFormat);
        const auto word = [](qint32 place) {
            QByteArray result(4, '\0');
            qToBigEndian(place, result.data());
            return result;
        };
        // The entry of the masses ends in their place; behind it is the length of the next name.
        const int name = bytes.indexOf("intensity_values");
        const qint32 place = qFromBigEndian<qint32>(bytes.constData() + name - 8) + 8;
        const int at = bytes.indexOf(word(place), name);
        QVERIFY(at > name && at < place);
        for (const qint32 step : {4, 8, 16, 100, 1000, 4000}) {
            QVERIFY(writeFile(path, QByteArray(bytes).replace(at, 4, word(place + step)) + QByteArray(4096, 'x')));
            QVERIFY(MsFile(path));
            QCOMPARE(differenceOfRoads(QFile::encodeName(path)), QByteArray());
        }
    }
};

QTEST_GUILESS_MAIN(TestRoads)
#include "tst_roads.moc"
