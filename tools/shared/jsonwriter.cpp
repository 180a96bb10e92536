#include "jsonwriter.h"

#include "dvheader.h"
#include "namecodec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t bufferSize = 1 << 20;
// Room for any number, with what stands around it.
constexpr std::size_t numberSize = 40;

} // namespace

JsonWriter::JsonWriter() : buffer(bufferSize)
{
}

bool JsonWriter::open(const QString &name)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    file.setFileName(name);
    const bool isOpen = name == QLatin1String("-") ? file.open(stdout, mode) : file.open(mode);
    if (!isOpen)
        fail();
    return isOpen;
}

void JsonWriter::beginFile(const QString &name, const DVHeader &header, const float *table, int tableSize)
{
    put("{\"file\":");
    string(shownName(name));
    put(",\"header\":");
    headerRecord(header);
    put(",\"massTable\":");
    array(table, tableSize, [this](float mass) { real(double(mass)); });
    put(",\"scans\":[");
    firstScan = true;
}

void JsonWriter::addScan(double time, double total, int pointCount, const float *abundances,
                         const unsigned short *positions)
{
    put(firstScan ? "{\"time\":" : ",{\"time\":");
    firstScan = false;
    real(time);
    put(",\"total\":");
    real(total);
    put(",\"positions\":");
    array(positions, pointCount, [this](unsigned short position) { integer(position); });
    put(",\"abundances\":");
    array(abundances, pointCount, [this](float abundance) { real(double(abundance)); });
    put("}");
}

void JsonWriter::endFile()
{
    put("]}\n");
}

bool JsonWriter::finish()
{
    if (!file.isOpen())
        return !failed;
    flush();
    file.close();
    if (!failed && file.error() != QFileDevice::NoError)
        fail();
    return !failed;
}

void JsonWriter::headerRecord(const DVHeader &header)
{
    const auto number = [&](const char *key, DVHeader::Value value, auto write) {
        put(key);
        header.isSet(value) ? write() : put("null");
    };
    // clang-format off
    number("{\"scanCount\":",           DVHeader::NbScans,     [&] { integer(header.getNbScans()); });
    number(",\"modulation\":",          DVHeader::Modulation,  [&] { real(double(header.getModulation())); });
    number(",\"abundanceBits\":",       DVHeader::NbBitsAbund, [&] { integer(header.getNbBitsAbund()); });
    number(",\"abundanceCoefficient\":", DVHeader::CoeffAbund, [&] { integer(header.getCoeffAbund()); });
    number(",\"date\":",                DVHeader::Date,        [&] { integer(header.getDate()); });
    put(",\"device\":");
    latin1(header.getDevice());
    put(",\"experimentName\":");
    latin1(header.getExpName());
    put(",\"retentionUnit\":");
    string(header.getRetentionUnit());
    number(",\"runLength\":",        DVHeader::RunTimeLength,    [&] { real(header.getRunTimeLength()); });
    number(",\"delay\":",            DVHeader::Delay,            [&] { real(header.getDelay()); });
    number(",\"samplingInterval\":", DVHeader::SamplingInterval, [&] { real(header.getSamplingInterval()); });
    number(",\"detectorType\":",     DVHeader::DetectorType,     [&] { integer(header.getDetectorType()); });
    // clang-format on
    put("}");
}

template <class Number, class Write> void JsonWriter::array(const Number *values, int count, Write write)
{
    put("[");
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            room(1);
            character(',');
        }
        write(values[i]);
    }
    put("]");
}

void JsonWriter::integer(qint64 value)
{
    room(numberSize);
    char *const start = buffer.data() + used;
    used += std::size_t(std::to_chars(start, start + numberSize, value).ptr - start);
}

void JsonWriter::real(double value)
{
    if (std::isnan(value))
        return put("null");
    if (std::isinf(value)) // JSON has no infinity; this reads back as one
        return put(value > 0 ? "1e999" : "-1e999");

    room(numberSize);
    char *const start = buffer.data() + used;
    char *end = std::to_chars(start, start + numberSize, value).ptr;
    // A reader takes a number without point and exponent for a whole one, which has no -0.
    if (std::none_of(start, end, [](char one) { return one == '.' || one == 'e'; })) {
        *end++ = '.';
        *end++ = '0';
    }
    used += std::size_t(end - start);
}

void JsonWriter::latin1(const char *text)
{
    text ? string(QString::fromLatin1(text)) : put("null");
}

void JsonWriter::string(const QString &text)
{
    put("\"");
    for (const char one : text.toUtf8()) {
        room(numberSize);
        const auto code = static_cast<unsigned char>(one);
        if (code < 0x20) {
            constexpr char digits[] = "0123456789abcdef";
            put("\\u00");
            character(digits[code >> 4]);
            character(digits[code & 15]);
            continue;
        }
        if (one == '"' || one == '\\')
            character('\\');
        character(one);
    }
    put("\"");
}

void JsonWriter::put(const char *text)
{
    const std::size_t count = std::strlen(text);
    room(count);
    std::memcpy(buffer.data() + used, text, count);
    used += count;
}

void JsonWriter::room(std::size_t count)
{
    if (buffer.size() - used < count)
        flush();
}

void JsonWriter::flush()
{
    const auto size = qint64(used);
    used = 0;
    if (!failed && file.write(buffer.data(), size) != size)
        fail();
}

void JsonWriter::fail()
{
    failed = true;
    error = file.errorString();
}
