// Conversion of vectors between the data formats.

#include "mstoolkit.h"

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
void convert_all(const void *source, qint32 count, void *target, double rounding)
{
    if constexpr (std::is_same_v<Source, Target>) {
        std::memcpy(target, source, std::size_t(count) * sizeof(Source)); // keeps the bits of a NaN
    } else {
        const auto *from = static_cast<const Source *>(source);
        auto *to = static_cast<Target *>(target);
        for (qint32 i = 0; i < count; ++i)
            to[i] = convert<Source, Target>(from[i], rounding);
    }
}

template <class Source>
void convert_from(const void *source, qint32 count, void *target, qint32 target_format, double rounding)
{
    switch (target_format) {
    case MsShortFormat:
        return convert_all<Source, qint16>(source, count, target, rounding);
    case MsLongFormat:
        return convert_all<Source, qint32>(source, count, target, rounding);
    case MsFloatFormat:
        return convert_all<Source, float>(source, count, target, rounding);
    case MsDoubleFormat:
        return convert_all<Source, double>(source, count, target, rounding);
    default:
        return;
    }
}

} // namespace

void ms_transcode_vector(const void *source, qint32 source_format, qint32 count, void *target,
                         qint32 target_format, qint32 round_values)
{
    if (!source || !target || count < 1)
        return;

    const double rounding = round_values ? 0.5 : 0.0;
    switch (source_format) {
    case MsShortFormat:
        return convert_from<qint16>(source, count, target, target_format, rounding);
    case MsLongFormat:
        return convert_from<qint32>(source, count, target, target_format, rounding);
    case MsFloatFormat:
        return convert_from<float>(source, count, target, target_format, rounding);
    case MsDoubleFormat:
        return convert_from<double>(source, count, target, target_format, rounding);
    default:
        return;
    }
}
