// What the toolkit makes of files of each kind, but for their scans.

#include "openfixture.h"
#include "records.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

QString shown(const char *text)
{
    return text ? QLatin1Char('"') + QString::fromLatin1(text) + QLatin1Char('"') : QStringLiteral("-");
}

} // namespace

class TestReading : public QObject, private OpenFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { end(); }
    void readsGlobalRecords_data();
    void readsGlobalRecords();
    void warnsOfMandatoryAttributes();
    void opensFixturesInSilence();
    void findsDashedNamesAndOthersAfterwards();
    void knowsWhatAFileHas_data();
    void knowsWhatAFileHas();
    void knowsNoSizeBeyond32Bits();
    void readsTexts();
    void readsGroups_data();
    void readsGroups();
    void readsInstruments();
    void refusesGiganticGroups();
    void readsLibraryEntries();

private:
    QTemporaryDir folder;
};

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
