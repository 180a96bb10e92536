// How the programs take the way in which they are called: what they say, and how they end.

#include "damagednewer.h"
#include "messagelist.h"
#include "program.h"
#include "rows.h"

#include <QTemporaryDir>

#include <unistd.h>

namespace {

struct Call {
    QString command; // for a shell, in a folder with the files below
    int code = 0;
    QByteArray said{};  // on standard error, behind the program's name; of a wrong call all but its last line
    QByteArray shown{}; // on standard output; where it is left out, a program that fails shows nothing
};

} // namespace

class TestUsage : public QObject
{
    Q_OBJECT

    const QTemporaryDir folder;

private slots:
    void initTestCase()
    {
        for (const char *name : {"gcgc", "chromatogram", "error-log-rank-1", "info-library", "info-chromatogram"})
            QVERIFY(QFile::copy(fixture(name), folder.filePath(name + QStringLiteral(".cdf"))));
        const QByteArray right = content(fixture("gcgc"));
        const std::pair<const char *, QByteArray> others[] = {
            {"text.cdf", "not netCDF"}, {"empty.cdf", {}}, {"cut.cdf", right.left(100)},
            {"run.txt", right},         {"B.CDF", right},  {"newer.cdf", damagedNewer(crashingDamage)},
        };
        for (const auto &[name, bytes] : others)
            QVERIFY(writeFile(folder.filePath(name), bytes));
        QVERIFY(QDir(folder.path()).mkdir("folder.cdf"));
    }

    void call_data()
    {
        const auto noLength = [](const QByteArray &text) {
            return '"' + text + "\" isn't a modulation length: a number from 0 to 100 is needed, or auto.";
        };
        const auto noScan = [](const QByteArray &text) {
            return '"' + text + "\" isn't the number of a scan: they are counted from 0.";
        };
        const auto cannot = [](const QByteArray &name, const QByteArray &reason) {
            return "The file \"" + name + ".cdf\" can't be imported: " + reason;
        };
        const QByteArray noNetcdf =
            "netCDF can't open it: it isn't a netCDF file, or its header is damaged or cut off.";
        const Rows<Call> row;
        row("import nothing") = {"aia-import", 2, "No file is named."};
        row("no modulation") = {"aia-import --gcxgc 0 gcgc.cdf"};
        row("longest modulation") = {"aia-import --gcxgc 100 gcgc.cdf"};
        row("decimals") = {"aia-import --gcxgc 4.5 gcgc.cdf"};
        row("too long") = {"aia-import --gcxgc 100.01 gcgc.cdf", 2, noLength("100.01")};
        row("negative") = {"aia-import --gcxgc -0.5 gcgc.cdf", 2, noLength("-0.5")};
        row("not a number") = {"aia-import --gcxgc nan gcgc.cdf", 2, noLength("nan")};
        row("with a unit") = {"aia-import --gcxgc 6s gcgc.cdf", 2, noLength("6s")};
        row("answer and question") = {"aia-import --gcxgc 6 --ask gcgc.cdf", 2,
                                      "The options --ask and --gcxgc exclude each other."};
        row("loud and quiet") = {"aia-import --quiet --verbose gcgc.cdf", 2,
                                 "The options --quiet and --verbose exclude each other."};
        row("unknown option") = {"aia-import --no-such-option gcgc.cdf", 2, "Unknown option 'no-such-option'."};
        row("JSON nowhere") = {"aia-import --json '' gcgc.cdf", 2, "The file name after --json is empty."};
        row("capitals") = {"aia-import B.CDF"};
        row("help wins") = {"aia-import --help gcgc.cdf", 0, "", "Usage:"};
        row("version wins") = {"aia-import --version gcgc.cdf", 0, "", "aia-import 1."};
        row("import of text") = {"aia-import text.cdf", 1, cannot("text", noNetcdf)};
        row("import of an empty file") = {"aia-import empty.cdf", 1, "The file \"empty.cdf\" is empty."};
        row("import of a folder") = {"aia-import folder.cdf", 1, "\"folder.cdf\" is a folder, not a file."};
        row("import of what is missing") = {"aia-import x.cdf", 1, "The file \"x.cdf\" doesn't exist."};
        row("import from a file as a folder") = {"aia-import gcgc.cdf/x.cdf", 1,
                                                 "The file \"gcgc.cdf/x.cdf\" can't be reached: Not a directory."};
        row("header cut off") = {"aia-import cut.cdf", 1,
                                 "The file \"cut.cdf\" is damaged: its header can't be right."};
        row("first look") = {"aia-import newer.cdf", 1, "The file \"newer.cdf\" wasn't opened: a first look at it "};
        row("extension") = {
            "aia-import run.txt", 1,
            "The name of the file \"run.txt\" doesn't end in an extension that this import takes: .cdf."};
        row("no scans") = {"aia-import chromatogram.cdf", 1,
                           cannot("chromatogram",
                                  "it has no dimension \"scan_number\", so it isn't a mass "
                                  "spectrometry file of the AIA MS template.")};
        row("attributes") = {"aia-import --quiet error-log-rank-1.cdf", 1,
                             cannot("error-log-rank-1",
                                    "its global attributes can't be read. Size type mismatch "
                                    "while loading \"error_log\".")};

        row("show nothing") = {"aia-info", 2, "No file is named."};
        row("misspelled") = {"aia-info --jsn gcgc.cdf", 2, "Unknown option 'jsn'."};
        row("scan isn't a number") = {"aia-info --scan two gcgc.cdf", 2, noScan("two")};
        row("negative scan") = {"aia-info --scan=-1 gcgc.cdf", 2, noScan("-1")};
        row("version") = {"aia-info --version", 0, "", "aia-info 1."};
        row("first look of aia-info") = {"aia-info newer.cdf", 1,
                                         "The file \"newer.cdf\" wasn't opened: a first look at it "};
        row("help that nobody gets") = {"aia-info --help > /dev/full", 1, "Standard output can't be written: "};
        row("device") = {"aia-info /dev/null", 1, "\"/dev/null\" isn't a regular file."};
        row("not netCDF") = {"aia-info text.cdf", 1,
                             "The file \"text.cdf\" isn't a netCDF file, or its header is damaged or cut off."};
        row("scan beyond") = {"aia-info --scan 22 info-library.cdf", 1, "",
                              "- There is no scan 22: the file has scans 0 to 21.\n"};
        row("no scans to show") = {"aia-info --scan 0 info-chromatogram.cdf", 1, "",
                                   "There is no scan 0: the file has no scans."};
        row("show what has too long a name") = {"aia-info $(printf 'a%.0s' $(seq 300)).cdf 2>&1 | tail -c 39", 0, "",
                                                "can't be reached: File name too long.\n"};
        row("two scans to show") = {"aia-info --scan 0 --scan 1 gcgc.cdf", 2,
                                    "The option --scan takes one value, and more are given."};
        row("count that was never written") = {
            "ncdump info-library.cdf | sed 's/int flag_count/byte flag_count/; s/ flag_count = .*/ flag_count = _ ;/' |"
            "ncgen -o b.cdf; aia-info --scan 0 b.cdf",
            0, "", "  point_count: 3\n  ranges:\n"};
        row("other template") = {"aia-info info-chromatogram.cdf", 0, "", "lacks"};
        row("bad file first") = {"aia-info x.cdf info-library.cdf", 1, "The file \"x.cdf\" doesn't exist.", "Toluene"};

        row("unknown kind") = {"aia-sample lcms x.cdf", 2,
                               "There is no kind \"lcms\": the kinds are gcms, gcxgc, tic, library, sim."};
        row("sample of another kind") = {"aia-sample gcms x.mzML", 2,
                                         "A sample is a .cdf file, and the name \"x.mzML\" is that of another kind. "
                                         "The program aia-convert makes others of it."};
        row("no file") = {"aia-sample gcms", 2, "One kind and one file have to be named."};
        row("no scan") = {"aia-sample gcms --scans 0 x.cdf", 2,
                          "The option --scans takes a number from 1 to 100000000."};
        row("too many points") = {"aia-sample gcms --scans 200000 --points 501 x.cdf", 2,
                                  "The scans would have more than 100000000 points together."};
        row("more masses than a group takes") = {"aia-sample sim --points 419 x.cdf", 2,
                                                 "The option --points takes a number from 1 to 418 for such a run."};
        row("all masses in a group") = {"aia-sample sim --scans 1 --points 418 y.cdf && echo made", 0, "", "made"};
        row("unknown format") = {"aia-sample gcms --mass-format byte x.cdf", 2,
                                 "The option --mass-format takes short, long, float or double."};
        row("no seed") = {"aia-sample gcms --seed x x.cdf", 2, "The option --seed takes a number from 0 on."};
    }
    void call()
    {
        const Call &row = Rows<Call>::current();
        const Run result = runProgram("sh", {"-c", "PATH=" AIA_TOOLS ":$PATH; " + row.command}, folder.path());
        QCOMPARE(result.code, row.code);
        QVERIFY2(result.out.contains(row.shown), result.out);
        QCOMPARE(result.out.isEmpty(), row.code != 0 && row.shown.isEmpty());
        const QByteArray speaker = row.command.section(' ', 0, 0).toLatin1() + ": ";
        QByteArray expected = row.said.isEmpty() ? QByteArray() : speaker + row.said;
        if (row.code == 2)
            expected += '\n' + speaker + "The option --help shows how the program is used.\n";
        QVERIFY2(row.code == 2 ? result.err == expected : result.err.startsWith(expected), result.err);
        if (row.code == 1 && row.shown.isEmpty())
            QCOMPARE(result.err.count(speaker), 1 + result.err.count(speaker + "Warning for the file "));
        QVERIFY(!QFile::exists(folder.filePath("x.cdf")));
    }

    // What a program keeps of them, however many a file gives rise to.
    void messages()
    {
        constexpr auto level = MessageList::Level::Warning;
        MessageList list("run.cdf");
        for (int i = 0; i < 1002; ++i)
            list.add(level, QString::number(i));
        list.drop("0");
        list.add(level, "999");
        QFile said(folder.filePath("said"));
        QVERIFY(said.open(QIODevice::ReadWrite));
        const int before = dup(STDERR_FILENO);
        dup2(said.handle(), STDERR_FILENO);
        list.reportAll(level);
        dup2(before, STDERR_FILENO);
        ::close(before);
        const QByteArrayList lines = content(said.fileName()).split('\n');
        QCOMPARE(lines.size(), 999 + 1 + 1); // and nothing behind the last line end
        QVERIFY2(lines[998].endsWith(": 999 (2 times)."), lines[998]);
        QVERIFY2(lines[999].endsWith(": 2 more messages for the file \"run.cdf\" are left out."), lines[999]);
    }
};

QTEST_GUILESS_MAIN(TestUsage)
#include "tst_usage.moc"
