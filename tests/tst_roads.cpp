// Numbers and texts of classic files come from their bytes as they come from the netCDF library.

#include "messageredirection.h"
#include "msfile.h"
#include "program.h"
#include "rows.h"
#include "samplefile.h"
#include "tworoads.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <netcdf.h>

namespace {

struct LargeRead {
    std::size_t size = 0;   // numbers
    std::size_t others = 0; // in the same record
};

} // namespace

class TestRoads : public QObject
{
    Q_OBJECT

    static QByteArray word(qint32 value)
    {
        QByteArray result(4, '\0');
        qToBigEndian(value, result.data());
        return result;
    }

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

    // Numbers of points, all but the one at `wide` small. They are alone, or lie in records with lines of
    // others, all of them too large for 16 bits.
    bool makeNumbers(std::size_t size, std::size_t others, std::size_t wide) const
    {
        int id = -1;
        int dimensions[2] = {};
        int numbers = -1;
        int lines = -1;
        std::vector<int> values(size, 7);
        values[wide] = 70000;
        const std::size_t start = 0;
        const bool isFixed = others == 0;
        const bool isWell = nc_create(QFile::encodeName(path).constData(), NC_CLOBBER, &id) == NC_NOERR
            && nc_def_dim(id, "point_number", isFixed ? size : NC_UNLIMITED, &dimensions[0]) == NC_NOERR
            && nc_def_dim(id, "width", others + 1, &dimensions[1]) == NC_NOERR
            && nc_def_var(id, "lines", NC_INT, isFixed ? 1 : 2, dimensions, &lines) == NC_NOERR
            && nc_def_var(id, "numbers", NC_INT, 1, dimensions, &numbers) == NC_NOERR && nc_enddef(id) == NC_NOERR
            && nc_put_vara_int(id, numbers, &start, &size, values.data()) == NC_NOERR;
        return nc_close(id) == NC_NOERR && isWell;
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

    // A number that the wanted type can't hold counts in whichever part of a large read it lies.
    void largeReads_data()
    {
        const Rows<LargeRead> row;
        row("side by side") = {70000};
        row("in records") = {70000, 1};
        row("in wide records") = {300, 250};
    }
    void largeReads()
    {
        const LargeRead &row = Rows<LargeRead>::current();
        for (const std::size_t wide : {std::size_t(0), row.size / 2, row.size - 1}) {
            QVERIFY(makeNumbers(row.size, row.others, wide));
            QCOMPARE(differenceOfRoads(QFile::encodeName(path), 1 << 17), QByteArray());
        }
    }

    // The last variable of the records may lie anywhere behind the others: what lies between isn't its own.
    void placesOfRecords()
    {
        const QByteArray bytes = makeSample(SampleKind::Gcms, MsDoubleFormat);
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

    // Where the count of records is left open, the library takes the largest there is for all unlimited
    // dimensions but one.
    void severalUnlimitedDimensions()
    {
        QByteArray bytes = makeSample(SampleKind::Gcms, MsDoubleFormat);
        bytes.replace(4, 4, word(-1));
        const int dimension = bytes.indexOf("_2_byte_string"); // the first one
        const int variable = bytes.indexOf("intensity_values");
        QVERIFY(dimension > 0 && variable > dimension);
        bytes.replace(dimension + 16, 4, word(0)); // its length
        bytes.replace(variable + 20, 4, word(0));  // the variable's dimension
        QVERIFY(writeFile(path, bytes));
        QVERIFY(MsFile(path));
        QCOMPARE(differenceOfRoads(QFile::encodeName(path)), QByteArray());
    }
};

QTEST_GUILESS_MAIN(TestRoads)
#include "tst_roads.moc"
