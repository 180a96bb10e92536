// What the toolkit writes, it reads back equal.

#include "openfixture.h"
#include "records.h"
#include "rows.h"

#include <QTemporaryDir>

#include <cstring>
#include <numeric>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

// The numbers first, first + 1, ... in a format; whole in the whole formats.
std::vector<double> vectorOf(int format, int count, double first)
{
    std::vector<double> numbers(std::size_t(count), 0.0);
    std::iota(numbers.begin(), numbers.end(), first);
    std::vector<double> result(numbers.size());
    ms_transcode_vector(numbers.data(), MsDoubleFormat, count, result.data(), format, 0);
    return result;
}

template <class Row> bool isText(const Row &row)
{
    if constexpr (std::is_same_v<Row, MsAttributeRow>) {
        if (row.enumerated) // held as a code of the vocabulary
            return false;
    }
    return row.nc_type == NC_CHAR;
}

// Sets each field of a record to a value of its own, through its table.
template <class Row> void fill(const MsTable<Row> &table, void *record, std::vector<QByteArray> *texts)
{
    texts->reserve(200); // the records point into them
    int number = 100;
    for (const Row &row : table) {
        char *field = static_cast<char *>(record) + row.field;
        ++number;
        if (isText(row)) {
            QVERIFY2(!*reinterpret_cast<char **>(field), row.name); // the field of no other row
            texts->push_back(QByteArray(row.name).left(20) + QByteArray::number(number));
            *reinterpret_cast<char **>(field) = texts->back().data();
        } else if (row.nc_type == NC_CHAR) {
            *reinterpret_cast<qint32 *>(field) = number % 90;
        } else {
            const double value = number + 0.123456789;
            ms_transcode_vector(&value, MsDoubleFormat, 1, field, ms_format_of_nc_type(row.nc_type, 0), 0);
        }
    }
}

template <class Row> QByteArray bytesOf(const Row &row, const void *record)
{
    const char *field = static_cast<const char *>(record) + row.field;
    if (isText(row))
        return *reinterpret_cast<char *const *>(field);
    return QByteArray(field, row.nc_type == NC_DOUBLE ? 8 : row.nc_type == NC_SHORT ? 2 : 4);
}

template <class Row> void compare(const MsTable<Row> &table, const void *read, const void *written)
{
    for (const Row &row : table)
        QVERIFY2(bytesOf(row, read) == bytesOf(row, written), row.name);
}

} // namespace

class TestRoundTrip : public QObject, private OpenFixture
{
    Q_OBJECT

    // In place of the open file.
    bool create(const MsFileLayout &layout = MsFileLayout())
    {
        file.close();
        file = MsFile::create(path.toLatin1().constData(), layout);
        return file.isOpen();
    }
    void readBack() { openPath(path); }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("x.cdf"));

private slots:
    void init() { messages.clear(); }

    // Masses and times in one format, intensities in another.
    void keepsScans_data()
    {
        const Rows<std::pair<MsDataFormat, MsDataFormat>> formats;
        formats("short and double") = {MsShortFormat, MsDoubleFormat};
        formats("long and short") = {MsLongFormat, MsShortFormat};
        formats("float and long") = {MsFloatFormat, MsLongFormat};
        formats("double and float") = {MsDoubleFormat, MsFloatFormat};
    }
    void keepsScans()
    {
        const auto [axes, other] = Rows<std::pair<MsDataFormat, MsDataFormat>>::current();
        QVERIFY(create({MsCentroidedSpectrum, 3, 0, axes, axes, other, true, true}));
        std::vector<double> masses[3], times[3], intensities[3];
        qint32 peaks[] = {12, -3};
        qint16 values[] = {-7, 300};
        for (const int number : {1, 0, 2}) { // in any order
            MsScanDraft scan(number);
            scan.point_count = number == 2 ? 0 : 5 + number;
            scan.flag_count = 2;
            masses[number] = vectorOf(axes, scan.point_count, 1.25 + number);
            times[number] = vectorOf(axes, scan.point_count, -10.5);
            intensities[number] = vectorOf(other, scan.point_count, 100.75);
            scan.mass_values = masses[number].data();
            scan.time_values = times[number].data();
            scan.intensity_values = intensities[number].data();
            scan.flagged_peaks = peaks;
            scan.flag_values = values;
            QVERIFY(file.write(scan));
        }
        QCOMPARE(file.record()->next_point_index, 15); // an empty scan's flags aren't written

        readBack();
        for (const MsScan &scan : file) {
            QVERIFY(scan.isRead());
            const int number = scan.scan_number;
            const int points = number == 2 ? 0 : 5 + number;
            QCOMPARE(scan.point_count, points);
            QCOMPARE(scan.flag_count, 2);
            QCOMPARE(numbersOf(scan.masses()), numbersOf({masses[number].data(), axes, points}));
            QCOMPARE(numbersOf(scan.times()), numbersOf({times[number].data(), axes, points}));
            QCOMPARE(numbersOf(scan.intensities()), numbersOf({intensities[number].data(), other, points}));
            QCOMPARE(numbersOf(scan.flaggedPeaks()), numbersOf({peaks, MsLongFormat, points > 0 ? 2 : 0}));
            QCOMPARE(numbersOf(scan.flagValues()), numbersOf({values, MsShortFormat, points > 0 ? 2 : 0}));
        }
    }

    void refusesScans()
    {
        QVERIFY(create({MsCentroidedSpectrum, 2}));
        float points[] = {1, 2};
        qint32 peaks[] = {1};
        const auto status = [&](int number, void *masses, void *intensities, int flags = 0) {
            MsScanDraft scan(number);
            scan.point_count = 2;
            scan.mass_values = masses;
            scan.intensity_values = intensities;
            scan.flag_count = flags;
            scan.flagged_peaks = peaks; // but no values
            return ms_write_per_scan(file.id(), &scan, nullptr);
        };
        for (const int refused : {status(-1, points, points), status(2, points, points), status(0, points, nullptr),
                                  status(0, points, points, 1)})
            QCOMPARE(refused, -1);
        QCOMPARE(file.record()->next_point_index, 0);
        ms_file_record(file.id())->next_point_index = 2147483646;
        QCOMPARE(status(0, points, points), -1);
        ms_file_record(file.id())->next_point_index = 0;
        QCOMPARE(status(0, nullptr, points), 0); // masses stay unwritten
        QCOMPARE(file.record()->next_point_index, 2);
        QCOMPARE(ms_write_per_scan(file.id(), nullptr, nullptr), 0);
    }

    // The flags go by the vector, not by the file: here to the time axis, or nowhere.
    void keepsFlagsOfAWriterWithoutMasses()
    {
        for (const bool hasTime : {false, true}) {
            QVERIFY(create({MsCentroidedSpectrum, 1, 0, MsShortFormat, MsShortFormat, MsShortFormat, true, hasTime}));
            MsScanDraft scan(0);
            qint16 points[] = {1, 2};
            qint32 peaks[] = {70000};
            scan.point_count = 2;
            scan.flag_count = 1;
            scan.intensity_values = points;
            scan.time_values = points;
            scan.flagged_peaks = peaks;
            scan.flag_values = points;
            QCOMPARE(ms_write_per_scan(file.id(), &scan, nullptr), hasTime ? 0 : -1);
            QCOMPARE(file.record()->next_point_index, hasTime ? 3 : 2);
        }
        readBack();
        short times[3];
        QCOMPARE(nc_get_var_short(file.id(), file.record()->variables[MsVar_time_values], times), NC_NOERR);
        QCOMPARE(numbersOf({times, MsShortFormat, 3}), (QVector<double>{1, 2, 4464}));
    }

    void keepsGlobalRecords()
    {
        MsGlobalsDraft written;
        std::vector<QByteArray> texts[4];
        fill(ms_admin_table, &written.admin, &texts[0]);
        fill(ms_sample_table, &written.sample, &texts[1]);
        fill(ms_test_table, &written.test, &texts[2]);
        fill(ms_raw_table, &written.raw, &texts[3]);
        char log[] = "a line that is longer than the sixty-three characters that it can have.";
        written.admin.error_log = log;

        QVERIFY(create({0, 1, 0, MsFloatFormat, MsFloatFormat, MsFloatFormat, true, true}));
        QCOMPARE(ms_write_global(file.id(), &written.admin, &written.sample, &written.test, &written.raw), 0);
        readBack();
        MsGlobals read = file.globals();
        QVERIFY(read.isRead());
        QCOMPARE(read.admin.error_log, QByteArray(log).left(63).constData());
        QCOMPARE(read.admin.instrument_count, -1);
        QCOMPARE(read.raw.scan_count, 1);
        QCOMPARE(messages, QStringList()); // of a right file, with all attributes
        // The writer's own, which are cleared in what is written.
        const std::pair<char * MsAdminRecord::*, const char *> fixed[] = {
            {&MsAdminRecord::dataset_completeness, "C1+C2"},
            {&MsAdminRecord::ms_template_revision, "1.0.1"},
            {&MsAdminRecord::netcdf_revision, "2.3.2"},
            {&MsAdminRecord::languages, "English"}};
        for (const auto &[field, text] : fixed) {
            QVERIFY(!(written.admin.*field));
            QCOMPARE(read.admin.*field, text);
            ms_free(std::exchange(read.admin.*field, nullptr));
        }
        compare(ms_admin_table, &read.admin, &written.admin);
        compare(ms_sample_table, &read.sample, &written.sample);
        compare(ms_test_table, &read.test, &written.test);
        compare(ms_raw_table, &read.raw, &written.raw);
        ms_free(std::exchange(read.admin.error_log, nullptr));
        ms_init_global(1, &read.admin, &read.sample, &read.test, &read.raw);
        QCOMPARE(read.raw.time_units, MsSeconds); // and the end of the block frees nothing twice
    }

    void leavesOutWhatIsMissing()
    {
        MsGlobalsDraft globals;
        globals.admin.number_of_times_processed = 0;
        globals.sample.sample_state = -1;
        globals.test.test_scan_time = -9999.7f;
        globals.raw.global_mass_min = -9998.0;
        globals.raw.global_mass_max = -10000.0;
        char comments[] = "text";
        globals.test.test_comments = comments;
        QVERIFY(create());
        QVERIFY(file.write(globals));
        const auto attributesOf = [this](int holder) {
            QByteArrayList names;
            char name[NC_MAX_NAME + 1];
            while (nc_inq_attname(file.id(), holder, names.size(), name) == NC_NOERR)
                names += name;
            return names.join(' ');
        };
        const qint32 *variables = file.record()->variables;
        QCOMPARE(attributesOf(variables[MsVar_mass_values]), QByteArray("units"));
        QCOMPARE(attributesOf(variables[MsVar_total_intensity]), QByteArray("units"));
        // The units are those of the time axis that the file lacks.
        QCOMPARE(attributesOf(NC_GLOBAL),
                 QByteArray("dataset_completeness ms_template_revision netcdf_revision languages experiment_type "
                            "number_of_times_processed test_separation_type test_ms_inlet test_ionization_mode "
                            "test_ionization_polarity test_detector_type test_resolution_type test_scan_function "
                            "test_scan_direction test_scan_law test_comments raw_data_mass_format "
                            "raw_data_time_format raw_data_intensity_format units global_mass_min global_mass_max"));
        std::size_t length = 0;
        QCOMPARE(nc_inq_attlen(file.id(), NC_GLOBAL, "test_comments", &length), NC_NOERR);
        QCOMPARE(length, std::size_t(5)); // with its NUL

        ms_file_record(file.id())->variables[MsVar_error_log] = -1;
        QVERIFY(!file.write(globals));

        // So is a number without a value, also in a record that held one.
        nc_redef(file.id());
        nc_put_att_int(file.id(), NC_GLOBAL, "number_of_times_calibrated", NC_INT, 0, nullptr);
        readBack();
        MsGlobals read;
        read.admin.number_of_times_calibrated = 5;
        QCOMPARE(ms_read_global(file.id(), &read.admin, &read.sample, &read.test, &read.raw), 0);
        QCOMPARE(read.admin.number_of_times_calibrated, -9999);
    }

    void keepsNumbersAndEntries()
    {
        QVERIFY(create({MsLibrarySpectrum, 2}));
        MsGlobalsDraft globals;
        globals.admin.experiment_type = MsLibrarySpectrum; // a reader goes by the attribute
        QVERIFY(file.write(globals));
        MsScanDraft scan(1);
        MsLibraryDraft library(-1);
        std::vector<QByteArray> texts;
        fill(ms_per_scan_table, &scan, &texts);
        fill(ms_library_table, &library, &texts);
        QCOMPARE(ms_write_per_scan(file.id(), &scan, &library), -1); // no entry_index
        library.entry_index = 1;
        QByteArray name(300, 'n');
        library.entry_name = name.data();
        QVERIFY(file.write(scan, library));
        name.truncate(254);
        library.entry_name = name.data();

        readBack();
        const std::size_t end[] = {1, 254};
        char last = 'x';
        nc_get_var1_text(file.id(), file.record()->variables[MsVar_entry_name], end, &last);
        QCOMPARE(int(last), 0);
        const MsScan read = file.scan(1);
        MsLibraryEntry entry = file.entry(1);
        QVERIFY(read.isRead() && entry.isRead());
        compare(ms_per_scan_table, &read, &scan);
        compare(ms_library_table, &entry, &library);
        ms_init_per_scan(1, nullptr, &entry);
        QVERIFY(!entry.CAS_name);
        QCOMPARE(entry.entry_index, -1);
    }

    void keepsInstruments()
    {
        for (const int count : {1, 2}) {
            QVERIFY(create({MsCentroidedSpectrum, 1, count}));
            std::vector<QByteArray> texts[2];
            MsInstrumentRecord written[2] = {};
            for (int i = 0; i < count; ++i) {
                fill(ms_instrument_table, &written[i], &texts[i]);
                written[i].instrument_id = i == 0 ? nullptr : written[i].instrument_id;
                written[i].component_index = i;
                QVERIFY(file.write(written[i]));
            }
            written[0].component_index = count;
            QCOMPARE(ms_write_instrument(file.id(), &written[0]), -1);
            readBack();
            QCOMPARE(file.instruments().size(), count);
            for (const MsInstrument &read : file.instruments())
                compare(ms_instrument_table, &read, &written[read.component_index]);
            QCOMPARE(file.instrument(-1).isRead(), count == 1); // the only one
        }
    }

    // As the library would by itself; a fixed dimension doesn't grow.
    void addsTextsAlongUnlimitedDimensions()
    {
        file.close();
        QVERIFY(makeNetcdf(path, QStringLiteral("classic"),
                           "netcdf texts { dimensions: lines = UNLIMITED; width = 8;"
                           "variables: char texts(lines, width); char fixed(width); }"));
        int id = -1; // none of the toolkit's
        QCOMPARE(nc_open(path.toLatin1().constData(), NC_WRITE, &id), NC_NOERR);
        file = MsFile::adopt(id);
        QCOMPARE(ms_write_string_variable(id, 0, 2, -1, 8, "third"), 0);
        for (const int refused : {ms_write_string_variable(id, 0, 0, -1, 9, "too wide"),
                                  ms_write_string_variable(id, 1, -1, -1, 9, "too wide"),
                                  ms_write_string_variable(id, 1, 0, -1, 8, "no row")})
            QCOMPARE(refused, -1);
        std::size_t lines = 0;
        QCOMPARE(nc_inq_dimlen(id, 0, &lines), NC_NOERR);
        QCOMPARE(lines, std::size_t(3));
        QCOMPARE(OwnedText(ms_read_string_variable(id, 0, 2, -1, 8)).get(), "third");
        QVERIFY(!ms_read_string_variable(id, 0, 3, -1, 8));
    }

    void refusesUnknownFilesAndNullRecords()
    {
        QVERIFY(create({MsLibrarySpectrum, 1, 1}) && file.defineGroups(1, 1));
        MsGlobalsDraft all;
        MsScanDraft scan(0);
        MsLibraryDraft entry(0);
        MsInstrumentDraft instrument(0);
        double number = 1.0;
        MsGroupRecord group = {0, 1, 0, &number, &number, &number};
        qint32 count = 0;
        double *totals = nullptr;
        QSet<qint32> masses;
        const int none = 12345;
        for (const int status :
             {ms_read_per_scan(none, &scan, &entry), ms_read_per_scan(none, nullptr, nullptr),
              ms_read_scan_header(none, &scan), ms_write_per_scan(none, &scan, &entry),
              ms_read_mass_census(none, masses, &count, 1.0), ms_read_total_intensity(none, 1, &totals, nullptr),
              ms_define_groups(none, 1, 1), ms_define_dimensions(none, 1, 1), ms_inquire_dimensions(none),
              ms_define_variables(none, 0, MsFloatFormat, MsFloatFormat, MsFloatFormat, 1, 1),
              ms_inquire_variables(none)})
            QCOMPARE(status, -1);
        for (int null = 0; null < 5; ++null) { // of the open file, or none of an unknown one
            const int id = null == 4 ? none : file.id();
            MsAdminRecord *admin = null == 0 ? nullptr : &all.admin;
            MsSampleRecord *sample = null == 1 ? nullptr : &all.sample;
            MsTestRecord *test = null == 2 ? nullptr : &all.test;
            MsRawGlobalRecord *raw = null == 3 ? nullptr : &all.raw;
            QCOMPARE(ms_read_global(id, admin, sample, test, raw), -1);
            QCOMPARE(ms_write_global(id, admin, sample, test, raw), -1);
        }
        for (const bool isNull : {false, true}) {
            const int id = isNull ? file.id() : none;
            for (const int status :
                 {ms_read_instrument(id, isNull ? nullptr : &instrument), ms_read_group(id, isNull ? nullptr : &group),
                  ms_write_instrument(id, isNull ? nullptr : &instrument),
                  ms_write_group(id, isNull ? nullptr : &group),
                  ms_inquire_groups(id, isNull ? nullptr : &count, &count),
                  ms_inquire_groups(id, &count, isNull ? nullptr : &count)})
                QCOMPARE(status, -1);
        }
        QVERIFY(scan.scan_number == 0 && entry.entry_index == 0 && group.group_masses == &number);
        ms_init_global(0, nullptr, nullptr, nullptr, nullptr);
        ms_init_per_scan(1, nullptr, nullptr);
        ms_init_instrument(1, nullptr);
        ms_init_group(1, nullptr);

        // A failure at the very end is -1, too, which callers test for exactly.
        ms_file_record(file.id())->variables[MsVar_error_log] = -1;
        QCOMPARE(ms_write_global(file.id(), &all.admin, &all.sample, &all.test, &all.raw), -1);
    }

    void keepsGroups()
    {
        QVERIFY(create());
        QVERIFY(!file.defineGroups(2, 0) && file.defineGroups(2, 3));
        double masses[] = {50.25, 60.5, 70.75};
        double times[] = {0.1, 0.2, 0.3};
        QVERIFY(file.write(MsGroupRecord{1, 2, 17, masses, times, times}));
        QVERIFY(file.write(MsGroupRecord{0, 1000, 0, masses, times, times})); // more than the arrays have room for
        QVERIFY(!file.write(MsGroupRecord{2, 2, 17, masses, times, times}));
        QVERIFY(!file.write(MsGroupRecord{0, 1, 1, masses, nullptr, times}));
        const qint32 counts = std::exchange(ms_file_record(file.id())->variables[MsVar_group_mass_count], -1);
        QVERIFY(!file.write(MsGroupRecord{1, 2, 17, masses, times, times}));
        ms_file_record(file.id())->variables[MsVar_group_mass_count] = counts;

        readBack();
        QCOMPARE(file.groups().size(), 2);
        QCOMPARE(file.record()->dimensions[MsDim_group_max_masses].size, 3);
        QVERIFY(!file.group(-1).isRead() && !file.group(2).isRead() && file.group(2).masses().isEmpty());
        QCOMPARE(file.group(0).masses().toVector(), std::vector<double>(masses, masses + 3));
        MsGroup read = file.groups()[1];
        QVERIFY(read.isRead());
        QCOMPARE(read.group_mass_count, 2);
        QCOMPARE(read.group_starting_scan, 17);
        QCOMPARE(numbersOf({read.group_masses, MsDoubleFormat, 3}), (QVector<double>{50.25, 60.5, -9999}));
        QCOMPARE(numbersOf({read.group_sampling_times, MsDoubleFormat, 3}), (QVector<double>{0.1, 0.2, -9999}));
        QCOMPARE(read.delayTimes().toVector(), std::vector<double>({0.1, 0.2}));
        ms_init_group(1, &read);
        QCOMPARE(read.group_number, -9999);
    }
};

QTEST_GUILESS_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
