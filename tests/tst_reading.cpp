// What the toolkit makes of files of each kind, but for their scans.

#include "openfixture.h"
#include "records.h"
#include "rows.h"

#include <QTemporaryDir>

namespace {

constexpr int missing = -9999;
const QByteArray longText = QByteArray("0123456789").repeated(30);

// What a file without any attribute comes to.
struct GlobalValues {
    bool isRead = true;
    const char *title = nullptr; // Latin-1
    const char *device = nullptr;
    const char *operatorName = nullptr;
    const char *origin = nullptr;
    const char *owner = nullptr;
    const char *date = nullptr;
    const char *log = nullptr;
    int processed = missing;
    int calibrated = missing;
    int instruments = -1;
    int type = MsCentroidedSpectrum;
    double massScale = missing;
    double intensityScale = missing;
    double offset = missing;
    double massMin = missing;
    float uniform = missing;
    int massUnits = 78;
    int timeUnits = MsSeconds;
    int intensityUnits = 88;
    int massFormat = MsShortFormat; // as the attribute says
    int scans = 3;
    bool hasMasses = true;
    bool hasTimes = false;
};

struct FileValues {
    int type = MsCentroidedSpectrum;
    int massFormat = MsFloatFormat;
    int timeFormat = MsShortFormat;
    int intensityFormat = MsFloatFormat;
    bool hasTimes = false;
    int textWidth = 32; // of _32_byte_string
    int scans = 3;
    int instruments = 0;
};

struct GroupValues {
    int groups;
    bool isRead;
    int count;
    int start;
    QVector<double> masses{}; // over the whole width
    QVector<double> samplingTimes{};
    QVector<double> delayTimes{};
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
        const Rows<GlobalValues> row;
        row("no-attributes");
        GlobalValues &dashes = row("dashes");
        dashes.title = dashes.log = "dashed";
        dashes.device = "instrument";
        dashes.date = "19930817103000+0100";
        dashes.processed = 3;
        dashes.massScale = 0.5;
        dashes.offset = 2.0;
        GlobalValues &wrong = row("wrong-attribute-types");
        wrong.title = "12";
        wrong.device = "0.10000000149011612";
        wrong.operatorName = "-7";
        wrong.owner = "0.1";
        wrong.date = "1993";
        wrong.processed = wrong.calibrated = 3;
        wrong.massScale = wrong.intensityScale = 0.5;
        wrong.uniform = 1.0f;
        wrong.massMin = 100.0;
        GlobalValues &several = row("several-numbers");
        several.title = "12";
        several.processed = 3;
        several.massScale = 0.5;
        several.offset = 2.0;
        GlobalValues &texts = row("text-attributes");
        texts.title = "Caf\xe9 ??????";
        texts.device = "one";
        texts.operatorName = "trailing  ";
        texts.origin = "bad ? byte";
        texts.owner = longText.constData();
        texts.date = "19930817103000-05 and more";
        GlobalValues &empty = row("empty-attributes");
        empty.title = empty.device = empty.date = "";
        empty.type = empty.timeUnits = -1;
        empty.hasTimes = true;
        row("time-units").timeUnits = 82;
        GlobalValues &family = row("units-of-another-family");
        family.timeUnits = 70;
        family.hasTimes = true;
        row("units-numeric").hasTimes = true;
        row("error-log").log = "second line";
        row("error-log-numeric");
        GlobalValues &noWidth = row("string-width-0");
        noWidth.type = MsLibrarySpectrum;
        noWidth.instruments = 1;
        noWidth.scans = 2;
        GlobalValues &gigantic = row("gigantic-text");
        gigantic.scans = 1;
        gigantic.hasMasses = false;
        for (const char *refused : {"error-log-rank-1", "int64-attribute"}) {
            GlobalValues &begun = row(refused); // up to the sizes
            begun.isRead = false;
            begun.instruments = begun.scans = 0;
            begun.hasMasses = false;
        }
        row("instruments").instruments = 2;
        row("no-scan-number").scans = 6;
        row("no-scans").scans = 0;
        GlobalValues &chromatogram = row("chromatogram");
        chromatogram.scans = 4;
        chromatogram.hasMasses = false;
    }
    void readsGlobalRecords()
    {
        const GlobalValues &row = Rows<GlobalValues>::current();
        open(QTest::currentDataTag());
        const MsGlobals globals = file.globals();
        QCOMPARE(globals.isRead(), row.isRead);
        QCOMPARE(globals.admin.experiment_title, row.title);
        QCOMPARE(globals.admin.source_file_format, row.device);
        QCOMPARE(globals.admin.operator_name, row.operatorName);
        QCOMPARE(globals.admin.dataset_origin, row.origin);
        QCOMPARE(globals.admin.dataset_owner, row.owner);
        QCOMPARE(globals.admin.experiment_date_time_stamp, row.date);
        QCOMPARE(globals.admin.error_log, row.log);
        QCOMPARE(globals.admin.number_of_times_processed, row.processed);
        QCOMPARE(globals.admin.number_of_times_calibrated, row.calibrated);
        QCOMPARE(globals.admin.instrument_count, row.instruments);
        QCOMPARE(globals.admin.experiment_type, row.type);
        QCOMPARE(globals.raw.mass_scale_factor, row.massScale);
        QCOMPARE(globals.raw.intensity_scale_factor, row.intensityScale);
        QCOMPARE(globals.raw.intensity_add_offset, row.offset);
        QCOMPARE(globals.raw.global_mass_min, row.massMin);
        QCOMPARE(globals.raw.raw_data_uniform_sampling_flag, row.uniform);
        QCOMPARE(globals.raw.mass_units, row.massUnits);
        QCOMPARE(globals.raw.time_units, row.timeUnits);
        QCOMPARE(globals.raw.intensity_units, row.intensityUnits);
        QCOMPARE(globals.raw.raw_data_mass_format, row.massFormat);
        QCOMPARE(globals.raw.scan_count, row.scans);
        QCOMPARE(globals.raw.has_mass_values != 0, row.hasMasses);
        QCOMPARE(globals.raw.has_time_values != 0, row.hasTimes);
    }

    void warnsOfMandatoryAttributes()
    {
        open("no-attributes");
        file.globals();
        const QString said = QStringLiteral("W Mandatory attribute %1 is missing from file");
        QCOMPARE(messages,
                 QStringList({said.arg("dataset-completeness"), said.arg("ms-template-revision"),
                              said.arg("netcdf-revision"), said.arg("netcdf-file-date-time-stamp"),
                              said.arg("experiment-date-time-stamp")}));
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
        const Rows<FileValues> row;
        row("plain") = {MsCentroidedSpectrum, MsFloatFormat, MsFloatFormat, MsFloatFormat, true, 32, 5, 1};
        row("no-attributes");
        FileValues &instruments = row("instruments");
        instruments.textWidth = 40;
        instruments.instruments = 2;
        FileValues &library = row("library");
        library.type = MsLibrarySpectrum;
        library.textWidth = 8;
        row("continuum").type = MsContinuumSpectrum;
        row("experiment-type-of-another-family").type = MsSeconds;
        row("scaled-short") = {MsCentroidedSpectrum, MsShortFormat, MsShortFormat, MsLongFormat, true};
        row("double-masses") = {MsCentroidedSpectrum, MsDoubleFormat, MsShortFormat, MsDoubleFormat};
        row("contradicting-formats") = {MsCentroidedSpectrum, MsShortFormat, MsShortFormat, MsShortFormat};
        row("byte-values") = {MsCentroidedSpectrum, MsShortFormat, MsShortFormat, MsLongFormat};
        row("wide-values") = {MsCentroidedSpectrum, MsShortFormat, MsShortFormat, MsLongFormat};
        row("no-intensities").intensityFormat = MsLongFormat;
    }
    void knowsWhatAFileHas()
    {
        const FileValues &row = Rows<FileValues>::current();
        open(QTest::currentDataTag());
        const MsFileRecord &record = *file.record();
        QCOMPARE(record.experiment_type, row.type);
        QCOMPARE(record.mass_format, row.massFormat);
        QCOMPARE(record.time_format, row.timeFormat);
        QCOMPARE(record.intensity_format, row.intensityFormat);
        QCOMPARE(record.has_mass_values, 1);
        QCOMPARE(record.has_time_values, int(row.hasTimes));
        QCOMPARE(record.dimensions[MsDim_32_byte_string].size, row.textWidth);
        QCOMPARE(record.dimensions[MsDim_128_byte_string].size, 128); // also where the file has none
        QCOMPARE(record.dimensions[MsDim_error_number].size, 1);
        QCOMPARE(record.dimensions[MsDim_scan_number].size, row.scans);
        QCOMPARE(record.dimensions[MsDim_instrument_number].size, row.instruments);
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
            const QByteArray result = read ? read : "null";
            ms_free(read);
            return result;
        };
        QCOMPARE(text(0, -1, 40), QByteArray("Detector"));
        QCOMPARE(text(0, -1, 5), QByteArray("Dete")); // the last byte is the terminator's
        QCOMPARE(text(0, 2, 5), QByteArray("tect"));
        QCOMPARE(text(0, -1, 1), QByteArray("null")); // no byte
        QCOMPARE(text(0, -1, 0), QByteArray("null"));
        QCOMPARE(text(0, -1, 41), QByteArray("null")); // beyond the width
        QCOMPARE(text(0, 30, 11), QByteArray("null"));
        QCOMPARE(text(2, -1, 40), QByteArray("null"));  // beyond the rows
        QCOMPARE(text(-1, -1, 40), QByteArray("null")); // two dimensions want a row
        QVERIFY(!ms_read_string_variable(file.id(), file.record()->variables[MsVar_mass_values], -1, -1, 2));
        QCOMPARE(ms_write_string_variable(file.id(), name, 0, -1, 0, "x"), -1);
        QCOMPARE(ms_read_enum_attribute(file.id(), NC_GLOBAL, nullptr), -1);
    }

    void readsGroups_data()
    {
        const QVector<double> none(5, missing);
        const Rows<GroupValues> row;
        row("groups") = {2,
                         true,
                         3,
                         0,
                         {50, 60.25, 70.5, missing, missing},
                         {double(0.1f), double(0.2f), double(0.3f), missing, missing},
                         none};
        row("groups-without-count") = {2, true, missing, 0, none, none, none};
        row("groups-no-masses") = {2, true, 0, 3};
        row("groups-rank-1") = {2, false, 0, 0};
        row("no-attributes") = {0, false, missing, missing};
    }
    void readsGroups()
    {
        const GroupValues &row = Rows<GroupValues>::current();
        open(QTest::currentDataTag());
        int count = -1;
        int width = -1;
        QCOMPARE(ms_inquire_groups(file.id(), &count, &width), 0);
        QCOMPARE(count, row.groups);
        const MsGroup group(file.id(), 0);
        const auto whole = [width](const double *array) { return numbersOf(MsNumbers(array, MsDoubleFormat, width)); };
        QCOMPARE(group.isRead(), row.isRead);
        QCOMPARE(group.group_mass_count, row.count);
        QCOMPARE(group.group_starting_scan, row.start);
        QCOMPARE(whole(group.group_masses), row.masses);
        QCOMPARE(whole(group.group_sampling_times), row.samplingTimes);
        QCOMPARE(whole(group.group_delay_times), row.delayTimes);
        QCOMPARE(group.group_masses != nullptr, row.isRead);
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
        for (const int component : {0, 1}) {
            const MsInstrument read = file.instrument(component);
            QVERIFY(read.isRead());
            QCOMPARE(read.instrument_name, component == 0 ? "Detector" : "Pump");
            QCOMPARE(read.instrument_id, component == 0 ? "123456789012345678901234567890123456789" : nullptr);
            QVERIFY(!read.instrument_mfr);
        }
        for (const int component : {-1, 2}) {
            const MsInstrument none = file.instrument(component);
            QVERIFY(!none.isRead() && !none.instrument_name);
        }
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
        for (const int index : {0, 1, 2}) {
            const MsLibraryEntry entry = file.entry(index);
            QVERIFY(entry.isRead());
            QCOMPARE(entry.entry_name, index == 0 ? "Benzene" : index == 2 ? "Toluene" : nullptr);
            QCOMPARE(entry.entry_number, index == 0 ? 7 : index == 2 ? 9 : missing);
            QCOMPARE(entry.CAS_number, index == 0 ? 71432 : index == 2 ? 108883 : missing);
            QCOMPARE(entry.boiling_point, index == 0 ? 80.1f : index == 2 ? 110.6f : float(missing));
        }
        for (const int index : {-1, 3})
            QVERIFY(!file.entry(index).isRead());
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
