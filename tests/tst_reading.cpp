// What the toolkit makes of files of each kind, but for their scans.

#include "openfixture.h"
#include "rows.h"

#include <QTemporaryDir>

namespace {

constexpr int missing = -9999;

// By their names; null for none of the vocabulary.
struct Units {
    const char *masses;
    const char *times;
    const char *intensities;
};

} // namespace

class TestReading : public QObject, private OpenFixture
{
    Q_OBJECT

    const MsFileRecord &recordOf(const char *name)
    {
        open(name);
        return *file.record();
    }
    MsGlobals globalsOf(const char *name)
    {
        open(name);
        return file.globals();
    }

private slots:
    void init() { messages.clear(); }

    // What an import takes of these records is compared with the independent reading, too.
    void readsGlobalRecords()
    {
        const MsGlobals plain = globalsOf("no-attributes");
        QVERIFY(plain.isRead() && !plain.admin.operator_name && !plain.admin.error_log);
        QCOMPARE(plain.admin.number_of_times_processed, missing);
        QCOMPARE(plain.admin.instrument_count, -1);
        QCOMPARE(plain.raw.mass_scale_factor, double(missing));
        QCOMPARE(plain.raw.raw_data_uniform_sampling_flag, float(missing));
        QCOMPARE(ms_enum_text(plain.admin.experiment_type), "Centroided Mass Spectrum");
        QCOMPARE(plain.raw.raw_data_mass_format, int(MsShortFormat)); // as the absent attribute says
        QCOMPARE(plain.raw.scan_count, 3);
        QVERIFY(plain.raw.has_mass_values && !plain.raw.has_time_values);

        QCOMPARE(globalsOf("instruments").admin.instrument_count, 2);
        QCOMPARE(globalsOf("empty-attributes").admin.experiment_type, -1);
        QCOMPARE(globalsOf("no-scan-number").raw.scan_count, 6);
        for (const char *refused : {"error-log-rank-1", "int64-attribute"}) {
            const MsGlobals begun = globalsOf(refused); // up to the sizes
            QVERIFY(!begun.isRead() && begun.admin.instrument_count == 0 && begun.raw.scan_count == 0);
        }
    }

    void readsAttributeTexts()
    {
        const MsGlobals texts = globalsOf("text-attributes");
        QCOMPARE(texts.admin.experiment_title, "Caf\xe9 ??????");
        QCOMPARE(texts.admin.source_file_format, "one");
        QCOMPARE(texts.admin.operator_name, "trailing  ");
        QCOMPARE(texts.admin.dataset_origin, "bad ? byte");
        QCOMPARE(texts.admin.dataset_owner, QByteArray("0123456789").repeated(30).constData());
        QCOMPARE(globalsOf("empty-attributes").admin.experiment_title, "");
        QCOMPARE(globalsOf("error-log").admin.error_log, "second line");
        QCOMPARE(globalsOf("dashes").admin.error_log, "dashed");
        for (const char *none : {"error-log-numeric", "string-width-0", "gigantic-text"}) {
            const MsGlobals globals = globalsOf(none);
            QVERIFY(globals.isRead() && !globals.admin.error_log);
        }
    }

    void readsUnits_data()
    {
        const char *masses = "M/Z";
        const char *times = "Seconds";
        const char *intensities = "Arbitrary Intensity Units";
        const Rows<Units> row;
        row("no-attributes") = {masses, times, intensities};
        row("units-numeric") = {masses, times, intensities};
        row("empty-attributes") = {masses, nullptr, intensities};
        row("time-units") = {masses, "Arbitrary Time Units", intensities};
        row("units-of-another-family") = {masses, "Linear", intensities};
    }
    void readsUnits()
    {
        const Units &row = Rows<Units>::current();
        const MsGlobals globals = globalsOf(QTest::currentDataTag());
        QCOMPARE(ms_enum_text(globals.raw.mass_units), row.masses);
        QCOMPARE(ms_enum_text(globals.raw.time_units), row.times);
        QCOMPARE(ms_enum_text(globals.raw.intensity_units), row.intensities);
    }

    void convertsAttributes()
    {
        QCOMPARE(globalsOf("dashes").admin.number_of_times_processed, 3);
        QCOMPARE(globalsOf("several-numbers").admin.number_of_times_processed, 3);
        QCOMPARE(globalsOf("several-numbers").admin.experiment_title, "12");
        messages.clear();
        const MsGlobals wrong = globalsOf("wrong-attribute-types");
        QCOMPARE(wrong.admin.experiment_title, "-12");
        QCOMPARE(wrong.admin.source_file_format, "0.10000000149011612");
        QCOMPARE(wrong.admin.operator_name, "-7");
        QCOMPARE(wrong.admin.dataset_owner, "0.1");
        QCOMPARE(wrong.admin.number_of_times_processed, 3);
        QCOMPARE(wrong.admin.number_of_times_calibrated, 3);
        QCOMPARE(wrong.raw.intensity_add_offset, double(missing));
        QCOMPARE(wrong.raw.raw_data_uniform_sampling_flag, 1.0f);
        QCOMPARE(wrong.raw.global_mass_min, 100.0);
        QCOMPARE(messages.filter("W Data type mismatch for attribute ").size(), 12);
        QCOMPARE(messages.at(3), QStringLiteral("W Data type mismatch for attribute dataset_owner"));
    }

    void warnsOfMandatoryAttributes()
    {
        open("no-attributes");
        file.globals();
        QStringList expected;
        for (const char *name : {"dataset-completeness", "ms-template-revision", "netcdf-revision",
                                 "netcdf-file-date-time-stamp", "experiment-date-time-stamp"})
            expected += QStringLiteral("W Mandatory attribute %1 is missing from file").arg(name);
        QCOMPARE(messages, expected);
        open("error-log-rank-1");
        file.globals();
        QCOMPARE(messages.last(), QStringLiteral("E Size type mismatch while loading error_log"));
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
        QVERIFY(recordOf("dashes").dimensions[MsDim_point_number].id != -1);
        QVERIFY(recordOf("dashes").variables[MsVar_scan_acquisition_time] != -1);
        QVERIFY(recordOf("no-attributes").variables[MsVar_scan_acquisition_time] != -1);
        QVERIFY(recordOf("scan-number-dashed-only").dimensions[MsDim_scan_number].id != -1);
    }

    // The formats of masses and intensities decide what an import reads, which is compared elsewhere.
    void knowsWhatAFileHas()
    {
        const MsFileRecord plain = recordOf("plain");
        QCOMPARE(plain.time_format, int(MsFloatFormat));
        QVERIFY(plain.has_mass_values && plain.has_time_values);
        QCOMPARE(plain.dimensions[MsDim_32_byte_string].size, 32);
        QCOMPARE(plain.dimensions[MsDim_scan_number].size, 5);
        QCOMPARE(plain.dimensions[MsDim_instrument_number].size, 1);
        const MsFileRecord bare = recordOf("no-attributes");
        QCOMPARE(bare.time_format, int(MsShortFormat));
        QVERIFY(bare.has_mass_values && !bare.has_time_values);
        QCOMPARE(bare.dimensions[MsDim_128_byte_string].size, 128);
        QCOMPARE(bare.dimensions[MsDim_instrument_number].size, 0);
        QCOMPARE(recordOf("no-intensities").intensity_format, int(MsLongFormat));
        QCOMPARE(recordOf("instruments").dimensions[MsDim_32_byte_string].size, 40);
        const std::pair<const char *, const char *> types[] = {{"plain", "Centroided Mass Spectrum"},
                                                               {"continuum", "Continuum Mass Spectrum"},
                                                               {"library", "Library Mass Spectrum"},
                                                               {"experiment-type-of-another-family", "Seconds"}};
        for (const auto &[name, type] : types) {
            QCOMPARE(ms_enum_text(recordOf(name).experiment_type), type);
            QCOMPARE(ms_enum_text(globalsOf(name).admin.experiment_type), type);
        }
    }

    void readsTexts()
    {
        open("instruments");
        const int name = file.record()->variables[MsVar_instrument_name];
        const auto text = [&](int row, int column, int width) {
            const OwnedText read(ms_read_string_variable(file.id(), name, row, column, width));
            return QByteArray(read ? read.get() : "null");
        };
        const std::pair<QByteArray, QByteArray> texts[] = {
            {text(0, -1, 40), "Detector"}, {text(0, -1, 5), "Dete"},    // the last byte is the terminator's
            {text(0, 2, 5), "tect"},       {text(0, -1, 1), "null"},    // no byte
            {text(0, -1, 41), "null"},     {text(0, 30, 11), "null"},   // beyond the width
            {text(2, -1, 40), "null"},     {text(-1, -1, 40), "null"}}; // beyond the rows, or none named
        for (const auto &[read, expected] : texts)
            QCOMPARE(read, expected);
        QVERIFY(!ms_read_string_variable(file.id(), file.record()->variables[MsVar_mass_values], -1, -1, 2));
        QCOMPARE(ms_write_string_variable(file.id(), name, 0, -1, 0, "x"), -1);
        QCOMPARE(ms_read_enum_attribute(file.id(), NC_GLOBAL, nullptr), -1);
    }

    // What is right is read back and shown elsewhere.
    void readsGroups()
    {
        const QVector<double> none(5, missing);
        open("groups-without-count");
        const MsGroup uncounted = file.group(0);
        QVERIFY(uncounted.isRead());
        QCOMPARE(uncounted.group_mass_count, missing);
        QCOMPARE(numbersOf({uncounted.group_masses, MsDoubleFormat, 5}), none);
        open("groups-no-masses");
        const MsGroup empty = file.group(0);
        QVERIFY(empty.isRead() && empty.group_masses && empty.group_starting_scan == 3);
        open("groups-rank-1");
        const MsGroup refused = file.group(0);
        QVERIFY(!refused.isRead() && !refused.group_masses && refused.group_mass_count == 0);
        open("no-attributes");
        QCOMPARE(file.groupCount(), 0);
        QCOMPARE(file.group(0).group_mass_count, missing);
        open("groups");
        QCOMPARE(numbersOf({file.group(0).group_delay_times, MsDoubleFormat, 5}), none);
        QCOMPARE(file.group(0).samplingTimes().toVector(), (std::vector<double>{0.1f, 0.2f, 0.3f}));
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
        QCOMPARE(file.instrument(0).instrument_id, "123456789012345678901234567890123456789");
        QVERIFY(file.instrument(1).isRead() && !file.instrument(1).instrument_id);
        for (const int component : {-1, 2})
            QVERIFY(!file.instrument(component).isRead() && !file.instrument(component).instrument_name);
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
        QCOMPARE(file.entry(0).boiling_point, 80.1f);
        QVERIFY(file.entry(1).isRead() && !file.entry(1).entry_name);
        QCOMPARE(file.entry(1).entry_number, missing);
        QCOMPARE(file.entry(2).CAS_number, 108883);
        QVERIFY(!file.entry(-1).isRead() && !file.entry(3).isRead());
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
