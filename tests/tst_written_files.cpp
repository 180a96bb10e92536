// Written files as another program sees them, which knows nothing of the toolkit.

#include "program.h"
#include "rows.h"

#include <QTemporaryDir>

namespace {

struct Written {
    QString kind;
    QString options; // each format of masses and of intensities comes up
};

struct SizeLimit {
    QString blocks; // of 512 bytes, the shell's unit
    bool fits;
};

struct WrongUsage {
    QString arguments;
};

} // namespace

class TestWrittenFiles : public QObject
{
    Q_OBJECT

    const QString sampleTool = QStringLiteral(AIA_TOOLS "/aia-sample");
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("x.cdf"));

private slots:
    void init() { QFile::remove(file); }

    void witness_data()
    {
        const Rows<Written> row;
        row("spectra") = {"gcms", "--scans 3 --points 5 --mass-format short --intensity-format long"};
        row("modulations") = {"gcxgc", "--scans 2 --mass-format double --intensity-format short"};
        row("total ion") = {"tic", "--scans 3 --points 2 --time-format double --intensity-format float"};
        row("library") = {"library", "--scans 2 --mass-format float --intensity-format short"};
        row("selected ions") = {"sim", "--scans 3 --mass-format long --intensity-format double"};
    }
    void witness()
    {
        const Written &row = Rows<Written>::current();
        const Run made =
            runProgram(sampleTool, QStringList{row.kind} + row.options.split(QLatin1Char(' ')) + QStringList{file});
        QCOMPARE(made.err, QByteArray());
        QCOMPARE(made.code, 0);

        const QByteArrayList lines = runProgram(QStringLiteral(NCDUMP), {"-n", row.kind, file}).out.split('\n');
        const QByteArrayList wanted =
            content(QStringLiteral(AIA_TEST_SOURCES "/expected/%1.cdl").arg(row.kind)).split('\n');
        for (int i = 0; i < qMin(lines.size(), wanted.size()); ++i)
            QCOMPARE(lines[i], wanted[i]);
        QCOMPARE(lines.size(), wanted.size());
    }

    void sizeLimit_data()
    {
        const Rows<SizeLimit> row;
        row("not even the head") = {"2", false};
        row("the numbers of the scans don't fit") = {"200", false};
        row("ends among the points") = {"700", false};
        row("all fits") = {"4000", true};
    }
    void sizeLimit()
    {
        const SizeLimit &row = Rows<SizeLimit>::current();
        const Run made = runProgram("sh", {"-c", "ulimit -f $0; exec \"$@\"", row.blocks, sampleTool, "gcms", file});
        QCOMPARE(made.code, row.fits ? 0 : 1);
        QCOMPARE(made.err.contains(file.toLocal8Bit()), !row.fits);
        QCOMPARE(QFile::exists(file), row.fits);
    }

    void wrongUsage_data()
    {
        const Rows<WrongUsage> row;
        row("unknown kind") = {"lcms FILE"};
        row("no file") = {"gcms"};
        row("no scan") = {"gcms --scans 0 FILE"};
        row("too many points") = {"gcms --scans 200000 --points 501 FILE"};
        row("more masses than a group takes") = {"sim --points 419 FILE"};
        row("unknown format") = {"gcms --mass-format byte FILE"};
    }
    void wrongUsage()
    {
        QString arguments = Rows<WrongUsage>::current().arguments;
        const Run made =
            runProgram(sampleTool, arguments.replace(QStringLiteral("FILE"), file).split(QLatin1Char(' ')));
        QCOMPARE(made.code, 2);
        QVERIFY(!made.err.isEmpty());
        QVERIFY(!QFile::exists(file));
    }
};

QTEST_GUILESS_MAIN(TestWrittenFiles)
#include "tst_written_files.moc"
