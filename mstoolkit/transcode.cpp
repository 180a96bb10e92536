// Conversion of vectors between the data formats.

#include "msformat.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace {

// Truncation toward zero to 32 bits. What doesn't fit, NaN too, becomes the most negative number: the
// comparison is written so that NaN fails it.
qint32 truncate(double value)
{
    if (!(value > -2147483649.0 && value < 2147483648.0))
        return std::numeric_limits<qint32>::min();
    return static_cast<qint32>(value);
}

template <class Source, class Target> Target convert(Source value, double rounding)
{
    if constexpr (std::is_floating_point_v<Source> && !std::is_floating_point_v<Target>)
        return static_cast<Target>(truncate(double(value) + rounding));
    else
        return static_cast<Target>(value); // from long to short: the low 16 bits
}

template <class Source, class Target>
void convert_all(const Source *source, qint32 count, Target *target, double rounding)
{
    if constexpr (std::is_same_v<Source, Target>) {
        std::memcpy(target, source, std::size_t(count) * sizeof(Source)); // keeps the bits of a NaN
    } else {
        for (qint32 i = 0; i < count; ++i)
            target[i] = convert<Source, Target>(source[i], rounding);
    }
}

} // namespace

void ms_transcode_vector(const void *source, qint32 source_format, qint32 count, void *target,
                         qint32 target_format, qint32 round_values)
{
    if (!source || !target || count < 1)
        return;

    const double rounding = round_values ? 0.5 : 0.0;
    ms_with_format(source_format, source, [&](const auto *from) {
        ms_with_format(target_format, [&](auto *type) {
            convert_all(from, count, static_cast<decltype(type)>(target), rounding);
        });
    });
}
