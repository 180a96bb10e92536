// Date-time stamps of the template.

#include "types_p.h"

#include <cstring>

namespace {

struct StampRow {
    qint32 MsTimestamp::*field;
    qint32 offset;
    qint32 count;
};

// clang-format off
constexpr StampRow stamp_rows[] = {
    {&MsTimestamp::year,    0, 4},
    {&MsTimestamp::month,   4, 2},
    {&MsTimestamp::day,     6, 2},
    {&MsTimestamp::hour,    8, 2},
    {&MsTimestamp::minute, 10, 2},
    {&MsTimestamp::second, 12, 2},
    {&MsTimestamp::zone,   15, 4}, // its digits; the sign stands before them
};
// clang-format on
constexpr qint32 sign_offset = 14;
constexpr std::size_t stamp_length = 19;

void numbers_to_text(MsTimestamp *stamp)
{
    stamp->text = static_cast<char *>(ms_alloc_bytes(stamp_length + 1));
    for (const StampRow &row : stamp_rows)
        ms_int_to_digits(stamp->text, row.offset, row.count, stamp->*row.field);
    stamp->text[sign_offset] = stamp->zone < 0 ? '-' : '+';
    stamp->text[stamp_length] = '\0';
}

int text_to_numbers(MsTimestamp *stamp)
{
    if (!stamp->text || strnlen(stamp->text, stamp_length) < stamp_length)
        return -1;
    for (const StampRow &row : stamp_rows)
        stamp->*row.field = ms_digits_to_int(stamp->text, row.offset, row.count);
    if (stamp->text[sign_offset] == '-')
        stamp->zone = -stamp->zone;
    return 0;
}

} // namespace

int ms_timestamp(qint32 to_text, MsTimestamp *stamp)
{
    if (!stamp)
        return -1;
    if (!to_text)
        return text_to_numbers(stamp);
    numbers_to_text(stamp);
    return 0;
}

qint32 ms_digits_to_int(const char *text, qint32 offset, qint32 count)
{
    if (!text)
        return -1;

    quint32 value = 0; // wraps, where a signed number would overflow
    for (qint32 i = 0; i < count; ++i)
        value = value * 10 + quint32(static_cast<signed char>(text[offset + i]) - '0');
    return qint32(value);
}

int ms_int_to_digits(char *text, qint32 offset, qint32 count, qint32 value)
{
    if (!text)
        return -1;

    quint32 rest = value < 0 ? 0u - quint32(value) : quint32(value);
    for (qint32 i = count - 1; i >= 0; --i) {
        text[offset + i] = char('0' + rest % 10);
        rest /= 10;
    }
    return 0;
}
