#include "jsonwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

void JsonWriter::string(const QString &text)
{
    put('"');
    for (const char one : text.toUtf8()) {
        const auto code = static_cast<unsigned char>(one);
        if (code < 0x20) {
            constexpr char digits[] = "0123456789abcdef";
            put("\\u00");
            put(digits[code >> 4]);
            put(digits[code & 15]);
            continue;
        }
        if (one == '"' || one == '\\')
            put('\\');
        put(one);
    }
    put('"');
}

void JsonWriter::real(double value)
{
    if (std::isnan(value))
        return put("null");
    if (std::isinf(value)) // too large for a double, so it reads back as an infinity
        return put(value > 0 ? "1e999" : "-1e999");

    char text[40]; // the longest number has less
    char *end = std::to_chars(text, text + sizeof(text), value).ptr;
    // A reader takes a number without point and exponent for a whole one, which has no -0.
    if (std::none_of(text, end, [](char one) { return one == '.' || one == 'e'; })) {
        *end++ = '.';
        *end++ = '0';
    }
    put(text, std::size_t(end - text));
}
