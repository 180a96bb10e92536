// What stands behind the window of aia-view: texts that people type, folded traces, and images without a
// window.

#include "fileformat.h"
#include "masswindows.h"
#include "modulationmap.h"
#include "program.h"
#include "readingthread.h"
#include "rows.h"
#include "rundata.h"
#include "typedplace.h"
#include "viewexport.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

namespace {

struct Windows {
    QString text;
    QList<QPair<double, double>> windows{};
    QString fault{};
};

struct Typed {
    QString text;
    QString meaning; // "none", or the kind and its numbers
};

struct Drawn {
    QString kind; // of the sample
    QStringList options;
    QString fault{};  // in place of an image
    QString remark{}; // beside it
    int code = 1;     // of a fault
};

struct NamedFile {
    QString name;
    QString chosen; // the kind, in the dialog's words
    QString lacking;
};

struct Folded {
    double length = 0.0;
    double shift = 0.0;
    int columns = 0;
    int rows = 0;
    QList<int> first{}; // scans of the first column
    QString fault{};
};

} // namespace

class TestViewParts : public QObject
{
    Q_OBJECT

    const QTemporaryDir folder;

    QString sample(const QString &name) const { return folder.filePath(name + QStringLiteral(".cdf")); }

private slots:
    void initTestCase()
    {
        for (const char *kind : {"gcms", "gcxgc", "library", "tic"}) {
            const Run made = runProgram(AIA_TOOLS "/aia-sample", {kind, "--seed", "3", sample(kind)});
            QCOMPARE(made.code, 0);
        }
        for (const char *name : {"no-scans", "one-scan"})
            QVERIFY(QFile::copy(fixture(name), sample(name)));
    }

    void massWindows_data()
    {
        const Rows<Windows> row;
        row("nothing") = {""};
        row("several") = {"43, 57-71;100", {{42.5, 43.5}, {57, 71}, {99.5, 100.5}}};
        row("decimals") = {"43.05", {{43.045, 43.055}}};
        row("empty parts") = {" ,43,, ", {{42.5, 43.5}}};
        row("words") = {"43, x", {}, "\"x\" is neither a mass nor a range such as 57-71."};
        row("negative") = {"-43", {}, "\"-43\" is neither a mass nor a range such as 57-71."};
        row("backwards") = {"71-57", {}, "The range \"71-57\" ends before it begins."};
        row("too many") = {QString("1,").repeated(65), {}, "More than 64 traces can't be shown at once."};
    }
    void massWindows()
    {
        const Windows &row = Rows<Windows>::current();
        QString fault;
        const auto windows = ::massWindows(row.text, &fault);
        QCOMPARE(fault, row.fault);
        QCOMPARE(windows.has_value(), row.fault.isEmpty());
        for (int i = 0; windows && i < row.windows.size(); ++i) {
            QCOMPARE(windows->size(), std::size_t(row.windows.size()));
            QCOMPARE((*windows)[std::size_t(i)].masses.from, row.windows[i].first);
            QCOMPARE((*windows)[std::size_t(i)].masses.to, row.windows[i].second);
        }
    }

    void typedPlaces_data()
    {
        const Rows<Typed> row;
        row("scan") = {" 344 ", "scan 344"};
        row("scan by name") = {"Scan 12", "scan 12"};
        row("time") = {"6.44", "time 6.44"};
        row("time with its unit") = {"6 min", "time 6"};
        row("negative time") = {"-1.5", "time -1.5"};
        row("range") = {"6.4-6.5", "average 6.4 6.5"};
        row("range backwards") = {"7 - 6 min", "average 6 7"};
        row("range less background") = {"6.4-6.5, 6-6.2", "average 6.4 6.5 less 6 6.2"};
        row("too large for a scan") = {"12345678901", "time 12345678901"};
        row("half a range") = {"6.4-", "none"};
        row("two points") = {"6.4.5", "none"};
        row("words") = {"here", "none"};
        row("nothing") = {"", "none"};
    }
    void typedPlaces()
    {
        const Typed &row = Rows<Typed>::current();
        const std::optional<TypedPlace> place = typedPlace(row.text);
        QString meaning = "none";
        const auto number = [](double value) { return QString::number(value, 'g', 12); };
        if (place && place->kind == TypedPlace::Kind::Scan)
            meaning = QString("scan %1").arg(place->scan);
        else if (place && place->kind == TypedPlace::Kind::Time)
            meaning = "time " + number(place->time);
        else if (place)
            meaning = QString("average %1 %2").arg(number(place->average.from), number(place->average.to));
        if (place && place->background)
            meaning += QString(" less %1 %2").arg(number(place->background->from), number(place->background->to));
        QCOMPARE(meaning, row.meaning);
    }

    void lackingEnds_data()
    {
        const Rows<NamedFile> row;
        row("none") = {"run", "Table (*.csv)", ".csv"};
        row("of another kind") = {"run.MSP", "Table (*.csv)", ""};
        row("unknown") = {"run.1", "Images (*.png *.pdf)", ".png"};
        row("of two parts") = {"run.mzML.gz", "Table (*.csv)", ""};
        row("the last of two parts") = {"run.gz", "mzML (*.mzML)", ".mzML"};
    }
    void lackingEnds()
    {
        const NamedFile &row = Rows<NamedFile>::current();
        const QString kinds = writtenKinds().join(";;") + ";;Images (*.png *.pdf)";
        QVERIFY2(row.chosen.startsWith("Images") || writtenKinds().contains(row.chosen), qPrintable(kinds));
        QCOMPARE(lackingEnd(row.name, kinds, row.chosen), row.lacking);
    }

    void foldsTraces_data()
    {
        const QString noTimes = "The run has no times that a map could be made of.";
        const Rows<Folded> row;
        row("whole modulations") = {4, 0, 3, 4, {0, 1, 2, 3}};
        row("shifted") = {4, 1, 4, 4, {-1, 0, 1, 2}};
        row("shifted back") = {4, -1, 4, 4, {-1, -1, -1, 0}};
        row("shifted by a modulation") = {4, 4, 3, 4, {0, 1, 2, 3}};
        row("last one in part") = {5, 0, 3, 5, {0, 1, 2, 3, 4}};
        row("no length") = {0, 0, 0, 0, {}, noTimes};
        row("too short") = {1, 0, 0, 0, {}, "A modulation of 1 s is too short for scans that are 0.98 s apart."};
    }
    void foldsTraces()
    {
        const Folded &row = Rows<Folded>::current();
        std::vector<double> times;
        for (int scan = 0; scan < 12; ++scan)
            times.push_back(100.0 + scan + (scan % 2 == 0 ? 0.01 : -0.01)); // rounded
        QString fault;
        const ModulationMap map = foldTrace(times, times, row.length, row.shift, &fault);
        QCOMPARE(fault, row.fault);
        QCOMPARE(map.columns, row.columns);
        QCOMPARE(map.rows, row.rows);
        for (int i = 0; i < row.first.size(); ++i)
            QCOMPARE(map.scan(0, i), row.first[i]);
        times.push_back(1e12);
        foldTrace(times, times, 4.0, 0.0, &fault);
        if (row.fault.isEmpty())
            QCOMPARE(fault, QString("The times of the run have gaps that are too long for a map."));
    }

    void keepsTheHigherOfTwoScans()
    {
        QString fault;
        const ModulationMap map =
            foldTrace({-9, -8, -7, -6, -5, -4, -3.8, -3, -2}, {1, 1, 1, 1, 1, 9, 1, 1, 1}, 4.0, 0.0, &fault);
        QCOMPARE(fault, QString());
        QCOMPARE(map.values, (std::vector<double>{1, 1, 1, 1, 1, 9, 1, 1}));
    }

    // A peak and its background may lie a quarter of a mass apart, on either side.
    void subtractsNearMasses()
    {
        const QString path = folder.filePath(QStringLiteral("near.cdf"));
        QVERIFY(makeNetcdf(path, QStringLiteral("classic"),
                           "netcdf near { dimensions: scan_number = 2; point_number = 6;"
                           "variables: int scan_index(scan_number), point_count(scan_number);"
                           "double scan_acquisition_time(scan_number);"
                           "double mass_values(point_number), intensity_values(point_number);"
                           "data: scan_index = 0, 3; point_count = 3, 3; scan_acquisition_time = 1, 2;"
                           "mass_values = 100, 200, 300, 99.8, 200.2, 300.3;"
                           "intensity_values = 9, 9, 9, 1, 2, 3; }"));
        const MsRun run(path);
        const SpectrumData left = averageOf(run, {1, 1}, MsInterval{2, 2}, RunSummary(), {});
        QCOMPARE(left.intensities, (std::vector<double>{8, 7, 9}));
    }

    // A library's own data of the thread, freed behind the library's end, would be lost.
    void waitsForAllOfItsThread()
    {
        static std::atomic<bool> isFreed{false};
        struct OfTheThread {
            bool isUsed = false;
            ~OfTheThread()
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                isFreed = true;
            }
        };
        {
            ReadingThread thread;
            thread.postLong([] {
                static thread_local OfTheThread data;
                data.isUsed = true;
            });
        }
        QVERIFY(isFreed);
    }

    void drawsImages_data()
    {
        const Rows<Drawn> row;
        row("trace") = {"gcms", {"--trace"}};
        row("scan") = {"gcms", {"--scan", "344"}};
        row("time") = {"gcms", {"--at", "6.44"}};
        row("time beyond") = {"gcms", {"--at", "99"}, {}, "no scan at 99.000 min; scan 1999, at 22.990 min, is taken"};
        row("map") = {"gcxgc", {"--map"}};
        row("compound") = {"library", {"--scan", "2"}};
        row("no map") = {"gcms", {"--map"}, "doesn't show the length of the modulation"};
        row("no spectra") = {"tic", {"--scan", "2"}, "The run has no masses"};
        row("no such scan") = {"gcms", {"--scan", "2000"}, "There is no scan 2000"};
        row("one scan") = {"one-scan", {"--trace"}};
        row("no scans") = {"no-scans", {"--trace"}, "It has no scans, so there is nothing to draw."};
        row("no modulation") = {"gcxgc", {"--map", "--gcxgc", "0.0004"}, "\"0.0004\" isn't a modulation length", {}, 2};
        row("two kinds") = {"gcms", {"--scan", "2", "--at", "6"}, "Only one of --trace, --map, --scan and --at", {}, 2};
        row("no trace") = {"library", {"--trace"}, "A library has no trace"};
        row("no time of a library") = {"library", {"--at", "4"}, "A library has no trace"};
        row("no map of a library") = {"library", {"--map"}, "A library has no trace"};
    }
    void drawsImages()
    {
        const Drawn &row = Rows<Drawn>::current();
        for (const auto &[ending, beginning] :
             {std::pair("png", "\x89PNG"), std::pair("pdf", "%PDF"), std::pair("svg", "<?xml")}) {
            const QString image = folder.filePath(QStringLiteral("image.") + ending);
            QFile::remove(image);
            const QStringList arguments =
                QStringList{"--size", "400x300", "--image", image} + row.options + QStringList(sample(row.kind));
            const Run drawn = runProgram(AIA_TOOLS "/aia-view", arguments);
            QVERIFY2(drawn.err.contains((row.fault + row.remark).toUtf8()), drawn.err);
            QVERIFY2(drawn.err.isEmpty() == (row.fault.isEmpty() && row.remark.isEmpty()), drawn.err);
            QCOMPARE(drawn.code, row.fault.isEmpty() ? 0 : row.code);
            QCOMPARE(QFile::exists(image), row.fault.isEmpty());
            if (!row.fault.isEmpty())
                continue;
            QVERIFY(content(image).startsWith(beginning));
            if (ending == QLatin1String("png"))
                QCOMPARE(QImage(image).size(), QSize(400, 300));
            const QByteArray before = content(image);
            QCOMPARE(runProgram(AIA_TOOLS "/aia-view", arguments).code, 2); // without --force
            QCOMPARE(content(image), before);
        }
    }

    void tellsOptionsOfImages()
    {
        const Run run = runProgram(AIA_TOOLS "/aia-view", {"--gcxgc", "4", "--map", sample("gcxgc")});
        QCOMPARE(run.code, 2);
        QVERIFY2(run.err.contains("--map goes with --image only."), run.err);
    }

    void needsADisplayForItsWindow()
    {
        const Run run = runProgram("env",
                                   {"-u", "QT_QPA_PLATFORM", "-u", "WAYLAND_DISPLAY", "DISPLAY=:99999",
                                    AIA_TOOLS "/aia-view", sample("gcms")});
        QCOMPARE(run.code, 1);
        QVERIFY2(run.err.startsWith("aia-view: The window needs a display"), run.err);
    }

    void drawsWhatIsLeft()
    {
        const QString image = folder.filePath(QStringLiteral("left.png"));
        const QString cut = sample(QStringLiteral("cut"));
        QVERIFY(writeFile(cut, content(sample(QStringLiteral("gcms"))).left(300000)));
        const Run drawn = runProgram(AIA_TOOLS "/aia-view", {"--image", image, cut});
        QVERIFY2(drawn.err.contains(" is cut off: ") && drawn.err.contains("The image lacks what is lost"), drawn.err);
        QCOMPARE(drawn.code, 1);
        QVERIFY(QFile::exists(image));
    }
};

QTEST_GUILESS_MAIN(TestViewParts)
#include "tst_view_parts.moc"
