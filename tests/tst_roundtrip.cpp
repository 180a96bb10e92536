// What the toolkit writes, it reads back equal.

#include "records.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

// A file that is written, then read.
class File
{
public:
    int write(qint32 type, qint32 scans, qint32 instruments, qint32 mass, qint32 time, qint32 intensity, bool hasMass,
              bool hasTime)
    {
        id = ms_open_write(path().constData(), type, scans, instruments, mass, time, intensity, hasMass, hasTime);
        return id;
    }
    int readBack()
    {
        ms_close(id);
        id = ms_open_read(path().constData());
        return id;
    }
    ~File() { ms_close(id); }
    QByteArray path() const { return folder.filePath(QStringLiteral("x.cdf")).toLatin1(); }

    int id = -1;

private:
    QTemporaryDir folder;
};

// The numbers 1.25, 2.25, ... in a format; whole in the whole formats.
std::vector<double> vectorOf(int format, int count, double first)
{
    std::vector<double> numbers(std::size_t(count), 0.0);
    for (int i = 0; i < count; ++i)
        numbers[std::size_t(i)] = first + i;
    std::vector<double> result(numbers.size());
    ms_transcode_vector(numbers.data(), 77, count, result.data(), format, 0);
    return result;
}

bool sameVector(int format, int count, const void *read, const std::vector<double> &written)
{
    const int width = format == 74 ? 2 : format == 77 ? 8 : 4;
    return read && std::memcmp(read, written.data(), std::size_t(count * width)) == 0;
}

// Gives each field of a record a value of its own, through its table.
template <class Row> void fill(const MsTable<Row> &table, void *record, std::vector<QByteArray> *texts)
{
    texts->reserve(200); // the records point into them
    int number = 100;
    for (const Row &row : table) {
        char *field = static_cast<char *>(record) + row.field;
        ++number;
        if constexpr (std::is_same_v<Row, MsAttributeRow>) {
            if (row.enumerated) { // its text is held as a code of the vocabulary
                *reinterpret_cast<qint32 *>(field) = number % 90;
                continue;
            }
        }
        if (row.nc_type == NC_CHAR) {
            texts->push_back(QByteArray(row.name).left(20) + QByteArray::number(number));
            *reinterpret_cast<char **>(field) = texts->back().data();
        } else if (row.nc_type == NC_SHORT) {
            *reinterpret_cast<qint16 *>(field) = qint16(number);
        } else if (row.nc_type == NC_LONG) {
            *reinterpret_cast<qint32 *>(field) = number * 1001;
        } else if (row.nc_type == NC_FLOAT) {
            *reinterpret_cast<float *>(field) = float(number) + 0.5f;
        } else {
            *reinterpret_cast<double *>(field) = number + 0.123456789;
        }
    }
}

template <class Row> QByteArray shown(const MsTable<Row> &table, const void *record)
{
    QByteArray result;
    for (const Row &row : table) {
        const char *field = static_cast<const char *>(record) + row.field;
        result += QByteArray(row.name) + '=';
        bool isCode = false;
        if constexpr (std::is_same_v<Row, MsAttributeRow>)
            isCode = row.enumerated;
        if (row.nc_type == NC_CHAR && !isCode)
            result += *reinterpret_cast<char *const *>(field);
        else
            result += QByteArray(field, row.nc_type == NC_DOUBLE ? 8 : row.nc_type == NC_SHORT ? 2 : 4).toHex();
        result += '\n';
    }
    return result;
}

} // namespace

class TestRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void keepsScans_data();
    void keepsScans();
    void keepsLayout();
    void refusesScans();
    void keepsFlagsOfAWriterWithoutMasses();
    void keepsGlobalRecords();
    void leavesOutWhatIsMissing();
    void keepsNumbersAndEntries();
    void keepsInstruments();
    void keepsGroups();
};

void TestRoundTrip::keepsScans_data()
{
    QTest::addColumn<int>("axisFormat");
    QTest::addColumn<int>("intensityFormat");
    QTest::addColumn<int>("axes"); // 1 mass, 2 time, 3 both
    QTest::addColumn<int>("flags");
    for (int axis = 74; axis <= 77; ++axis) {
        for (int intensity = 74; intensity <= 77; ++intensity) {
            const int axes = 1 + (axis + intensity) % 3;
            QTest::addRow("%d %d axes %d", axis, intensity, axes) << axis << intensity << axes << axis % 2 * 2;
        }
    }
}

void TestRoundTrip::keepsScans()
{
    QFETCH(int, axisFormat);
    QFETCH(int, intensityFormat);
    QFETCH(int, axes);
    QFETCH(int, flags);
    const bool hasMass = axes & 1;
    const bool hasTime = axes & 2;
    File file;
    QVERIFY(file.write(0, 3, 0, axisFormat, axisFormat, intensityFormat, hasMass, hasTime) != -1);
    std::vector<double> masses[3], times[3], intensities[3];
    qint32 peaks[] = {12, -3};
    qint16 values[] = {-7, 300};
    for (const int number : {1, 0, 2}) { // in any order
        Scan scan(number);
        scan.point_count = number == 2 ? 0 : 5 + number;
        scan.flag_count = flags;
        masses[number] = vectorOf(axisFormat, scan.point_count, 1.25 + number);
        times[number] = vectorOf(axisFormat, scan.point_count, -10.5);
        intensities[number] = vectorOf(intensityFormat, scan.point_count, 100.75);
        scan.mass_values = hasMass ? masses[number].data() : nullptr;
        scan.time_values = hasTime ? times[number].data() : nullptr;
        scan.intensity_values = intensities[number].data();
        scan.flagged_peaks = peaks;
        scan.flag_values = values;
        QCOMPARE(ms_write_per_scan(file.id, &scan, nullptr), 0);
    }
    QCOMPARE(ms_file_record(file.id)->next_point_index, 11 + 2 * flags);

    QVERIFY(file.readBack() != -1);
    for (int number = 0; number < 3; ++number) {
        ReadScan scan(number);
        QCOMPARE(ms_read_per_scan(file.id, &scan, nullptr), 0);
        const int points = number == 2 ? 0 : 5 + number;
        QCOMPARE(scan.point_count, points);
        QCOMPARE(scan.flag_count, flags);
        if (points > 0) {
            QCOMPARE(sameVector(axisFormat, points, scan.mass_values, masses[number]), hasMass);
            QCOMPARE(sameVector(axisFormat, points, scan.time_values, times[number]), hasTime);
            QVERIFY(sameVector(intensityFormat, points, scan.intensity_values, intensities[number]));
            for (int i = 0; i < flags; ++i) {
                QCOMPARE(scan.flagged_peaks[i], peaks[i]);
                QCOMPARE(scan.flag_values[i], values[i]);
            }
        }
        QCOMPARE(scan.flagged_peaks != nullptr, points > 0 && flags > 0);
    }
}

// The bytes as another reader sees them.
void TestRoundTrip::keepsLayout()
{
    File file;
    QVERIFY(file.write(0, 3, 0, 76, 76, 75, true, false) != -1);
    float masses[] = {50.5f, 60.5f};
    qint32 intensities[] = {7, 8};
    qint32 peaks[] = {12};
    qint16 values[] = {-3};
    for (int number = 0; number < 3; ++number) {
        Scan scan(number);
        scan.point_count = number == 1 ? 0 : 2;
        scan.flag_count = number == 0 ? 1 : number == 1 ? 3 : 0;
        scan.mass_values = masses;
        scan.intensity_values = intensities;
        scan.flagged_peaks = peaks;
        scan.flag_values = values;
        QCOMPARE(ms_write_per_scan(file.id, &scan, nullptr), 0);
    }
    QVERIFY(file.readBack() != -1);
    const qint32 *variables = ms_file_record(file.id)->variables;
    int numbers[3];
    QCOMPARE(nc_get_var_int(file.id, variables[MsVar_scan_index], numbers), NC_NOERR);
    QCOMPARE(QVector<int>({numbers[0], numbers[1], numbers[2]}), QVector<int>({0, 3, 3}));
    QCOMPARE(nc_get_var_int(file.id, variables[MsVar_flag_count], numbers), NC_NOERR);
    QCOMPARE(QVector<int>({numbers[0], numbers[1], numbers[2]}), QVector<int>({1, 3, 0}));
    double points[5];
    QCOMPARE(nc_get_var_double(file.id, variables[MsVar_mass_values], points), NC_NOERR);
    QCOMPARE(QVector<double>(points, points + 5), QVector<double>({50.5, 60.5, 12, 50.5, 60.5}));
    QCOMPARE(nc_get_var_double(file.id, variables[MsVar_intensity_values], points), NC_NOERR);
    QCOMPARE(QVector<double>(points, points + 5), QVector<double>({7, 8, -3, 7, 8}));
}

void TestRoundTrip::refusesScans()
{
    File file;
    QVERIFY(file.write(0, 2, 0, 76, 76, 76, true, false) != -1);
    float points[] = {1, 2};
    qint32 peaks[] = {1};
    const auto status = [&](int number, void *masses, void *intensities, int flags, qint32 *flagged) {
        Scan scan(number);
        scan.point_count = 2;
        scan.mass_values = masses;
        scan.intensity_values = intensities;
        scan.flag_count = flags;
        scan.flagged_peaks = flagged;
        return ms_write_per_scan(file.id, &scan, nullptr);
    };
    QCOMPARE(status(-1, points, points, 0, nullptr), -1);
    QCOMPARE(status(2, points, points, 0, nullptr), -1);
    QCOMPARE(status(0, points, nullptr, 0, nullptr), -1);
    QCOMPARE(status(0, points, points, 1, peaks), -1); // no values
    QCOMPARE(ms_file_record(file.id)->next_point_index, 0);
    ms_file_record(file.id)->next_point_index = 2147483646;
    QCOMPARE(status(0, points, points, 0, nullptr), -1);
    ms_file_record(file.id)->next_point_index = 0;
    QCOMPARE(status(0, nullptr, points, 0, nullptr), 0); // masses stay unwritten
    QCOMPARE(ms_file_record(file.id)->next_point_index, 2);
    QCOMPARE(ms_write_per_scan(-1, nullptr, nullptr), -1);
    QCOMPARE(ms_write_per_scan(file.id, nullptr, nullptr), 0);
}

// The flags go by the vector, not by the file: here to the time axis, or nowhere.
void TestRoundTrip::keepsFlagsOfAWriterWithoutMasses()
{
    for (const bool hasTime : {true, false}) {
        File file;
        QVERIFY(file.write(0, 1, 0, 76, 74, 74, true, hasTime) != -1);
        Scan scan(0);
        qint16 points[] = {1, 2};
        qint32 peaks[] = {70000};
        scan.point_count = 2;
        scan.flag_count = 1;
        scan.intensity_values = points;
        scan.time_values = points;
        scan.flagged_peaks = peaks;
        scan.flag_values = points;
        QCOMPARE(ms_write_per_scan(file.id, &scan, nullptr), hasTime ? 0 : -1);
        QCOMPARE(ms_file_record(file.id)->next_point_index, hasTime ? 3 : 2);
        if (!hasTime)
            continue;
        QVERIFY(file.readBack() != -1);
        short times[3];
        QCOMPARE(nc_get_var_short(file.id, ms_file_record(file.id)->variables[MsVar_time_values], times), NC_NOERR);
        QCOMPARE(int(times[2]), 4464);
    }
}

void TestRoundTrip::keepsGlobalRecords()
{
    Globals written;
    std::vector<QByteArray> texts[4];
    fill(ms_admin_table, &written.admin, &texts[0]);
    fill(ms_sample_table, &written.sample, &texts[1]);
    fill(ms_test_table, &written.test, &texts[2]);
    fill(ms_raw_table, &written.raw, &texts[3]);
    char log[] = "a line that is longer than the sixty-three characters that it can have.";
    written.admin.error_log = log;

    File file;
    QVERIFY(file.write(0, 1, 0, 76, 76, 76, true, true) != -1);
    QCOMPARE(written.write(file.id), 0);
    QVERIFY(!written.admin.dataset_completeness && !written.admin.ms_template_revision);
    QVERIFY(!written.admin.netcdf_revision && !written.admin.languages);
    QVERIFY(file.readBack() != -1);
    ReadGlobals read(file.id);
    QCOMPARE(read.status, 0);
    QCOMPARE(read.admin.dataset_completeness, "C1+C2");
    QCOMPARE(read.admin.ms_template_revision, "1.0.1");
    QCOMPARE(read.admin.netcdf_revision, "2.3.2");
    QCOMPARE(read.admin.languages, "English");
    QCOMPARE(read.admin.error_log, QByteArray(log).left(63).constData());
    QCOMPARE(read.admin.instrument_count, -1);
    QCOMPARE(read.raw.scan_count, 1);

    for (char *&text : {std::ref(read.admin.dataset_completeness), std::ref(read.admin.ms_template_revision),
                        std::ref(read.admin.netcdf_revision), std::ref(read.admin.languages)})
        ms_free(std::exchange(text, nullptr));
    QCOMPARE(shown(ms_admin_table, &read.admin), shown(ms_admin_table, &written.admin));
    QCOMPARE(shown(ms_sample_table, &read.sample), shown(ms_sample_table, &written.sample));
    QCOMPARE(shown(ms_test_table, &read.test), shown(ms_test_table, &written.test));
    QCOMPARE(shown(ms_raw_table, &read.raw), shown(ms_raw_table, &written.raw));
    ms_free(std::exchange(read.admin.error_log, nullptr));
    ms_init_global(1, &read.admin, &read.sample, &read.test, &read.raw);
    QCOMPARE(read.raw.time_units, 81); // and the end of the block frees nothing twice
    QCOMPARE(ms_write_global(file.id, &written.admin, &written.sample, nullptr, &written.raw), -1);
}

void TestRoundTrip::leavesOutWhatIsMissing()
{
    Globals globals;
    globals.admin.number_of_times_processed = 0;
    globals.sample.sample_state = -1;
    globals.test.test_scan_time = -9999.7f;
    globals.raw.global_mass_min = -9998.0;
    globals.raw.global_mass_max = -10000.0;
    File file;
    QVERIFY(file.write(0, 1, 0, 76, 76, 76, true, false) != -1);
    QCOMPARE(globals.write(file.id), 0);
    const auto length = [&](int holder, const char *name) {
        std::size_t result = 0;
        return nc_inq_attlen(file.id, holder, name, &result) == NC_NOERR ? int(result) : -1;
    };
    const qint32 *variables = ms_file_record(file.id)->variables;
    QCOMPARE(length(NC_GLOBAL, "units"), 8); // of the time axis that the file lacks, with its NUL
    QCOMPARE(length(variables[MsVar_mass_values], "units"), 4);
    QCOMPARE(length(variables[MsVar_total_intensity], "units"), 26);
    QCOMPARE(length(NC_GLOBAL, "number_of_times_processed"), 1);
    QCOMPARE(length(NC_GLOBAL, "global_mass_min"), 1);
    QCOMPARE(length(NC_GLOBAL, "global_mass_max"), 1);
    for (const char *name : {"sample_state", "test_scan_time", "global_time_min", "experiment_title",
                             "number_of_times_calibrated", "experiment_date_time_stamp", "scale_factor"})
        QCOMPARE(length(NC_GLOBAL, name), -1);
    int attributes = 0;
    QCOMPARE(nc_inq_natts(file.id, &attributes), NC_NOERR);
    QCOMPARE(attributes,
             4 + 1 + 1 + 9 + 3 + 1 + 2); // fixed, type, processed, test codes, formats, units, masses
}

void TestRoundTrip::keepsNumbersAndEntries()
{
    File file;
    QVERIFY(file.write(MsLibrarySpectrum, 2, 0, 76, 76, 76, true, false) != -1);
    Globals globals;
    globals.admin.experiment_type = MsLibrarySpectrum; // a reader goes by the attribute
    QCOMPARE(globals.write(file.id), 0);
    Scan scan(1);
    MsLibraryRecord library;
    ms_init_per_scan(0, nullptr, &library);
    std::vector<QByteArray> texts;
    fill(ms_per_scan_table, &scan, &texts);
    fill(ms_library_table, &library, &texts);
    QCOMPARE(ms_write_per_scan(file.id, &scan, &library), -1); // no entry_index
    library.entry_index = 1;
    QByteArray name(300, 'n');
    library.entry_name = name.data();
    QCOMPARE(ms_write_per_scan(file.id, &scan, &library), 0);
    name.truncate(254);

    QVERIFY(file.readBack() != -1);
    const std::size_t end[] = {1, 254};
    char last = 'x';
    nc_get_var1_text(file.id, ms_file_record(file.id)->variables[MsVar_entry_name], end, &last);
    QCOMPARE(int(last), 0);
    Scan read(1);
    MsLibraryRecord entry;
    ms_init_per_scan(0, nullptr, &entry);
    entry.entry_index = 1;
    QCOMPARE(ms_read_per_scan(file.id, &read, &entry), 0);
    QCOMPARE(shown(ms_per_scan_table, &read), shown(ms_per_scan_table, &scan));
    library.entry_name = name.data();
    QCOMPARE(shown(ms_library_table, &entry), shown(ms_library_table, &library));
    ms_init_per_scan(1, nullptr, &entry);
    QVERIFY(!entry.CAS_name);
    QCOMPARE(entry.entry_index, -1);
    entry.entry_index = 2;
    QCOMPARE(ms_read_per_scan(file.id, nullptr, &entry), -1);
    ms_init_per_scan(1, nullptr, &entry);
}

void TestRoundTrip::keepsInstruments()
{
    for (const int count : {1, 2}) {
        File file;
        QVERIFY(file.write(0, 1, count, 76, 76, 76, true, false) != -1);
        std::vector<QByteArray> texts[2];
        MsInstrumentRecord written[2];
        for (int i = 0; i < count; ++i) {
            fill(ms_instrument_table, &written[i], &texts[i]);
            written[i].instrument_id = i == 0 ? nullptr : written[i].instrument_id;
            written[i].component_index = i;
            QCOMPARE(ms_write_instrument(file.id, &written[i]), 0);
        }
        written[0].component_index = count;
        QCOMPARE(ms_write_instrument(file.id, &written[0]), -1);
        QVERIFY(file.readBack() != -1);
        for (int i = -1; i <= count; ++i) {
            MsInstrumentRecord read;
            ms_init_instrument(0, &read);
            read.component_index = i;
            const bool readable = i < 0 ? count == 1 : i < count;
            QCOMPARE(ms_read_instrument(file.id, &read), readable ? 0 : -1);
            if (readable)
                QCOMPARE(shown(ms_instrument_table, &read), shown(ms_instrument_table, &written[qMax(i, 0)]));
            ms_init_instrument(1, &read);
        }
    }
}

void TestRoundTrip::keepsGroups()
{
    File file;
    QVERIFY(file.write(0, 1, 0, 76, 76, 76, true, false) != -1);
    QCOMPARE(ms_define_groups(file.id, 2, 0), -1);
    QCOMPARE(ms_define_groups(file.id, 2, 3), 0);
    double masses[] = {50.25, 60.5, 70.75};
    double times[] = {0.1, 0.2, 0.3};
    MsGroupRecord group = {1, 2, 17, masses, times, times};
    QCOMPARE(ms_write_group(file.id, &group), 0);
    group.group_number = 2;
    QCOMPARE(ms_write_group(file.id, &group), -1);
    group = {0, 1, 1, masses, nullptr, times};
    QCOMPARE(ms_write_group(file.id, &group), -1);

    QVERIFY(file.readBack() != -1);
    int groups = -1;
    int width = -1;
    QCOMPARE(ms_inquire_groups(file.id, &groups, &width), 0);
    QCOMPARE(groups, 2);
    QCOMPARE(width, 3);
    MsGroupRecord read;
    ms_init_group(0, &read);
    for (const int number : {-1, 2}) {
        read.group_number = number;
        QCOMPARE(ms_read_group(file.id, &read), -1);
    }
    read.group_number = 1;
    QCOMPARE(ms_read_group(file.id, &read), 0);
    QCOMPARE(read.group_mass_count, 2);
    QCOMPARE(read.group_starting_scan, 17);
    QCOMPARE(QVector<double>(read.group_masses, read.group_masses + 3), QVector<double>({50.25, 60.5, -9999.0}));
    QCOMPARE(QVector<double>(read.group_delay_times, read.group_delay_times + 3), QVector<double>({0.1, 0.2, -9999.0}));
    ms_init_group(1, &read);
    QCOMPARE(read.group_number, -9999);
}

QTEST_GUILESS_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
