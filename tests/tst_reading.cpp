// What the toolkit makes of files of each kind, but for their scans.

#include "openfixture.h"
#include "records.h"
#include "table.h"

#include <QTemporaryDir>

namespace {

using Values = Table<QString>; // name=value, parted by blanks; ~ for a blank in a value

// Experiment type; formats of mass, time, intensity; axes; sizes of _32_, _128_byte_string, error_number,
// scan_number, instrument_number.
using Codes = Table<QVector<int>>;

using Groups = Table<int, int, QString>; // groups; status of the first, its content

// Each value in its own way.
struct NamedGlobals : MsGlobals {
    using MsGlobals::MsGlobals;
    QString value(const QString &name) const
    {
        const QHash<QString, QString> values = {
            {"status", QString::number(isRead() ? 0 : -1)},
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

} // namespace

class TestReading : public QObject, private OpenFixture
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { end(); }

    void readsGlobalRecords_data()
    {
        const Values row;
        row("no-attributes",
            "status=0 title=- date=- log=- processed=-9999 instruments=-1 type=0 massScale=-9999 timeUnits=81 "
            "massFormat=74 uniform=-9999 scans=3 axes=10");
        row("dashes",
            "status=0 title=\"dashed\" device=\"instrument\" processed=3 massScale=0.5 offset=2 log=\"dashed\"");
        row("wrong-attribute-types",
            "status=0 title=\"12\" device=\"0.10000000149011612\" operator=\"-7\" owner=\"0.1\" processed=3 "
            "calibrated=3 "
            "massScale=0.5 intensityScale=0.5 offset=-9999 uniform=1 massMin=100 date=\"1993\"");
        row("several-numbers", "status=0 massScale=0.5 offset=2 processed=3 title=\"12\"");
        row("text-attributes",
            "status=0 title=\"Caf\xc3\xa9~??????\" device=\"one\" operator=\"trailing~~\" origin=\"bad~?~byte\"");
        row("empty-attributes", "status=0 title=\"\" device=\"\" date=\"\" type=-1 timeUnits=-1 axes=11");
        row("time-units", "status=0 timeUnits=82 axes=10");
        row("units-of-another-family", "status=0 timeUnits=70 axes=11");
        row("units-numeric", "status=0 massUnits=78 timeUnits=81 intensityUnits=88 massFormat=74 type=0");
        row("error-log", "status=0 log=\"second~line\"");
        row("error-log-rank-1", "status=-1 scans=0");
        row("error-log-numeric", "status=0 log=-");
        row("string-width-0", "status=0 log=-");
        row("gigantic-text", "status=0 log=-");
        row("int64-attribute", "status=-1");
        row("instruments", "status=0 instruments=2");
        row("no-scan-number", "status=0 scans=6");
        row("no-scans", "status=0 scans=0");
        row("chromatogram", "status=0");
    }
    void readsGlobalRecords()
    {
        const auto [values] = Values::row();
        open(QTest::currentDataTag());
        const NamedGlobals globals(file.id());
        for (const QString &value : values.split(QLatin1Char(' '))) {
            const QString name = value.section(QLatin1Char('='), 0, 0);
            QCOMPARE(name + '=' + globals.value(name).replace(QLatin1Char(' '), QLatin1Char('~')), value);
        }
    }

    void warnsOfMandatoryAttributes()
    {
        open("no-attributes");
        file.globals();
        const QString missing = QStringLiteral("W Mandatory attribute %1 is missing from file");
        QCOMPARE(messages,
                 QStringList({missing.arg("dataset-completeness"), missing.arg("ms-template-revision"),
                              missing.arg("netcdf-revision"), missing.arg("netcdf-file-date-time-stamp"),
                              missing.arg("experiment-date-time-stamp")}));
        open("error-log-rank-1");
        file.globals();
        QCOMPARE(messages.last(), QStringLiteral("E Size type mismatch while loading error_log"));
        open("wrong-attribute-types");
        messages.clear();
        file.globals();
        QCOMPARE(messages.filter(QStringLiteral("W Data type mismatch for attribute ")).size(), 12);
        QCOMPARE(messages.at(3), QStringLiteral("W Data type mismatch for attribute dataset_owner"));
    }

    // Whole files aren't called damaged or cut off.
    void opensFixturesInSilence()
    {
        const QStringList files = QDir(QStringLiteral(AIA_FIXTURES)).entryList({QStringLiteral("*.cdf")});
        QVERIFY(files.size() > 60);
        for (const QString &name : files)
            open(name.section(QLatin1Char('.'), 0, 0));
        QCOMPARE(messages, QStringList());
    }

    void findsDashedNamesAndOthersAfterwards()
    {
        open("dashes");
        QVERIFY(file.record()->dimensions[MsDim_point_number].id != -1);
        QVERIFY(file.record()->variables[MsVar_scan_acquisition_time] != -1);
        open("no-attributes");
        QVERIFY(file.record()->variables[MsVar_scan_acquisition_time] != -1);
        open("scan-number-dashed-only");
        QVERIFY(file.record()->dimensions[MsDim_scan_number].id != -1);
    }

    void knowsWhatAFileHas_data()
    {
        const Codes row;
        row("plain", {0, 76, 76, 76, 1, 1, 32, 128, 1, 5, 1});
        row("no-attributes", {0, 76, 74, 76, 1, 0, 32, 128, 1, 3, 0});
        row("instruments", {0, 76, 74, 76, 1, 0, 40, 128, 1, 3, 2});
        row("library", {2, 76, 74, 76, 1, 0, 8, 128, 1, 3, 0});
        row("continuum", {1, 76, 74, 76, 1, 0, 32, 128, 1, 3, 0});
        row("experiment-type-of-another-family", {81, 76, 74, 76, 1, 0, 32, 128, 1, 3, 0});
        row("scaled-short", {0, 74, 74, 75, 1, 1, 32, 128, 1, 3, 0});
        row("double-masses", {0, 77, 74, 77, 1, 0, 32, 128, 1, 3, 0});
        row("contradicting-formats", {0, 74, 74, 74, 1, 0, 32, 128, 1, 3, 0});
        row("byte-values", {0, 74, 74, 75, 1, 0, 32, 128, 1, 3, 0});
        row("wide-values", {0, 74, 74, 75, 1, 0, 32, 128, 1, 3, 0});
        row("no-intensities", {0, 76, 74, 75, 1, 0, 32, 128, 1, 3, 0});
    }
    void knowsWhatAFileHas()
    {
        const auto [codes] = Codes::row();
        open(QTest::currentDataTag());
        const MsFileRecord &record = *file.record();
        QVector<int> read = {record.experiment_type,  record.mass_format,     record.time_format,
                             record.intensity_format, record.has_mass_values, record.has_time_values};
        for (const int slot : {MsDim_32_byte_string, MsDim_128_byte_string, MsDim_error_number, MsDim_scan_number,
                               MsDim_instrument_number})
            read += record.dimensions[slot].size;
        QCOMPARE(read, codes);
    }

    // ncgen makes no such file.
    void knowsNoSizeBeyond32Bits()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("wide.cdf"));
        int writing = -1;
        int dimension = -1;
        nc_create(path.toLatin1().constData(), NC_64BIT_DATA, &writing);
        nc_def_dim(writing, "scan_number", 3, &dimension);
        nc_def_dim(writing, "instrument_number", 2147483648, &dimension);
        QCOMPARE(nc_close(writing), NC_NOERR);
        openPath(path);
        QCOMPARE(file.record()->dimensions[MsDim_scan_number].size, 3);
        QCOMPARE(file.record()->dimensions[MsDim_instrument_number].size, 2147483647);
    }

    void readsTexts()
    {
        open("instruments");
        const int name = file.record()->variables[MsVar_instrument_name];
        const auto text = [&](int row, int column, int width) {
            char *read = ms_read_string_variable(file.id(), name, row, column, width);
            const QString result = shown(read);
            ms_free(read);
            return result;
        };
        // The last byte is the terminator's.
        QCOMPARE(text(0, -1, 40) + text(0, -1, 5) + text(0, 2, 5), QStringLiteral("\"Detector\"\"Dete\"\"tect\""));
        // No byte, none, beyond the width, beyond the rows, and a row that two dimensions want.
        QCOMPARE(text(0, -1, 1) + text(0, -1, 0) + text(0, -1, 41) + text(0, 30, 11), QStringLiteral("----"));
        QCOMPARE(text(2, -1, 40) + text(-1, -1, 40), QStringLiteral("--"));
        QVERIFY(!ms_read_string_variable(file.id(), file.record()->variables[MsVar_mass_values], -1, -1, 2));
        QCOMPARE(ms_write_string_variable(file.id(), name, 0, -1, 0, "x"), -1);
        QCOMPARE(ms_read_enum_attribute(file.id(), NC_GLOBAL, nullptr), -1);
    }

    void readsGroups_data()
    {
        const Groups row;
        row("groups", 2, 0, "3 0;50,60.25,70.5,-9999,-9999;0.1,0.2,0.3,-9999,-9999;-9999,-9999,-9999,-9999,-9999");
        row("groups-without-count", 2, 0,
            "-9999 0;-9999,-9999,-9999,-9999,-9999;-9999,-9999,-9999,-9999,-9999;-9999,-9999,-9999,-9999,-9999");
        row("groups-no-masses", 2, 0, "0 3;;;");
        row("groups-rank-1", 2, -1, "0 0;-;-;-");
        row("no-attributes", 0, -1, "-9999 -9999;-;-;-");
    }
    void readsGroups()
    {
        const auto [groups, status, expected] = Groups::row();
        open(QTest::currentDataTag());
        int count = -1;
        int width = -1;
        QCOMPARE(ms_inquire_groups(file.id(), &count, &width), 0);
        QCOMPARE(count, groups);
        const MsGroup group(file.id(), 0);
        QCOMPARE(group.isRead(), status == 0);
        const QStringList read = {QStringLiteral("%1 %2").arg(group.group_mass_count).arg(group.group_starting_scan),
                                  shownAll<double>(group.group_masses, width),
                                  shownAll<double>(group.group_sampling_times, width),
                                  shownAll<double>(group.group_delay_times, width)};
        QCOMPARE(read.join(QLatin1Char(';')), expected);
    }

    // Wider than any array can be; only a file's length keeps others from trying.
    void refusesGiganticGroups()
    {
        const QTemporaryDir folder;
        file = MsFile::create(folder.filePath(QStringLiteral("x.cdf")).toLatin1().constData(), MsFileLayout());
        ms_file_record(file.id())->dimensions[MsDim_group_number].size = 1;
        ms_file_record(file.id())->dimensions[MsDim_group_max_masses].size = 1 << 29;
        const MsGroup group(file.id(), 0);
        QVERIFY(!group.isRead());
        QVERIFY(!group.group_masses && group.group_mass_count == 0);
    }

    void readsInstruments()
    {
        open("instruments");
        QStringList seen;
        for (int i = -1; i < 3; ++i) {
            const MsInstrument read = file.instrument(i);
            seen += QString::number(read.isRead() ? 0 : -1);
            seen.last() += shown(read.instrument_name) + shown(read.instrument_id) + shown(read.instrument_mfr);
        }
        QCOMPARE(seen.join(QLatin1Char(' ')),
                 R"(-1--- 0"Detector""123456789012345678901234567890123456789"- 0"Pump"-- -1---)");
        open("instrument-rank-1");
        messages.clear();
        QVERIFY(!file.instrument(0).isRead());
        QCOMPARE(messages.size(), 1);
        open("no-attributes");
        QVERIFY(!file.instrument(0).isRead());
    }

    void readsLibraryEntries()
    {
        open("library");
        QStringList seen;
        for (int i = -1; i < 4; ++i) {
            const MsLibraryEntry entry = file.entry(i);
            seen += QString::number(entry.isRead() ? 0 : -1);
            seen += QStringLiteral("%1 %2 %3 %4")
                        .arg(shown(entry.entry_name))
                        .arg(entry.entry_number)
                        .arg(entry.CAS_number)
                        .arg(double(entry.boiling_point));
        }
        QCOMPARE(seen.join(QLatin1Char(' ')),
                 QStringLiteral("-1 - -9999 -9999 -9999 0 \"Benzene\" 7 71432 80.1 0 - -9999 -9999 -9999 "
                                "0 \"Toluene\" 9 108883 110.6 -1 - -9999 -9999 -9999"));
        open("library-rank-1");
        messages.clear();
        QVERIFY(!file.entry(0).isRead());
        QCOMPARE(messages, QStringList{QStringLiteral("E Size type mismatch while loading entry_name")});
        // Other kinds of files leave the record alone.
        open("no-attributes");
        MsLibraryDraft entry(99);
        entry.CAS_number = 5;
        QCOMPARE(ms_read_per_scan(file.id(), nullptr, &entry), 0);
        QCOMPARE(entry.CAS_number, 5);
    }
};

QTEST_GUILESS_MAIN(TestReading)
#include "tst_reading.moc"
