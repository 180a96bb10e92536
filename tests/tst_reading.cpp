// What the toolkit makes of files of each kind.

#include "messageloggerinterface.h"
#include "records.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

QString shown(const char *text)
{
    return text ? QLatin1Char('"') + QString::fromLatin1(text) + QLatin1Char('"') : QStringLiteral("-");
}

template <class Number> QString shownAll(const void *vector, int count)
{
    QStringList numbers;
    for (int i = 0; vector && i < count; ++i)
        numbers += QString::number(static_cast<const Number *>(vector)[i]);
    return vector ? numbers.join(QLatin1Char(',')) : QStringLiteral("-");
}

QString shownAll(int format, const void *vector, int count)
{
    switch (format) {
    case MsShortFormat:
        return shownAll<qint16>(vector, count);
    case MsLongFormat:
        return shownAll<qint32>(vector, count);
    case MsFloatFormat:
        return shownAll<float>(vector, count);
    default:
        return shownAll<double>(vector, count);
    }
}

} // namespace

class TestReading : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void readsGlobalRecords_data();
    void readsGlobalRecords();
    void warnsOfMandatoryAttributes();
    void opensFixturesInSilence();
    void findsDashedNamesAndOthersAfterwards();
    void knowsWhatAFileHas_data();
    void knowsWhatAFileHas();
    void knowsNoSizeBeyond32Bits();
    void readsScans_data();
    void readsScans();
    void readsNumbersOfOtherTypes();
    void takesTheCensus_data();
    void takesTheCensus();
    void losesDecimals_data();
    void losesDecimals();
    void readsScansInAnyOrder();
    void readsTraces_data();
    void readsTraces();
    void readsTexts();
    void readsGroups_data();
    void readsGroups();
    void readsInstruments();
    void forgetsAFileClosedBehindItsBack();
    void refusesGiganticGroups();
    void readsLibraryEntries();

private:
    void open(const QString &fixture);
    void open(const char *fixture) { open(QString::fromLatin1(fixture)); }

    void openRun(const std::vector<double> &masses, int scanCount);

    QTemporaryDir folder;
    int id = -1;
    QStringList messages; // level and text
};

void TestReading::init()
{
    messages.clear();
    MessageLoggerInterface::setReceiver([this](MessageLoggerInterface::Level level, const QString &text) {
        messages += (level == MessageLoggerInterface::Level::Error ? QStringLiteral("E ") : QStringLiteral("W "))
            + QString(text).remove(QStringLiteral("<b>")).remove(QStringLiteral("</b>"));
    });
}

void TestReading::cleanup()
{
    MessageLoggerInterface::setReceiver({});
    ms_close(id);
    id = -1;
}

void TestReading::open(const QString &fixture)
{
    ms_close(id);
    id = ms_open_read((QStringLiteral(AIA_FIXTURES "/") + fixture + QStringLiteral(".cdf")).toLatin1().constData());
    QVERIFY2(id != -1, qPrintable(fixture));
}

// Opens a run of these masses in scans of equal length, with ascending intensities.
void TestReading::openRun(const std::vector<double> &masses, int scanCount)
{
    const QByteArray path = folder.filePath(QStringLiteral("run.cdf")).toLatin1();
    id = ms_open_write(path.constData(), 0, scanCount, 0, 77, 77, 75, 1, 0);
    std::vector<qint32> intensities(masses.size());
    std::iota(intensities.begin(), intensities.end(), 0);
    const int points = int(masses.size()) / scanCount;
    for (int number = 0; number < scanCount; ++number) {
        Scan scan(number);
        scan.point_count = points;
        scan.mass_values = const_cast<double *>(masses.data()) + number * points;
        scan.intensity_values = intensities.data() + number * points;
        QCOMPARE(ms_write_per_scan(id, &scan, nullptr), 0);
    }
    ms_close(id);
    id = ms_open_read(path.constData());
}

// Each value in its own way.
struct NamedGlobals : ReadGlobals {
    using ReadGlobals::ReadGlobals;
    QString value(const QString &name) const
    {
        const QHash<QString, QString> values = {
            {"status", QString::number(status)},
            {"title", shown(admin.experiment_title)},
            {"device", shown(admin.source_file_format)},
            {"operator", shown(admin.operator_name)},
            {"origin", shown(admin.dataset_origin)},
            {"owner", shown(admin.dataset_owner)},
            {"date", shown(admin.experiment_date_time_stamp)},
            {"log", shown(admin.error_log)},
            {"processed", QString::number(admin.number_of_times_processed)},
            {"calibrated", QString::number(admin.number_of_times_calibrated)},
            {"instruments", QString::number(admin.instrument_count)},
            {"type", QString::number(admin.experiment_type)},
            {"massScale", QString::number(raw.mass_scale_factor)},
            {"intensityScale", QString::number(raw.intensity_scale_factor)},
            {"offset", QString::number(raw.intensity_add_offset)},
            {"massUnits", QString::number(raw.mass_units)},
            {"timeUnits", QString::number(raw.time_units)},
            {"intensityUnits", QString::number(raw.intensity_units)},
            {"massFormat", QString::number(raw.raw_data_mass_format)},
            {"uniform", QString::number(double(raw.raw_data_uniform_sampling_flag))},
            {"massMin", QString::number(raw.global_mass_min)},
            {"scans", QString::number(raw.scan_count)},
            {"axes", QString::number(raw.has_mass_values) + QString::number(raw.has_time_values)},
        };
        return values.value(name, QStringLiteral("no such name"));
    }
};

void TestReading::readsGlobalRecords_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<QString>("values"); // name=value, parted by blanks; ~ for a blank in a value
    const auto row = [](const char *fixture, const char *values) { QTest::newRow(fixture) << fixture << values; };
    row("no-attributes",
        "status=0 title=- date=- log=- processed=-9999 instruments=-1 type=0 massScale=-9999 "
        "timeUnits=81 massFormat=74 uniform=-9999 scans=3 axes=10");
    row("dashes",
        "status=0 title=\"dashed\" device=\"instrument\" processed=3 massScale=0.5 offset=2 "
        "log=\"dashed\"");
    row("wrong-attribute-types",
        "status=0 title=\"12\" device=\"0.10000000149011612\" operator=\"-7\" owner=\"0.1\" processed=3 "
        "calibrated=3 massScale=0.5 intensityScale=0.5 offset=-9999 uniform=1 massMin=100 "
        "date=\"1993\"");
    row("several-numbers", "status=0 massScale=0.5 offset=2 processed=3 title=\"12\"");
    row("text-attributes",
        "status=0 title=\"Caf\xc3\xa9~??????\" device=\"one\" operator=\"trailing~~\" "
        "origin=\"bad~?~byte\"");
    row("empty-attributes", "status=0 title=\"\" device=\"\" date=\"\" type=-1 timeUnits=-1 axes=11");
    row("time-units", "status=0 timeUnits=82 axes=10");
    row("units-of-another-family", "status=0 timeUnits=70 axes=11");
    row("units-numeric", "status=0 massUnits=78 timeUnits=81 intensityUnits=88 massFormat=74 type=0");
    row("error-log", "status=0 log=\"second~line\"");
    row("error-log-rank-1", "status=-1 scans=0");
    row("error-log-numeric", "status=0 log=-");
    row("int64-attribute", "status=-1");
    row("instruments", "status=0 instruments=2");
    row("no-scan-number", "status=0 scans=6");
    row("no-scans", "status=0 scans=0");
    row("chromatogram", "status=0");
}

void TestReading::readsGlobalRecords()
{
    QFETCH(QString, fixture);
    QFETCH(QString, values);
    open(fixture);
    const NamedGlobals globals(id);
    for (const QString &value : values.split(QLatin1Char(' '))) {
        const QString name = value.section(QLatin1Char('='), 0, 0);
        QString expected = value.section(QLatin1Char('='), 1);
        QCOMPARE(name + globals.value(name), name + expected.replace(QLatin1Char('~'), QLatin1Char(' ')));
    }
}

void TestReading::warnsOfMandatoryAttributes()
{
    open("no-attributes");
    QCOMPARE(ReadGlobals(id).status, 0);
    const QString missing = QStringLiteral("W Mandatory attribute %1 is missing from file");
    QCOMPARE(messages,
             QStringList({missing.arg("dataset-completeness"), missing.arg("ms-template-revision"),
                          missing.arg("netcdf-revision"), missing.arg("netcdf-file-date-time-stamp"),
                          missing.arg("experiment-date-time-stamp")}));
    messages.clear();
    open("error-log-rank-1");
    QCOMPARE(ReadGlobals(id).status, -1);
    QCOMPARE(messages.last(), QStringLiteral("E Size type mismatch while loading error_log"));
    open("wrong-attribute-types");
    messages.clear();
    QCOMPARE(ReadGlobals(id).status, 0);
    QCOMPARE(messages.filter(QStringLiteral("W Data type mismatch for attribute ")).size(), 12);
    QCOMPARE(messages.at(3), QStringLiteral("W Data type mismatch for attribute dataset_owner"));
}

// Whole files aren't called damaged or cut off.
void TestReading::opensFixturesInSilence()
{
    const QStringList files = QDir(QStringLiteral(AIA_FIXTURES)).entryList({QStringLiteral("*.cdf")});
    QVERIFY(files.size() > 60);
    for (const QString &file : files)
        open(file.section(QLatin1Char('.'), 0, 0));
    QCOMPARE(messages, QStringList());
}

void TestReading::findsDashedNamesAndOthersAfterwards()
{
    open("dashes");
    QVERIFY(ms_file_record(id)->dimensions[MsDim_point_number].id != -1);
    QVERIFY(ms_file_record(id)->variables[MsVar_scan_acquisition_time] != -1);
    open("no-attributes");
    QVERIFY(ms_file_record(id)->variables[MsVar_scan_acquisition_time] != -1);
    open("scan-number-dashed-only");
    QVERIFY(ms_file_record(id)->dimensions[MsDim_scan_number].id != -1);
}

void TestReading::knowsWhatAFileHas_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<QVector<int>>("codes"); // experiment type; formats of mass, time, intensity; axes; sizes of
                                             // _32_, _128_byte_string, error_number, scan_number, instrument_number
    const auto row = [](const char *fixture, const QVector<int> &codes) { QTest::newRow(fixture) << fixture << codes; };
    row("gcms_float", {0, 76, 76, 76, 1, 1, 32, 128, 1, 5, 1});
    row("no-attributes", {0, 76, 74, 76, 1, 0, 32, 128, 1, 3, 0});
    row("instruments", {0, 76, 74, 76, 1, 0, 40, 128, 1, 3, 2});
    row("library", {2, 76, 74, 76, 1, 0, 8, 128, 1, 3, 0});
    row("experiment-type-of-another-family", {81, 76, 74, 76, 1, 0, 32, 128, 1, 3, 0});
    row("scaled-short", {0, 74, 74, 75, 1, 1, 32, 128, 1, 3, 0});
    row("double-masses", {0, 77, 74, 77, 1, 0, 32, 128, 1, 3, 0});
    row("contradicting-formats", {0, 74, 74, 74, 1, 0, 32, 128, 1, 3, 0});
    row("byte-values", {0, 74, 74, 75, 1, 0, 32, 128, 1, 3, 0});
    row("wide-values", {0, 74, 74, 75, 1, 0, 32, 128, 1, 3, 0});
    row("no-intensities", {0, 76, 74, 75, 1, 0, 32, 128, 1, 3, 0});
}

void TestReading::knowsWhatAFileHas()
{
    QFETCH(QString, fixture);
    open(fixture);
    const MsFileRecord &file = *ms_file_record(id);
    const auto size = [&](int slot) { return file.dimensions[slot].size; };
    QTEST((QVector<int>{file.experiment_type, file.mass_format, file.time_format, file.intensity_format,
                        file.has_mass_values, file.has_time_values, size(MsDim_32_byte_string),
                        size(MsDim_128_byte_string), size(MsDim_error_number), size(MsDim_scan_number),
                        size(MsDim_instrument_number)}),
          "codes");
}

// ncgen makes no such file.
void TestReading::knowsNoSizeBeyond32Bits()
{
    const QByteArray path = folder.filePath(QStringLiteral("wide.cdf")).toLatin1();
    int writing = -1;
    int dimension = -1;
    QCOMPARE(nc_create(path.constData(), NC_64BIT_DATA, &writing), NC_NOERR);
    nc_def_dim(writing, "scan_number", 3, &dimension);
    nc_def_dim(writing, "instrument_number", 2147483648, &dimension);
    QCOMPARE(nc_close(writing), NC_NOERR);
    id = ms_open_read(path.constData());
    QCOMPARE(ms_file_record(id)->dimensions[MsDim_scan_number].size, 3);
    QCOMPARE(ms_file_record(id)->dimensions[MsDim_instrument_number].size, 2147483647);
}

void TestReading::readsScans_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("content"); // points, flags, time; masses; times; intensities; peaks; values
    const auto row = [](const char *fixture, int number, int status, const char *content) {
        QTest::addRow("%s %d", fixture, number) << fixture << number << status << content;
    };
    row("no-attributes", 1, 0, "2 0 90;50,70.5;-;4,8;-;-");
    row("no-attributes", 3, -1, "0 0 -9999;-;-;-;-;-");
    row("no-attributes", -1, -1, "0 0 -9999;-;-;-;-;-");
    row("overlapping-scans", 0, 0, "3 0 60;50,70.5,60.25;-;4,8,16;-;-");
    row("overlapping-scans", 1, 0, "4 0 90;50,60.25,50,70.5;-;1,2,4,8;-;-");
    row("odd-scan-index", 1, 0, "0 0 90;-;-;-;-;-");
    row("odd-scan-index", 2, -1, "2 0 120;-;-;-;-;-");
    row("odd-scan-index", 3, -1, "2 0 150;-;-;-;-;-");
    row("odd-scan-index", 4, 0, "-3 0 180;-;-;-;-;-");
    row("odd-scan-index", 5, -1, "2147483647 0 210;-;-;-;-;-");
    row("flags-on-masses", 0, 0, "2 2 60;50,60.25;1,2;1,2;12,-12;4464,-1");
    row("flags-on-masses", 1, 0, "2 1 90;50,70.5;1,2;4,8;99;5");
    row("flags-on-masses", 2, 0, "2 1 120;60.25,70.5;1,2;16,32;-2147483648;6");
    row("flags-on-times", 0, 0, "2 1 60;-;1.5,2;1,2;7;-25536");
    row("flags-on-times", 1, 0, "2 1 90;-;1.5,2;4,8;-7;-1");
    row("flags-on-times", 2, 0, "2 1 120;-;1.5,2;16,32;-2147483648;0");
    row("flags-without-axis", 0, -1, "1 1 60;-;-;1;-;-");
    row("flags-without-axis", 1, 0, "2 0 90;-;-;4,8;-;-");
    row("float-times", 0, 0, "2 0 60.1;50,60.25;-;1,2;-;-");
    row("no-scan-index", 0, -1, "0 0 60;-;-;-;-;-");
    row("scan-index-rank-2", 0, -1, "0 0 60;-;-;-;-;-");
    row("mass-values-rank-2", 0, -1, "2 0 60;-;-;-;-;-");
    row("no-intensities", 0, -1, "2 0 60;50,60.25;-;-;-;-");
    row("byte-values", 1, -1, "2 0 90;50,-70;-;-;-;-");
    row("char-masses", 0, -1, "2 0 60;-;-;-;-;-");
    row("wide-values", 0, 0, "2 0 60;50,60;-;1,2;-;-");
    row("wide-values", 1, -1, "2 0 90;50,70;-;-;-;-");
    row("unsigned-values", 1, 0, "2 0 90;50,70;-;4,2147483647;-;-");
    row("unsigned-values", 2, -1, "2 0 120;60,70;-;-;-;-");
    row("string-masses", 0, -1, "2 0 60;-;-;-;-;-");
    row("contradicting-formats", 1, 0, "2 0 90;50,70;-;4,8;-;-");
}

void TestReading::readsScans()
{
    QFETCH(QString, fixture);
    QFETCH(int, number);
    open(fixture);
    const MsFileRecord &file = *ms_file_record(id);
    ReadScan scan(number);
    QTEST(ms_read_per_scan(id, &scan, nullptr), "status");
    const int points = scan.point_count;
    const QStringList content = {
        QStringLiteral("%1 %2 %3").arg(points).arg(scan.flag_count).arg(double(float(scan.scan_acquisition_time))),
        shownAll(file.mass_format, scan.mass_values, points),
        shownAll(file.time_format, scan.time_values, points),
        shownAll(file.intensity_format, scan.intensity_values, points),
        shownAll<qint32>(scan.flagged_peaks, scan.flag_count),
        shownAll<qint16>(scan.flag_values, scan.flag_count)};
    QTEST(content.join(QLatin1Char(';')), "content");
    ms_init_per_scan(1, &scan, nullptr);
    QVERIFY(!scan.mass_values && scan.point_count == 0 && scan.scan_number == -1);
}

void TestReading::readsNumbersOfOtherTypes()
{
    open("float-times");
    Scan scan(1);
    for (int round = 0; round < 2; ++round) { // each reading warns anew
        messages.clear();
        QCOMPARE(ms_read_scan_header(id, &scan), 0);
        QCOMPARE(messages.size(), 5);
        QCOMPARE(messages.first(), QStringLiteral("W Data type mismatch while loading a_d_coaddition_factor"));
        QCOMPARE(messages.last(), QStringLiteral("W Data type mismatch while loading actual_scan_number"));
    }
    QCOMPARE(scan.actual_scan_number, -9999); // 3e10 has no 32-bit number
    QCOMPARE(int(scan.a_d_coaddition_factor), -9999);
    QCOMPARE(scan.resolution, 0.0);
    QCOMPARE(scan.scan_duration, -9999.0); // characters
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    QCOMPARE(scan.actual_scan_number, 1);
    QCOMPARE(int(scan.a_d_coaddition_factor), 4);

    // Beyond the end of a variable, whatever its type.
    open("string-total");
    for (int number = 0; number < 2; ++number) {
        scan.scan_number = number;
        QCOMPARE(ms_read_scan_header(id, &scan), -number);
    }

    messages.clear();
    open("total-ion-rank-2");
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), -1);
    QCOMPARE(messages, QStringList{QStringLiteral("E Size type mismatch while loading total_intensity")});
    QCOMPARE(ms_read_scan_header(id, nullptr), 0);
    QCOMPARE(ms_read_scan_header(-1, nullptr), -1);
}

void TestReading::takesTheCensus_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("status");
    QTest::addColumn<QVector<int>>("keys");
    QTest::newRow("floats") << "no-attributes" << 1.0 << 0 << QVector<int>{5000, 6025, 7050};
    QTest::newRow("scaled") << "no-attributes" << 0.5 << 0 << QVector<int>{2500, 3013, 3525};
    QTest::newRow("flags count") << "flags-on-masses" << 1.0 << 0
                                 << QVector<int>{-1270, 1270, 5000, 6025, 7050, 9990, 2147483647};
    QTest::newRow("bytes") << "byte-values" << 1.0 << 0 << QVector<int>{-7000, 5000, 6000, 12700};
    QTest::newRow("characters") << "char-masses" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("strings") << "string-masses" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("two dimensions") << "mass-values-rank-2" << 1.0 << -1 << QVector<int>{};
    QTest::newRow("no masses") << "flags-on-times" << 1.0 << 0 << QVector<int>{};
    QTest::newRow("no points") << "empty-point-axis" << 1.0 << 0 << QVector<int>{};
    QTest::newRow("one") << "one-mass" << 1.0 << 0 << QVector<int>{5000};
}

void TestReading::takesTheCensus()
{
    QFETCH(QString, fixture);
    QFETCH(double, scale);
    open(fixture);
    QSet<qint32> census;
    qint32 decimals = 2;
    QTEST(ms_read_mass_census(id, census, &decimals, scale), "status");
    QVector<int> keys(census.cbegin(), census.cend());
    std::sort(keys.begin(), keys.end());
    QTEST(keys, "keys");
    QCOMPARE(decimals, 2);
}

void TestReading::losesDecimals_data()
{
    // Masses 0.01, 0.02, ..., then the first one again, then one that has an earlier one's key at a decimal less.
    QTest::addColumn<int>("distinct");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<int>("keys");
    QTest::newRow("not yet") << 65534 << 2 << 2 << 65535;
    QTest::newRow("at a known mass") << 65535 << 2 << 1 << 6555;
    QTest::newRow("the last decimal") << 65535 << 0 << -1 << 65535;
    QTest::newRow("one decimal more") << 65535 << 3 << 2 << 6555;
}

void TestReading::losesDecimals()
{
    QFETCH(int, distinct);
    QFETCH(int, wanted);
    const double step = wanted == 0 ? 1.0 : wanted == 3 ? 0.001 : 0.01;
    std::vector<double> masses;
    for (int i = 1; i <= distinct; ++i)
        masses.push_back(i * step);
    masses.push_back(step);
    masses.push_back(100000 * step);
    openRun(masses, 1);
    QSet<qint32> census;
    qint32 decimals = wanted;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), 0);
    QTEST(decimals, "decimals");
    QTEST(census.size(), "keys");
}

// Whatever is read ahead of them.
void TestReading::readsScansInAnyOrder()
{
    constexpr int points = 9000;
    std::vector<double> masses(5 * points);
    for (std::size_t i = 0; i < masses.size(); ++i)
        masses[i] = double(i) / 100.0;
    openRun(masses, 5);
    for (const int number : {0, 1, 2, 3, 4, 3, 0, 0, 2, 4, 1}) {
        ReadScan scan(number);
        QCOMPARE(ms_read_per_scan(id, &scan, nullptr), 0);
        const int first = number * points;
        QVERIFY(
            std::equal(masses.data() + first, masses.data() + first + points, static_cast<double *>(scan.mass_values)));
        for (int i = 0; i < points; ++i)
            QCOMPARE(static_cast<qint32 *>(scan.intensity_values)[i], first + i);
    }
    QSet<qint32> census;
    qint32 decimals = 2;
    QCOMPARE(ms_read_mass_census(id, census, &decimals, 1.0), 0);
    QCOMPARE(census.size(), int(masses.size()));
}

void TestReading::readsTraces_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("status");
    QTest::newRow("float") << "total-ion" << 3 << 0;
    QTest::newRow("no scans") << "total-ion" << 0 << -1;
    QTest::newRow("other count") << "total-ion" << 2 << -1;
    QTest::newRow("absent") << "total-ion-no-intensity" << 3 << -1;
    QTest::newRow("no times") << "total-ion-no-times" << 3 << -1;
    QTest::newRow("two dimensions, as many elements") << "total-ion-rank-2" << 3 << 0;
    QTest::newRow("strings") << "string-total" << 3 << -1;
}

void TestReading::readsTraces()
{
    QFETCH(QString, fixture);
    QFETCH(int, count);
    QFETCH(int, status);
    open(fixture);
    double *totals = nullptr;
    double *times = nullptr;
    QCOMPARE(ms_read_total_intensity(id, count, &totals, &times), status);
    QCOMPARE(totals != nullptr && times != nullptr, status == 0);
    QCOMPARE(totals != nullptr || times != nullptr, status == 0);
    if (status == 0)
        QCOMPARE(shownAll<double>(times, 3),
                 fixture == QLatin1String("total-ion") ? QStringLiteral("60,-9999,120") : QStringLiteral("60,90,120"));
    ms_free(totals);
    ms_free(times);
}

void TestReading::readsTexts()
{
    open("instruments");
    const int name = ms_file_record(id)->variables[MsVar_instrument_name];
    const auto text = [&](int row, int column, int width) {
        char *read = ms_read_string_variable(id, name, row, column, width);
        const QString result = shown(read);
        ms_free(read);
        return result;
    };
    QCOMPARE(text(0, -1, 40), QStringLiteral("\"Detector\""));
    QCOMPARE(text(0, -1, 5), QStringLiteral("\"Dete\"")); // the last byte is the terminator's
    QCOMPARE(text(0, 2, 5), QStringLiteral("\"tect\""));
    QCOMPARE(text(0, -1, 1), QStringLiteral("-"));
    QCOMPARE(text(0, -1, 0), QStringLiteral("-"));
    QCOMPARE(text(0, -1, 41), QStringLiteral("-"));
    QCOMPARE(text(0, 30, 11), QStringLiteral("-"));
    QCOMPARE(text(2, -1, 40), QStringLiteral("-"));
    QCOMPARE(text(-1, -1, 40), QStringLiteral("-")); // two dimensions want a row
    QVERIFY(!ms_read_string_variable(id, ms_file_record(id)->variables[MsVar_mass_values], -1, -1, 2));
    QCOMPARE(ms_write_string_variable(id, name, 0, -1, 0, "x"), -1);
    QCOMPARE(ms_read_enum_attribute(id, NC_GLOBAL, nullptr), -1);
}

void TestReading::readsGroups_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("content");
    QTest::newRow("groups") << "groups" << 0
                            << "3 0;50,60.25,70.5,-9999,-9999;0.1,0.2,0.3,-9999,-9999;"
                               "-9999,-9999,-9999,-9999,-9999";
    QTest::newRow("groups-without-count") << "groups-without-count" << 0
                                          << "-9999 0;-9999,-9999,-9999,-9999,-9999;-9999,-9999,-9999,-9999,-9999;"
                                             "-9999,-9999,-9999,-9999,-9999";
    QTest::newRow("groups-rank-1") << "groups-rank-1" << -1 << "0 0;-;-;-";
    QTest::newRow("none") << "no-attributes" << -1 << "-9999 -9999;-;-;-";
}

void TestReading::readsGroups()
{
    QFETCH(QString, fixture);
    open(fixture);
    int count = -1;
    int width = -1;
    QCOMPARE(ms_inquire_groups(id, nullptr, &width), -1);
    QCOMPARE(ms_inquire_groups(id, &count, &width), 0);
    QCOMPARE(count, fixture == QLatin1String("no-attributes") ? 0 : 2);
    MsGroupRecord group;
    ms_init_group(0, &group);
    group.group_number = 0;
    QTEST(ms_read_group(id, &group), "status");
    const QStringList content = {QStringLiteral("%1 %2").arg(group.group_mass_count).arg(group.group_starting_scan),
                                 shownAll<double>(group.group_masses, width),
                                 QString(shownAll<double>(group.group_sampling_times, width)),
                                 shownAll<double>(group.group_delay_times, width)};
    QTEST(content.join(QLatin1Char(';')), "content");
    ms_init_group(1, &group);
}

void TestReading::readsInstruments()
{
    open("instruments");
    MsInstrumentRecord instrument;
    ms_init_instrument(0, &instrument);
    QStringList seen;
    for (int i = -1; i < 3; ++i) {
        instrument.component_index = i;
        const int status = ms_read_instrument(id, &instrument);
        seen += QString::number(status) + shown(instrument.instrument_name) + shown(instrument.instrument_id)
            + shown(instrument.instrument_mfr);
        ms_init_instrument(1, &instrument);
    }
    QCOMPARE(
        seen,
        QStringList({"-1---", "0\"Detector\"\"123456789012345678901234567890123456789\"-", "0\"Pump\"--", "-1---"}));
    open("instrument-rank-1");
    messages.clear();
    instrument.component_index = 0;
    QCOMPARE(ms_read_instrument(id, &instrument), -1);
    QCOMPARE(messages.size(), 1);
    ms_init_instrument(1, &instrument);
    open("no-attributes");
    QCOMPARE(ms_read_instrument(id, &instrument), -1);
}

// An id that netCDF gives again, while a record of an earlier file stands under it.
void TestReading::forgetsAFileClosedBehindItsBack()
{
    open("no-attributes");
    Scan scan(0);
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    nc_close(id);
    const int before = id;
    id = ms_open_read(AIA_FIXTURES "/float-times.cdf");
    QCOMPARE(id, before);
    scan.scan_number = 0;
    QCOMPARE(ms_read_scan_header(id, &scan), 0);
    QCOMPARE(float(scan.scan_acquisition_time), 60.1f);
}

// Wider than any array can be; only a file's length keeps others from trying.
void TestReading::refusesGiganticGroups()
{
    const int writing =
        ms_open_write((QDir::tempPath() + "/gigantic.cdf").toLatin1().constData(), 0, 1, 0, 76, 76, 76, 1, 0);
    ms_file_record(writing)->dimensions[MsDim_group_number].size = 1;
    ms_file_record(writing)->dimensions[MsDim_group_max_masses].size = 1 << 29;
    MsGroupRecord group;
    ms_init_group(0, &group);
    group.group_number = 0;
    QCOMPARE(ms_read_group(writing, &group), -1);
    QVERIFY(!group.group_masses && group.group_mass_count == 0);
    ms_close(writing);
    QFile::remove(QDir::tempPath() + "/gigantic.cdf");
}

void TestReading::readsLibraryEntries()
{
    open("library");
    QStringList seen;
    MsLibraryRecord entry;
    ms_init_per_scan(0, nullptr, &entry);
    for (int i = -1; i < 4; ++i) {
        entry.entry_index = i;
        const int status = ms_read_per_scan(id, nullptr, &entry);
        seen += QStringLiteral("%1%2 %3 %4 %5")
                    .arg(status)
                    .arg(shown(entry.entry_name))
                    .arg(entry.entry_number)
                    .arg(entry.CAS_number)
                    .arg(double(entry.boiling_point));
        ms_init_per_scan(1, nullptr, &entry);
    }
    QCOMPARE(seen,
             QStringList({"-1- -9999 -9999 -9999", "0\"Benzene\" 7 71432 80.1", "0- -9999 -9999 -9999",
                          "0\"Toluene\" 9 108883 110.6", "-1- -9999 -9999 -9999"}));
    // Other kinds of files leave the record alone.
    open("no-attributes");
    entry.entry_index = 99;
    entry.CAS_number = 5;
    QCOMPARE(ms_read_per_scan(id, nullptr, &entry), 0);
    QCOMPARE(entry.CAS_number, 5);
    ms_init_per_scan(1, nullptr, &entry);
}

QTEST_GUILESS_MAIN(TestReading)
#include "tst_reading.moc"
