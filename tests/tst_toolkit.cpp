// The toolkit's routines that work on memory: types, vectors, vocabulary, time stamps; and its registry.

#include "mstoolkit.h"
#include "openfixture.h"
#include "rows.h"

#include <QScopeGuard>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <limits>

#include <sys/stat.h>

namespace {

struct Transcoded {
    MsDataFormat from;
    MsDataFormat to;
    bool rounded;
    double value;
    double result;
};

struct Stamp {
    QVector<int> numbers; // year to second, and zone
    QByteArray written;
};

// A vector of two equal elements of a format, and the marked place of a third.
QByteArray vectorOf(int format, double value)
{
    const auto bytesOf = [](auto element) {
        const QByteArray bytes(reinterpret_cast<const char *>(&element), sizeof element);
        return bytes + bytes + QByteArray(sizeof element, 0x55);
    };
    return format == MsShortFormat ? bytesOf(qint16(value))
        : format == MsLongFormat   ? bytesOf(qint32(value))
        : format == MsFloatFormat  ? bytesOf(float(value))
                                   : bytesOf(value);
}

} // namespace

class TestToolkit : public QObject
{
    Q_OBJECT

private slots:
    void transcodes_data()
    {
        const double big = 3e9;
        const double low = std::numeric_limits<qint32>::min();
        const Rows<Transcoded> row;
        row("cut") = {MsDoubleFormat, MsLongFormat, false, -2.9, -2.0};
        row("half up") = {MsDoubleFormat, MsLongFormat, true, 2.5, 3.0};
        row("negative moves to zero") = {MsDoubleFormat, MsLongFormat, true, -1.7, -1.0};
        row("negative near zero") = {MsDoubleFormat, MsShortFormat, true, -0.4, 0.0};
        row("low bits of a long") = {MsLongFormat, MsShortFormat, true, 70000.0, 4464.0};
        row("low bits of a double") = {MsDoubleFormat, MsShortFormat, false, 70000.0, 4464.0};
        row("beyond a long") = {MsDoubleFormat, MsLongFormat, false, big, low};
        row("beyond, in a short") = {MsFloatFormat, MsShortFormat, false, big, 0.0};
        row("NaN") = {MsDoubleFormat, MsLongFormat, true, std::nan(""), low};
        row("rounded out of range") = {MsDoubleFormat, MsLongFormat, true, 2147483647.5, low};
        row("one beyond") = {MsDoubleFormat, MsLongFormat, false, 2147483648.0, low};
        row("nearest float") = {MsLongFormat, MsFloatFormat, false, 16777217.0, 16777216.0};
    }
    void transcodes()
    {
        const Transcoded &row = Rows<Transcoded>::current();
        const QByteArray expected = vectorOf(row.to, row.result);
        QByteArray target(expected.size(), 0x55);
        ms_transcode_vector(vectorOf(row.from, row.value).constData(), row.from, 2, target.data(), row.to, row.rounded);
        QCOMPARE(target.toHex(), expected.toHex());
    }

    void transcodesNothing()
    {
        const qint32 bits = 0x7fc12345; // a NaN with a message
        float source;
        std::memcpy(&source, &bits, sizeof source);
        qint32 target = 1;
        ms_transcode_vector(&source, MsFloatFormat, 0, &target, MsFloatFormat, 0);
        ms_transcode_vector(&source, 73, 1, &target, 78, 0);
        ms_transcode_vector(nullptr, MsFloatFormat, 1, &target, MsFloatFormat, 0);
        ms_transcode_vector(&source, MsFloatFormat, 1, nullptr, MsFloatFormat, 0);
        QCOMPARE(target, 1);
        ms_transcode_vector(&source, MsFloatFormat, 1, &target, MsFloatFormat, 1);
        QCOMPARE(target, bits);
    }

    void marksMissing()
    {
        const std::pair<int, QByteArray> elements[] = {// in little-endian order
                                                       {NC_BYTE, "\xff"},
                                                       {NC_CHAR, ""},
                                                       {NC_SHORT, "\xf1\xd8"},
                                                       {NC_LONG, "\xf1\xd8\xff\xff"},
                                                       {NC_FLOAT, QByteArray::fromHex("003c1cc6")},
                                                       {NC_DOUBLE, QByteArray::fromHex("000000008087c3c0")},
                                                       {NC_STRING, ""}};
        for (const auto &[type, element] : elements) {
            alignas(8) char array[32] = {};
            ms_set_missing(type, array, 2);
            const QByteArray expected = QByteArray(2 * element.size(), '\0') + element;
            QCOMPARE(QByteArray(array, sizeof array), expected.leftJustified(sizeof array, '\0'));
        }
    }

    void allocatesWhatFits()
    {
        for (const int type : {NC_BYTE, NC_CHAR, NC_NAT, NC_STRING})
            QVERIFY(!ms_alloc_array(5, type));
        QVERIFY(!ms_alloc_array(0x40000000, NC_FLOAT)); // one byte more than 32 bits count
        QVERIFY(!ms_alloc_array(0x80000000, NC_SHORT));
        auto *array = static_cast<double *>(ms_alloc_array(5, NC_DOUBLE));
        array[4] = 1.0; // the sanitizer's to judge
        ms_free(array);
        QCOMPARE(ms_format_of_nc_type(NC_CHAR, MsLongFormat), int(MsLongFormat));
        QCOMPARE(ms_format_of_nc_type(NC_DOUBLE, MsLongFormat), int(MsDoubleFormat));
        QCOMPARE(ms_nc_type_of_format(73, 3), 3);
        QCOMPARE(ms_nc_type_of_format(MsFloatFormat, 3), int(NC_FLOAT));
    }

    void knowsItsVocabulary()
    {
        QSet<int> codes;
        for (const MsVocabularyRow &row : ms_vocabulary) {
            QCOMPARE(ms_enum_code(QByteArray(row.text).toUpper().constData()), row.code);
            QCOMPARE(ms_enum_text(row.code), row.text);
            codes.insert(row.code);
        }
        QCOMPARE(codes.size(), ms_vocabulary.count); // each its own
        QVERIFY(!ms_enum_text(-1) && !ms_enum_text(1000));
        for (const char *text : {"Gas ", "Ga", "", "zz", "\xe9lectron", static_cast<const char *>(nullptr)})
            QCOMPARE(ms_enum_code(text), -1);
        QCOMPARE(ms_enum_code("m/z"), 78);
        QCOMPARE(ms_enum_code("seconds"), MsSeconds);
        QCOMPARE(ms_dash_name("_2_byte_string"), QByteArray("-2-byte-string"));
    }

    void turnsStamps_data()
    {
        const Rows<Stamp> row;
        row("20220426135442-0500") = {{2022, 4, 26, 13, 54, 42, -500}, "20220426135442-0500"};
        row("19991231235959-0130") = {{1999, 12, 31, 23, 59, 59, -130}, "19991231235959-0130"};
        row("00010203040506+0000") = {{1, 2, 3, 4, 5, 6, 0}, "00010203040506+0000"};
        row("20220426135442+0100 and more") = {{2022, 4, 26, 13, 54, 42, 100}, "20220426135442+0100"};
        row("20220426135442 0100") = {{2022, 4, 26, 13, 54, 42, 100}, "20220426135442+0100"};
        row("2022042613541a+0100") = {{2022, 4, 26, 13, 54, 59, 100}, "20220426135459+0100"}; // no digit
    }
    void turnsStamps()
    {
        const Stamp &row = Rows<Stamp>::current();
        QByteArray text = QTest::currentDataTag();
        MsTimestamp stamp = {text.data(), 0, 0, 0, 0, 0, 0, 0};
        QCOMPARE(ms_timestamp(0, &stamp), 0);
        QCOMPARE((QVector<int>{stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second, stamp.zone}),
                 row.numbers);
        QCOMPARE(ms_timestamp(1, &stamp), 0);
        QCOMPARE(OwnedText(stamp.text).get(), row.written.constData());
    }

    void refusesStamps()
    {
        char text[] = "20220426135442-050";
        MsTimestamp stamp = {text, 1, 2, 3, 4, 5, 6, 7};
        MsTimestamp none = {nullptr, 1, 2, 3, 4, 5, 6, 7};
        for (const int status : {ms_timestamp(0, &stamp), ms_timestamp(0, &none), ms_timestamp(1, nullptr),
                                 ms_digits_to_int(nullptr, 0, 2), ms_int_to_digits(nullptr, 0, 2, 1)})
            QCOMPARE(status, -1);
        QCOMPARE(stamp.year, 1);
    }

    void keepsToItsDigits()
    {
        char text[] = "xxxxxxxx";
        QCOMPARE(ms_int_to_digits(text, 1, 2, -12345), 0);
        QCOMPARE(ms_int_to_digits(text, 5, 2, std::numeric_limits<qint32>::min()), 0);
        QCOMPARE(text, "x45xx48x");
        QCOMPARE(ms_digits_to_int("2022", 0, 2), 20);
        QCOMPARE(ms_digits_to_int("1 ", 0, 2), -6);
    }

    void keepsOneRecordAnId()
    {
        const int id = 123456;
        QVERIFY(!ms_file_record(id));
        QCOMPARE(ms_register_file(id), 0);
        MsFileRecord *record = ms_file_record(id);
        QCOMPARE(record->mass_format, int(MsShortFormat));
        QCOMPARE(record->dimensions[MsDim_group_number].id, -1);
        QCOMPARE(record->variables[MsVar_entry_other_information], -1);
        record->mass_format = MsDoubleFormat;
        QCOMPARE(ms_register_file(id), 0);
        QCOMPARE(ms_file_record(id)->mass_format, int(MsDoubleFormat));
        QCOMPARE(ms_unregister_file(id), 0);
        QCOMPARE(ms_unregister_file(id), -1);
    }

    // As the very first call of a process, too: netCDF's older interface would end it.
    void closesWhatNeverWasOpen()
    {
        const auto openWrite = [](const char *path, int scans, int hasMasses) {
            return ms_open_write(path, 0, scans, 0, MsFloatFormat, MsFloatFormat, MsFloatFormat, hasMasses, 0);
        };
        for (const int status :
             {ms_close(-1), ms_close(77), ms_open_read(nullptr), ms_open_read(""), openWrite("", 1, 1)})
            QCOMPARE(status, -1);

        const QTemporaryDir folder;
        const auto goBack = qScopeGuard([before = QDir::currentPath()] { QDir::setCurrent(before); });
        QVERIFY(QDir::setCurrent(folder.path()));
        QCOMPARE(mkfifo("pipe.cdf", 0600), 0);
        QCOMPARE(ms_open_read("pipe.cdf"), -1); // doesn't wait for a writer
        QCOMPARE(openWrite("x.cdf", 0, 1), -1); // no scans
        QCOMPARE(openWrite("x.cdf", 1, 0), -1); // no axis
        int id = -1;
        QCOMPARE(nc_create("x.cdf", NC_CLOBBER, &id), NC_NOERR); // the id of the two that failed
        QVERIFY(!ms_file_record(id));
        nc_close(id);
        id = openWrite(" blank.cdf", 1, 1); // netCDF would leave the blank out
        QVERIFY(id != -1 && QFile::exists(QStringLiteral(" blank.cdf")));
        QCOMPARE(ms_file_record(id)->variables[MsVar_time_values], -1);
        QCOMPARE(ms_define_variables(id, 0, MsFloatFormat, MsFloatFormat, MsFloatFormat, 1, 0), -1); // too late
        QCOMPARE(ms_close(id), 0);
        QCOMPARE(ms_close(id), -1);
    }
};

QTEST_GUILESS_MAIN(TestToolkit)
#include "tst_toolkit.moc"
