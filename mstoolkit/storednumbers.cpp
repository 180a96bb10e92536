// Turning the bytes of a classic file into numbers.

#include "storednumbers_p.h"

#include "msformat.h"
#include "widevectors_p.h"

#include <QtEndian>

#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template <std::size_t width> struct Word;
template <> struct Word<1> {
    using Type = quint8;
};
template <> struct Word<2> {
    using Type = quint16;
};
template <> struct Word<4> {
    using Type = quint32;
};
template <> struct Word<8> {
    using Type = quint64;
};

// A number as it stands in a file, with the largest byte first.
template <class Stored> Stored stored_number(const unsigned char *place)
{
    using Bits = typename Word<sizeof(Stored)>::Type;
    Bits bits;
    std::memcpy(&bits, place, sizeof(bits));
    bits = qFromBigEndian(bits);
    Stored number;
    std::memcpy(&number, &bits, sizeof(number));
    return number;
}

template <class Target, class Stored> bool is_in_range(Stored number)
{
    if constexpr (std::is_floating_point_v<Target>) {
        return true;
    } else if constexpr (std::is_signed_v<Stored>) {
        return number >= std::numeric_limits<Target>::min()
            && number <= std::numeric_limits<Target>::max();
    } else {
        return number <= std::make_unsigned_t<Target>(std::numeric_limits<Target>::max());
    }
}

// Returns whether all numbers could be held.
template <class Stored, class Target>
bool convert(const unsigned char *bytes, std::size_t stride, std::size_t count, Target *target)
{
    bool held = true;
    for (std::size_t i = 0; i < count; ++i) {
        const Stored number = stored_number<Stored>(bytes + i * stride);
        if constexpr (!std::is_floating_point_v<Target> && !std::is_same_v<Stored, Target>)
            held &= is_in_range<Target>(number);
        target[i] = static_cast<Target>(number);
    }
    return held;
}

// Distances that the compiler knows make loops of whole vectors: of numbers side by side, and of masses
// and intensities in records of their own.
template <class Stored, class Target>
bool convert_usual(const unsigned char *bytes, std::size_t stride, std::size_t count, Target *target)
{
    constexpr std::size_t width = sizeof(Stored);
    if (stride == width)
        return convert<Stored>(bytes, width, count, target);
    if (stride == 2 * width)
        return convert<Stored>(bytes, 2 * width, count, target);
    return convert<Stored>(bytes, stride, count, target);
}

// Exchanges the halves of each part of `bits` bits: in 64 bits at once, with the shifts that processors
// have for whole vectors, where they have none that turns the bytes of one.
template <int bits> quint64 exchange_halves(quint64 word)
{
    constexpr quint64 low = ~quint64(0) / ((quint64(1) << bits / 2) + 1);
    return (word & low) << bits / 2 | (word >> bits / 2 & low);
}

// Turns numbers that are already where they end up.
template <class Number> void turn_in_place(Number *numbers, std::size_t count)
{
    constexpr std::size_t width = sizeof(Number);
    constexpr std::size_t at_once = sizeof(quint64) / width;
    auto *const bytes = reinterpret_cast<unsigned char *>(numbers);
    const std::size_t words = Q_BYTE_ORDER == Q_BIG_ENDIAN ? 0 : count / at_once;
    for (std::size_t i = 0; i < words; ++i) {
        quint64 word;
        std::memcpy(&word, bytes + i * sizeof(word), sizeof(word));
        if constexpr (width > 1)
            word = exchange_halves<16>(word);
        if constexpr (width > 2)
            word = exchange_halves<32>(word);
        if constexpr (width > 4)
            word = word << 32 | word >> 32;
        std::memcpy(bytes + i * sizeof(word), &word, sizeof(word));
    }
    for (std::size_t i = words * at_once; i < count; ++i)
        numbers[i] = stored_number<Number>(bytes + i * width);
}

template <class Stored, class Wide>
bool convert_from(Wide is_wide, const unsigned char *bytes, std::size_t stride, std::size_t count,
                  qint32 type, void *target)
{
    bool held = false;
    ms_with_format(ms_format_of_nc_type(type, 0), target, [&](auto *numbers) {
        using Target = std::remove_const_t<std::remove_pointer_t<decltype(numbers)>>;
        auto *const to = static_cast<Target *>(target);
        if constexpr (std::is_floating_point_v<Stored> && !std::is_floating_point_v<Target>) {
            held = false; // MsClassicBytes::can_convert has refused it
        } else if (!is_wide && std::is_same_v<Stored, Target> && bytes == target) {
            turn_in_place(to, count);
            held = true;
        } else {
            held = convert_usual<Stored>(bytes, stride, count, to);
        }
    });
    return held;
}

} // namespace

std::size_t ms_stored_width(nc_type type)
{
    switch (type) {
    case NC_BYTE:
    case NC_UBYTE:
        return 1;
    case NC_SHORT:
    case NC_USHORT:
        return 2;
    case NC_INT:
    case NC_UINT:
    case NC_FLOAT:
        return 4;
    case NC_DOUBLE:
    case NC_INT64:
    case NC_UINT64:
        return 8;
    default:
        return 0;
    }
}

bool ms_convert_stored(nc_type stored, const unsigned char *bytes, std::size_t stride, std::size_t count,
                       qint32 type, void *target)
{
    return ms_with_widest_vectors([&](auto is_wide) {
        const auto convert_as = [&](auto number) {
            return convert_from<decltype(number)>(is_wide, bytes, stride, count, type, target);
        };
        switch (stored) {
        case NC_BYTE:
            return convert_as(qint8());
        case NC_UBYTE:
            return convert_as(quint8());
        case NC_SHORT:
            return convert_as(qint16());
        case NC_USHORT:
            return convert_as(quint16());
        case NC_INT:
            return convert_as(qint32());
        case NC_UINT:
            return convert_as(quint32());
        case NC_FLOAT:
            return convert_as(float());
        case NC_DOUBLE:
            return convert_as(double());
        case NC_INT64:
            return convert_as(qint64());
        case NC_UINT64:
            return convert_as(quint64());
        default:
            return false;
        }
    });
}
