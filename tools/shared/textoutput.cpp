#include "textoutput.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr std::size_t longestNumber = 40;   // with an exponent where it is long
constexpr std::size_t longestDecimal = 400; // a double without an exponent

// Between these, a number without an exponent is as short as one with it, and easier to read.
constexpr double leastPlain = 1e-5;
constexpr double mostPlain = 1e15;

} // namespace

bool TextOutput::finish()
{
    flush();
    return !hasFailed();
}

void TextOutput::put(const char *text)
{
    put(text, std::strlen(text));
}

void TextOutput::put(const char *text, std::size_t count)
{
    while (count > 0) {
        const std::size_t part = std::min(count, bufferSize);
        std::memcpy(room(part), text, part);
        used += part;
        text += part;
        count -= part;
    }
}

template <class... Arguments> void TextOutput::number(std::size_t longest, Arguments... arguments)
{
    char *const start = room(longest);
    used += std::size_t(std::to_chars(start, start + longest, arguments...).ptr - start);
}

void TextOutput::integer(qint64 value)
{
    number(longestNumber, value);
}

void TextOutput::real(double value)
{
    const double size = std::abs(value);
    if (value == 0.0 || (size >= leastPlain && size < mostPlain))
        number(longestNumber, value, std::chars_format::fixed);
    else
        number(longestNumber, value);
}

void TextOutput::plainReal(double value)
{
    if (double(float(value)) == value)
        number(longestDecimal, float(value), std::chars_format::fixed);
    else
        number(longestDecimal, value, std::chars_format::fixed);
}

void TextOutput::flush()
{
    output.write(buffer.data(), used);
    used = 0;
}
