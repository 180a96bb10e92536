// The toolkit's routines that work on memory: types, vectors, vocabulary, time stamps; and its registry.

#include "mstoolkit.h"
#include "table.h"

#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <limits>

#include <sys/stat.h>

namespace {

using Transcoded = Table<int, int, int, double, double>; // from, to, rounding, value; result
using Marks = Table<int, QByteArray>;                    // type; the element, in little-endian order
using Stamps = Table<QVector<int>, QByteArray>;          // year to zone; the same as written

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
        const Transcoded row;
        row("cut", 77, 75, 0, -2.9, -2.0);
        row("half up", 77, 75, 1, 2.5, 3.0);
        row("below half", 76, 75, 1, 2.4, 2.0);
        row("negative moves to zero", 77, 75, 1, -1.7, -1.0);
        row("negative near zero", 77, 74, 1, -0.4, 0.0);
        row("low bits of a long", 75, 74, 1, 70000.0, 4464.0);
        row("low bits of a double", 77, 74, 0, 70000.0, 4464.0);
        row("beyond a long", 77, 75, 0, big, low);
        row("beyond, in a short", 76, 74, 0, big, 0.0);
        row("NaN", 77, 75, 1, std::nan(""), low);
        row("rounded out of range", 77, 75, 1, 2147483647.5, low);
        row("one beyond", 77, 75, 0, 2147483648.0, low);
        row("last in range", 77, 75, 0, 2147483647.9, 2147483647.0);
        row("nearest float", 75, 76, 0, 16777217.0, 16777216.0);
        row("sign of a short", 74, 75, 0, -7.0, -7.0);
        row("short to double", 74, 77, 0, -32768.0, -32768.0);
    }
    void transcodes()
    {
        const auto [from, to, rounding, value, result] = Transcoded::row();
        const QByteArray expected = vectorOf(to, result);
        QByteArray target(expected.size(), 0x55);
        ms_transcode_vector(vectorOf(from, value).constData(), from, 2, target.data(), to, rounding);
        QCOMPARE(target.toHex(), expected.toHex());
    }

    void transcodesNothing()
    {
        const qint32 bits = 0x7fc12345; // a NaN with a message
        float source;
        std::memcpy(&source, &bits, sizeof source);
        qint32 target = 1;
        ms_transcode_vector(&source, 76, 0, &target, 76, 0);
        ms_transcode_vector(&source, 73, 1, &target, 76, 0);
        ms_transcode_vector(&source, 76, 1, &target, 78, 0);
        ms_transcode_vector(nullptr, 76, 1, &target, 76, 0);
        ms_transcode_vector(&source, 76, 1, nullptr, 76, 0);
        QCOMPARE(target, 1);
        ms_transcode_vector(&source, 76, 1, &target, 76, 1);
        QCOMPARE(target, bits);
    }

    void marksMissing_data()
    {
        const Marks row;
        row("byte", NC_BYTE, "\xff");
        row("char", NC_CHAR, "");
        row("short", NC_SHORT, "\xf1\xd8");
        row("long", NC_LONG, "\xf1\xd8\xff\xff");
        row("float", NC_FLOAT, QByteArray::fromHex("003c1cc6"));
        row("double", NC_DOUBLE, QByteArray::fromHex("000000008087c3c0"));
        row("unknown", 12, "");
    }
    void marksMissing()
    {
        const auto [type, bytes] = Marks::row();
        alignas(8) char array[32];
        std::memset(array, 0x55, sizeof array);
        ms_set_missing(type, array, 2);
        QByteArray expected(sizeof array, 0x55);
        expected.replace(2 * bytes.size(), bytes.size(), bytes);
        QCOMPARE(QByteArray(array, sizeof array), expected);
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
        QCOMPARE(ms_format_of_nc_type(NC_CHAR, 75), 75);
        QCOMPARE(ms_format_of_nc_type(NC_DOUBLE, 75), 77);
        QCOMPARE(ms_nc_type_of_format(73, 3), 3);
        QCOMPARE(ms_nc_type_of_format(76, 3), int(NC_FLOAT));
    }

    void knowsItsVocabulary()
    {
        QSet<int> codes;
        for (const MsVocabularyRow &row : ms_vocabulary) {
            QCOMPARE(ms_enum_code(QByteArray(row.text).toUpper().constData()), row.code);
            QCOMPARE(ms_enum_text(row.code), row.text);
            codes.insert(row.code);
        }
        QCOMPARE(codes.size(), 90);
        QVERIFY(!ms_enum_text(-1) && !ms_enum_text(90));
        for (const char *text : {"Gas ", "Ga", "", "zz", "\xe9lectron", static_cast<const char *>(nullptr)})
            QCOMPARE(ms_enum_code(text), -1);
        QCOMPARE(ms_enum_code("m/z"), 78);
        QCOMPARE(ms_enum_code("seconds"), MsSeconds);
        QCOMPARE(ms_dash_name("_2_byte_string"), QByteArray("-2-byte-string"));
    }

    void turnsStamps_data()
    {
        const Stamps row;
        row("20220426135442-0500", {2022, 4, 26, 13, 54, 42, -500}, "20220426135442-0500");
        row("19991231235959-0130", {1999, 12, 31, 23, 59, 59, -130}, "19991231235959-0130");
        row("00010203040506+0000", {1, 2, 3, 4, 5, 6, 0}, "00010203040506+0000");
        row("20220426135442+0100 and more", {2022, 4, 26, 13, 54, 42, 100}, "20220426135442+0100");
        row("20220426135442 0100", {2022, 4, 26, 13, 54, 42, 100}, "20220426135442+0100");
        row("2022042613541a+0100", {2022, 4, 26, 13, 54, 59, 100}, "20220426135459+0100"); // no digit
    }
    void turnsStamps()
    {
        const auto [numbers, written] = Stamps::row();
        QByteArray text = QTest::currentDataTag();
        MsTimestamp stamp = {text.data(), 0, 0, 0, 0, 0, 0, 0};
        QCOMPARE(ms_timestamp(0, &stamp), 0);
        QCOMPARE((QVector<int>{stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second, stamp.zone}),
                 numbers);
        QCOMPARE(ms_timestamp(1, &stamp), 0);
        QCOMPARE(QByteArray(stamp.text), written);
        ms_free(stamp.text);
    }

    void refusesStamps()
    {
        char text[] = "20220426135442-050";
        MsTimestamp stamp = {text, 1, 2, 3, 4, 5, 6, 7};
        QCOMPARE(ms_timestamp(0, &stamp), -1);
        QCOMPARE(stamp.year, 1);
        stamp.text = nullptr;
        QCOMPARE(ms_timestamp(0, &stamp), -1);
        QCOMPARE(ms_timestamp(1, nullptr), -1);
        QCOMPARE(ms_digits_to_int(nullptr, 0, 2), -1);
        QCOMPARE(ms_int_to_digits(nullptr, 0, 2, 1), -1);
    }

    void keepsToItsDigits()
    {
        char text[] = "xxxxxxxx";
        QCOMPARE(ms_int_to_digits(text, 1, 2, -12345), 0);
        QCOMPARE(ms_int_to_digits(text, 5, 2, std::numeric_limits<qint32>::min()), 0);
        QCOMPARE(text, "x45xx48x");
        QCOMPARE(ms_digits_to_int("2022", 0, 2), 20);
        QCOMPARE(ms_digits_to_int("2022", 2, 0), 0);
        QCOMPARE(ms_digits_to_int("1 ", 0, 2), -6);
    }

    void keepsOneRecordAnId()
    {
        const int id = 123456;
        QVERIFY(!ms_file_record(id));
        QCOMPARE(ms_register_file(id), 0);
        MsFileRecord *record = ms_file_record(id);
        QCOMPARE(record->mass_format, int(MsShortFormat));
        QCOMPARE(record->intensity_format, int(MsLongFormat));
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
        QCOMPARE(ms_close(-1), -1);
        QCOMPARE(ms_close(77), -1);
        QCOMPARE(ms_open_read(nullptr), -1);
        QCOMPARE(ms_open_read(""), -1);
        QCOMPARE(ms_open_write("", 0, 1, 0, 76, 76, 76, 1, 0), -1);

        QTemporaryDir folder;
        const QByteArray path = folder.filePath(QStringLiteral("x.cdf")).toLatin1();
        QCOMPARE(mkfifo((path + "p").constData(), 0600), 0);
        QCOMPARE(ms_open_read((path + "p").constData()), -1);                     // doesn't wait for a writer
        QCOMPARE(ms_open_write(path.constData(), 0, 0, 0, 76, 76, 76, 1, 0), -1); // no scans
        QCOMPARE(ms_open_write(path.constData(), 0, 1, 0, 76, 76, 76, 0, 0), -1); // no axis
        int id = -1;
        QCOMPARE(nc_create(path.constData(), NC_CLOBBER, &id), NC_NOERR); // the id of the two that failed
        QVERIFY(!ms_file_record(id));
        nc_close(id);
        QVERIFY(QDir::setCurrent(folder.path()));
        id = ms_open_write(" blank.cdf", 0, 1, 0, 76, 76, 76, 1, 0); // netCDF would leave the blank out
        QVERIFY(id != -1 && QFile::exists(QStringLiteral(" blank.cdf")));
        QCOMPARE(ms_file_record(id)->variables[MsVar_time_values], -1);
        QCOMPARE(ms_define_variables(id, 0, 76, 76, 76, 1, 0), -1); // not in define mode any more
        QCOMPARE(ms_close(id), 0);
        QCOMPARE(ms_close(id), -1);
    }
};

QTEST_GUILESS_MAIN(TestToolkit)
#include "tst_toolkit.moc"
