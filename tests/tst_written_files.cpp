// Written files as another program sees them, which knows nothing of the toolkit.

#include "program.h"
#include "rows.h"

#include <QCryptographicHash>
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

    // Whole samples, of all compounds: the same for the same seed. One that changes on purpose gets a new sum.
    void staysTheSame_data()
    {
        const Rows<QByteArray> sha1;
        sha1("gcms") = "9d802440097dc7d2746248b183ae07bc86d58038";
        sha1("gcxgc --scans 4000") = "149dfc85ef1ccd9b730f17c067f7e79576fb1bc7";
        sha1("library") = "78f8cead17b6db0bed4fe54a69fe16f40f9b34a1";
        sha1("gcms --scans 20 --points 500") = "46dd61828abebd6cebe4ac8a681555adf597c00f";
    }
    void staysTheSame()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath("x.cdf");
        QCOMPARE(runProgram(AIA_TOOLS "/aia-sample", QString(QTest::currentDataTag()).split(' ') << file).code, 0);
        QCOMPARE(QCryptographicHash::hash(content(file), QCryptographicHash::Sha1).toHex(),
                 Rows<QByteArray>::current());
    }
};

QTEST_GUILESS_MAIN(TestWrittenFiles)
#include "tst_written_files.moc"
