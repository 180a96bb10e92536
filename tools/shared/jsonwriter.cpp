#include "jsonwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr std::size_t numberSize = 40; // the longest number has less

} // namespace

bool JsonWriter::finish()
{
    flush();
    return !hasFailed();
}

void JsonWriter::put(const char *text)
{
    const std::size_t count = std::strlen(text);
    room(count);
    std::memcpy(buffer.data() + used, text, count);
    used += count;
}

void JsonWriter::string(const QString &text)
{
    character('"');
    for (const char one : text.toUtf8()) {
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
    character('"');
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
    if (std::isinf(value)) // too large for a double, so it reads back as an infinity
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

void JsonWriter::flush()
{
    output.write(buffer.data(), used);
    used = 0;
}
