// Written files as another program sees them, which knows nothing of the toolkit.

#include "program.h"
#include "rows.h"

#include <QTemporaryDir>

class TestWrittenFiles : public QObject
{
    Q_OBJECT

private slots:
    void witness_data()
    {
        const Rows<QString> options; // each format of masses and of intensities comes up
        options("gcms") = "--scans 3 --points 5 --mass-format short --intensity-format long";
        options("gcxgc") = "--scans 2 --mass-format double --intensity-format short";
        options("tic") = "--scans 3 --points 2 --time-format double --intensity-format float";
        options("library") = "--scans 2 --mass-format float --intensity-format short";
        options("sim") = "--scans 3 --mass-format long --intensity-format double";
    }
    void witness()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath("x.cdf");
        const QString kind = QTest::currentDataTag();
        const QStringList arguments = QStringList{kind, file} + Rows<QString>::current().split(' ');
        const Run made = runProgram(AIA_TOOLS "/aia-sample", arguments);
        QCOMPARE(made.err, QByteArray());
        QCOMPARE(made.code, 0);

        const QByteArrayList lines = runProgram(NCDUMP, {"-n", kind, file}).out.split('\n');
        const QByteArrayList wanted = content(AIA_TEST_SOURCES "/expected/" + kind + ".cdl").split('\n');
        for (int i = 0; i < qMin(lines.size(), wanted.size()); ++i)
            QCOMPARE(lines[i], wanted[i]);
        QCOMPARE(lines.size(), wanted.size());
    }
};

QTEST_GUILESS_MAIN(TestWrittenFiles)
#include "tst_written_files.moc"
