// What can't be right about a run is said, and nothing of a right one.

#include "msdoubts.h"
#include "msfile.h"
#include "openfixture.h"
#include "rows.h"

#include <QTemporaryDir>

#include <functional>
#include <limits>
#include <utility>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Change = std::function<void(int id)>; // of a file that is open for writing

int variable(int id, const char *name)
{
    int found = NC_GLOBAL; // also for a null name
    nc_inq_varid(id, name ? name : "", &found);
    return found;
}

// Puts `value` in `count` elements of a variable from `first` on.
Change put(const char *name, std::size_t first, double value, std::size_t count = 1)
{
    return [=](int id) {
        for (std::size_t i = first; i < first + count; ++i)
            nc_put_var1_double(id, variable(id, name), &i, &value);
    };
}

// Adds `value` to `count` elements of a variable from `first` on.
Change add(const char *name, std::size_t first, double value, std::size_t count = 1)
{
    return [=](int id) {
        for (std::size_t i = first; i < first + count; ++i) {
            double number = 0.0;
            nc_get_var1_double(id, variable(id, name), &i, &number);
            put(name, i, number + value)(id);
        }
    };
}

Change putAttribute(const char *name, const char *attribute, double value)
{
    return [=](int id) {
        nc_redef(id);
        nc_put_att_double(id, variable(id, name), attribute, NC_DOUBLE, 1, &value);
    };
}

Change putAttribute(const char *attribute, const char *text)
{
    return [=](int id) {
        nc_redef(id);
        nc_put_att_text(id, NC_GLOBAL, attribute, qstrlen(text), text);
    };
}

Change rename(const char *name)
{
    return [=](int id) {
        nc_redef(id);
        nc_rename_var(id, variable(id, name), "unknown");
    };
}

using ByteChange = std::function<void(QByteArray *bytes)>;

struct Doubted {
    QString file;      // a fixture, or one of the samples
    Change change{};   // of a copy of it
    QByteArray said{}; // codes and counts
    ByteChange changeBytes{};
    double modulation = 0.0;
};

} // namespace

class TestDoubts : public QObject
{
    Q_OBJECT

    QString path(const QString &name) const
    {
        const QString sample = folder.filePath(name + QStringLiteral(".cdf"));
        return QFile::exists(sample) ? sample : fixture(name);
    }

    // Of the file at `path`, in order.
    static QByteArray doubtsOf(const QString &path, const MsDoubtOptions &options)
    {
        QByteArrayList found;
        const MsFile file(path);
        const MsGlobals globals = file.globals();
        for (const MsDoubt &doubt : ms_list_doubts(file.id(), QStringLiteral("x.cdf"), options))
            found += QByteArray(doubt.code) + ' ' + QByteArray::number(doubt.count);
        return found.join(", ");
    }

    QTemporaryDir folder;

private slots:
    void initTestCase()
    {
        MessageLoggerInterface::setReceiver([](MessageLoggerInterface::Level, const QString &) {});
        const auto make = [this](const char *kind, const QStringList &options) {
            const QString file = folder.filePath(QLatin1String(kind) + QStringLiteral(".cdf"));
            return runProgram(QStringLiteral(AIA_TOOLS "/aia-sample"), options + QStringList{QLatin1String(kind), file})
                .code;
        };
        const QStringList scans = {QStringLiteral("--scans"), QStringLiteral("20"), QStringLiteral("--points"),
                                   QStringLiteral("30")};
        for (const char *kind : {"gcms", "gcxgc", "tic", "library", "sim"})
            QCOMPARE(make(kind, scans), 0);
    }

    void isSaid_data()
    {
        const Rows<Doubted> row;
        const QString gcms = QStringLiteral("gcms");
        const auto changed = [&](const char *name, const QByteArray &said, Change change) {
            row(name) = {gcms, std::move(change), said};
        };
        // 20 scans of 30 points, 600 ms apart
        changed("index of one scan too low", "overlapping-scans 1, unowned-points 1", add("scan_index", 5, -1));
        changed("index of one scan too high", "overlapping-scans 1, unowned-points 1", add("scan_index", 5, 1));
        changed("all indices too high", "scans-beyond-end 1, unowned-points 30", add("scan_index", 0, 1, 20));
        changed("an index far off", "falling-scan-index 1, overlapping-scans 2, unowned-points 30",
                put("scan_index", 5, 400));
        changed("an index below 0", "scans-beyond-end 1, unowned-points 30", put("scan_index", 5, -1));
        changed("indices swapped", "falling-scan-index 1", [](int id) {
            put("scan_index", 5, 180)(id);
            put("scan_index", 6, 150)(id);
        });
        changed("no index", "no-scan-index 20", rename("scan_index"));
        changed("a point too few", "unowned-points 1", put("point_count", 5, 29));
        changed("a point too many", "overlapping-scans 1", put("point_count", 5, 31));
        changed("a point too many at the end", "scans-beyond-end 1, unowned-points 30", put("point_count", 19, 31));
        changed("a missing count", "bad-counts 1, unowned-points 30", put("point_count", 5, -9999));
        changed("a count never written", "unwritten-scans 1, unowned-points 30", put("point_count", 5, NC_FILL_INT));
        changed("a flag that isn't there", "overlapping-scans 1", put("flag_count", 5, 1));
        changed("a missing flag count", "bad-flag-counts 1", put("flag_count", 5, -9999));
        changed("no flag counts at all", "", put("flag_count", 0, -9999, 20));
        changed("a time of 0", "falling-times 1", put("scan_acquisition_time", 5, 0));
        changed("a time that isn't there", "missing-times 1", put("scan_acquisition_time", 5, -9999));
        changed("a time twice", "equal-times 1", add("scan_acquisition_time", 5, -0.6));
        changed("a time that is no number", "bad-times 1", put("scan_acquisition_time", 5, notANumber));
        changed("times never written", "unwritten-scans 10", put("scan_acquisition_time", 10, NC_FILL_DOUBLE, 10));
        changed("times that begin anew", "restarting-times 1", [](int id) {
            for (std::size_t i = 10; i < 20; ++i)
                put("scan_acquisition_time", i, 179.0 + double(i - 10))(id);
        });
        changed("a last time far off", "time-gap 1", put("scan_acquisition_time", 19, 1e6));
        changed("a last time of 0", "falling-times 1", put("scan_acquisition_time", 19, 0));
        changed("no times", "missing-times 20", rename("scan_acquisition_time"));
        changed("mass scale 0", "mass-scale 1", putAttribute("mass_values", "scale_factor", 0.0));
        changed("mass scale below 0", "mass-scale 1", putAttribute("mass_values", "scale_factor", -1.0));
        changed("intensity scale NaN", "intensity-scale 1",
                putAttribute("intensity_values", "scale_factor", notANumber));
        changed("offset NaN", "intensity-offset 1", putAttribute("intensity_values", "add_offset", notANumber));
        changed("another mass format", "mass-format 1", putAttribute("raw_data_mass_format", "Short"));
        changed("another intensity format", "intensity-format 1", putAttribute("raw_data_intensity_format", "Long"));
        changed("an unknown format", "", putAttribute("raw_data_mass_format", "REAL*4"));
        row("a trace without totals") = {QStringLiteral("tic"), rename("total_intensity"), "no-intensities 20"};
        row("a trace with one total missing") = {QStringLiteral("tic"), put("total_intensity", 5, -9999),
                                                 "bad-totals 1"};
        row("GCxGC, evenly spaced") = {QStringLiteral("gcxgc"), {}, "", {}, 4.0};
        row("GCxGC, a pause") = {
            QStringLiteral("gcxgc"), add("scan_acquisition_time", 10, 5, 10), "time-gap 1, uneven-times 18", {}, 4.0};
        row("GCxGC, a last time that is off") = {
            QStringLiteral("gcxgc"), add("scan_acquisition_time", 19, 0.1), "uneven-times 17", {}, 4.0};
        row("the same without a modulation") = {QStringLiteral("gcxgc"), add("scan_acquisition_time", 19, 0.1)};
        row("a library in any order") = {QStringLiteral("library"), put("scan_acquisition_time", 5, 0)};

        const auto bytes = [&](const char *name, const QByteArray &said, ByteChange change) {
            row(name) = {gcms, {}, said, std::move(change)};
        };
        bytes("the last byte lost", "cut-off 1", [](QByteArray *file) { file->chop(1); });
        bytes("bytes behind", "trailing-bytes 5", [](QByteArray *file) { file->append("abcde"); });
        bytes("no records counted", "unfinished 600, scans-beyond-end 20",
              [](QByteArray *file) { file->replace(4, 4, QByteArray(4, '\0')); });
    }
    void isSaid()
    {
        const Doubted &row = Rows<Doubted>::current();
        const QString copy = folder.filePath(QStringLiteral("copy.cdf"));
        QFile::remove(copy);
        QVERIFY(QFile::copy(path(row.file), copy));
        int id = -1;
        if (row.change) {
            QCOMPARE(nc_open(QFile::encodeName(copy).constData(), NC_WRITE, &id), NC_NOERR);
            row.change(id);
            QCOMPARE(nc_close(id), NC_NOERR);
        }
        if (row.changeBytes) {
            QByteArray bytes = content(copy);
            row.changeBytes(&bytes);
            QFile file(copy);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        MsDoubtOptions options;
        options.modulation = row.modulation;
        QCOMPARE(doubtsOf(copy, options), row.said);
    }

    // Samples, and the fixtures that are odd in what doesn't matter here, or not at all.
    void ofARightFileNothing_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *name : {"gcms",
                                 "gcxgc",
                                 "tic",
                                 "library",
                                 "sim",
                                 "byte-values",
                                 "dashes",
                                 "double-masses",
                                 "empty-attributes",
                                 "error-log",
                                 "experiment-type-of-another-family",
                                 "flags-on-masses",
                                 "groups",
                                 "instruments",
                                 "no-attributes",
                                 "one-record-variable",
                                 "one-scan",
                                 "plain",
                                 "scaled-short",
                                 "text-attributes",
                                 "time-units",
                                 "two-masses",
                                 "two-scans",
                                 "unlimited-scans",
                                 "unsigned-values",
                                 "wide-values",
                                 "chromatogram",
                                 "no-scan-number",
                                 "units-numeric"})
            QTest::newRow(name) << path(QLatin1String(name));
        const QDir data(QStringLiteral(AIA_TEST_SOURCES "/../../shared/data"));
        for (const QFileInfo &file : data.entryInfoList({QStringLiteral("*.cdf")}))
            QTest::newRow(qPrintable(file.fileName())) << file.filePath();
    }
    void ofARightFileNothing()
    {
        QFETCH(QString, file);
        QCOMPARE(doubtsOf(file, {}), QByteArray());
    }
};

QTEST_GUILESS_MAIN(TestDoubts)
#include "tst_doubts.moc"
