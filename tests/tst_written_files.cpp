// Written files as another program sees them, which knows nothing of the toolkit.

#include "program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <netcdf.h>

namespace {

const QString sample_tool = QStringLiteral(AIA_TOOLS "/aia-sample");

QByteArray expected(const QString &kind)
{
    QFile file(QStringLiteral(AIA_TEST_SOURCES "/expected/%1.cdl").arg(kind));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The text attributes whose length doesn't count exactly one NUL, which ncdump doesn't show.
QStringList wronglyEnded(int ncid)
{
    QStringList wrong;
    int variables = 0;
    nc_inq_nvars(ncid, &variables);
    for (int holder = NC_GLOBAL; holder < variables; ++holder) {
        int count = 0;
        nc_inq_varnatts(ncid, holder, &count);
        for (int i = 0; i < count; ++i) {
            char name[NC_MAX_NAME + 1] = "";
            nc_type type = NC_NAT;
            std::size_t length = 0;
            nc_inq_attname(ncid, holder, i, name);
            nc_inq_att(ncid, holder, name, &type, &length);
            if (type != NC_CHAR)
                continue;
            QByteArray text(int(length), 'x');
            nc_get_att_text(ncid, holder, name, text.data());
            if (text.indexOf('\0') != text.size() - 1)
                wrong << QString::fromLatin1(name);
        }
    }
    return wrong;
}

} // namespace

class TestWrittenFiles : public QObject
{
    Q_OBJECT

private slots:
    void witness_data();
    void witness();
    void lengthsCountTheNul();
    void sizeLimit_data();
    void sizeLimit();
    void wrongUsage_data();
    void wrongUsage();

private:
    QString path(const QString &name) const { return folder_.filePath(name); }

    QTemporaryDir folder_;
};

// Each axis and format comes up once.
void TestWrittenFiles::witness_data()
{
    QTest::addColumn<QString>("arguments");

    QTest::newRow("gcms") << "--scans 3 --points 5 --mass-format short --intensity-format long";
    QTest::newRow("gcxgc") << "--scans 2 --intensity-format short";
    QTest::newRow("tic") << "--scans 3 --points 2 --time-format double --intensity-format float";
    QTest::newRow("library") << "--scans 2 --mass-format float --intensity-format short";
    QTest::newRow("sim") << "--scans 3 --mass-format long --intensity-format double";
}

void TestWrittenFiles::witness()
{
    QFETCH(QString, arguments);

    const QString kind = QString::fromLatin1(QTest::currentDataTag());
    const QString file = path(kind + QStringLiteral(".cdf"));
    const Run made = runProgram(sample_tool, QStringList{kind} + arguments.split(QLatin1Char(' ')) + QStringList{file});
    QCOMPARE(made.err, QByteArray());
    QCOMPARE(made.code, 0);

    const Run dump = runProgram(QStringLiteral(NCDUMP), {file});
    const QList<QByteArray> lines = dump.out.split('\n');
    const QList<QByteArray> wanted = expected(kind).split('\n');
    for (int i = 0; i < qMin(lines.size(), wanted.size()); ++i)
        QCOMPARE(lines[i], wanted[i]);
    QCOMPARE(lines.size(), wanted.size());
}

void TestWrittenFiles::lengthsCountTheNul()
{
    const QString file = path(QStringLiteral("lengths.cdf"));
    QCOMPARE(runProgram(sample_tool, {"gcms", "--scans", "1", file}).code, 0);
    int ncid = -1;
    QCOMPARE(nc_open(QFile::encodeName(file).constData(), NC_NOWRITE, &ncid), NC_NOERR);
    const QStringList wrong = wronglyEnded(ncid);
    nc_close(ncid);
    QCOMPARE(wrong, QStringList());
}

// The shell's unit is 512 bytes.
void TestWrittenFiles::sizeLimit_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<bool>("fits");

    QTest::newRow("not even the head") << "2" << false;
    QTest::newRow("the numbers of the scans don't fit") << "200" << false;
    QTest::newRow("ends among the points") << "700" << false;
    QTest::newRow("all fits") << "4000" << true;
}

void TestWrittenFiles::sizeLimit()
{
    QFETCH(QString, limit);
    QFETCH(bool, fits);

    const QString file = path(QStringLiteral("limited.cdf"));
    const Run made =
        runProgram(QStringLiteral("sh"), {"-c", "ulimit -f $0; exec \"$@\"", limit, sample_tool, "gcms", file});
    QCOMPARE(made.code, fits ? 0 : 1);
    QCOMPARE(made.err.contains(file.toLocal8Bit()), !fits);
    QCOMPARE(QFile::exists(file), fits);
}

void TestWrittenFiles::wrongUsage_data()
{
    QTest::addColumn<QString>("arguments");

    QTest::newRow("unknown kind") << "lcms FILE";
    QTest::newRow("no file") << "gcms";
    QTest::newRow("no scan") << "gcms --scans 0 FILE";
    QTest::newRow("too many points") << "gcms --scans 200000 --points 501 FILE";
    QTest::newRow("more masses than a group takes") << "sim --points 419 FILE";
    QTest::newRow("unknown format") << "gcms --mass-format byte FILE";
}

void TestWrittenFiles::wrongUsage()
{
    QFETCH(QString, arguments);

    const QString file = path(QStringLiteral("never.cdf"));
    const Run made = runProgram(sample_tool, arguments.replace(QStringLiteral("FILE"), file).split(QLatin1Char(' ')));
    QCOMPARE(made.code, 2);
    QVERIFY(!made.err.isEmpty());
    QVERIFY(!QFile::exists(file));
}

QTEST_GUILESS_MAIN(TestWrittenFiles)
#include "tst_written_files.moc"
