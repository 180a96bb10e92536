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
    QString blocks;      // of 512 bytes, the shell's unit
    QByteArray sentence; // FILE stands for the file; empty if all fits
};

struct WrongUsage {
    QString arguments; // FILE stands for the file
    QByteArray sentence;
};

} // namespace

class TestWrittenFiles : public QObject
{
    Q_OBJECT

    const QString sampleTool = QStringLiteral(AIA_TOOLS "/aia-sample");
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("x.cdf"));

    QByteArray said(const QByteArray &sentence) const
    {
        const QByteArray line = "aia-sample: " + sentence + '\n';
        return sentence.isEmpty() ? QByteArray() : QByteArray(line).replace("FILE", file.toLocal8Bit());
    }

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
        const QByteArray noRoom = "The file \"FILE\" can't be written: File too large.";
        const Rows<SizeLimit> row;
        row("not even the head") = {"2", noRoom};
        row("the numbers of the scans don't fit") = {"200", noRoom};
        row("ends among the points") = {"700", noRoom};
        row("all fits") = {"4000", ""};
    }
    void sizeLimit()
    {
        const SizeLimit &row = Rows<SizeLimit>::current();
        const Run made = runProgram("sh", {"-c", "ulimit -f $0; exec \"$@\"", row.blocks, sampleTool, "gcms", file});
        QCOMPARE(made.code, row.sentence.isEmpty() ? 0 : 1);
        QCOMPARE(made.err, said(row.sentence));
        QCOMPARE(QFile::exists(file), row.sentence.isEmpty());
    }

    void wrongUsage_data()
    {
        const Rows<WrongUsage> row;
        row("unknown kind") = {"lcms FILE", "There is no kind \"lcms\"."};
        row("no file") = {"gcms", "A kind and a file have to be named."};
        row("no scan") = {"gcms --scans 0 FILE", "The option --scans takes a number from 1 to 100000000."};
        row("too many points") = {"gcms --scans 200000 --points 501 FILE",
                                  "The scans would have more than 100000000 points together."};
        row("more masses than a group takes") = {"sim --points 419 FILE",
                                                 "The option --points takes a number from 1 to 418 for such a run."};
        row("unknown format") = {"gcms --mass-format byte FILE",
                                 "The option --mass-format takes short, long, float or double."};
        row("no seed") = {"gcms --seed x FILE", "The option --seed takes a number from 0 on."};
    }
    void wrongUsage()
    {
        const WrongUsage &row = Rows<WrongUsage>::current();
        const QString arguments = QString(row.arguments).replace("FILE", file);
        const Run made = runProgram(sampleTool, arguments.split(QLatin1Char(' ')));
        QCOMPARE(made.code, 2);
        QCOMPARE(made.err, said(row.sentence) + said("The option --help shows how the program is used."));
        QVERIFY(!QFile::exists(file));
    }
};

QTEST_GUILESS_MAIN(TestWrittenFiles)
#include "tst_written_files.moc"
