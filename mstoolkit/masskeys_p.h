// The keys of masses: masses in fixed-point form, as the census counts them and the plugin looks them up.
// Shared by both, so that a mass has the same key in both to the last bit. Not installed.
#ifndef MASSKEYS_P_H
#define MASSKEYS_P_H

#include <QtGlobal>

#include "tmath.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

// From stored numbers to keys: TMath::round of number * scale * power, in this order of multiplication.
//
// A run has millions of points, and rounding each by itself costs more than finding it in the table. So
// the keys of a block are computed several at a time, and in single precision where the numbers aren't
// doubles. Nearly all products lie so far from a half that this can't change the result. The others are
// rounded one by one.
class MsMassKeys
{
public:
    static constexpr int block_size = 512;
    using Block = std::array<qint32, block_size>;

    MsMassKeys(double mass_scale, double decimal_power) : scale(mass_scale), power(decimal_power) { }

    qint32 of(double number) const { return TMath::round(number * scale * power); }

    // Computes the keys of `count` numbers, up to block_size. Returns the largest one, where those below
    // 0 count as larger than all others: whoever has a table of keys learns whether all are in it.
    template <class Stored> quint32 compute(const Stored *numbers, int count, Block *block) const
    {
        qint32 *const keys = block->data();
        const bool is_usual = is_in_range(scale) && is_in_range(scale * power);
        quint32 largest = 0;
        if (is_usual && guess(numbers, count, keys, &largest))
            return largest;
        largest = 0;
        for (int i = 0; i < count; ++i) {
            if (!is_usual || keys[i] == uncertain)
                keys[i] = of(double(numbers[i]));
            largest = std::max(largest, quint32(keys[i]));
        }
        return largest;
    }

private:
    static constexpr qint32 uncertain = std::numeric_limits<qint32>::min();

    // Whether a product with it is as precise as its type allows, unless it is far below a half or far
    // beyond the keys. With others the exponents may get too small or too large on the way.
    static bool is_in_range(double factor) { return factor >= 1e-30 && factor <= 1e30; }

    // How products are computed and rounded. In a number as large as `large` the last bit is worth 1. So
    // adding it rounds a product to a whole number, which then stands in the lowest bits. `error` times
    // itself is more than a product can be off. It is also so much that no product counts as certain
    // which is too large for the lowest bits or for a key.
    struct Single {
        using Real = float;
        using Bits = quint32;
        static constexpr Real large = 12582912.0f; // 1.5 times 2 to the 23rd
        // Number, factor and product are rounded, each by up to a quarter of this.
        static constexpr Real error = 1.0f / (1 << 22);
        static Real product(float number, double scale, double power)
        {
            return number * float(scale * power);
        }
    };
    struct Double {
        using Real = double;
        using Bits = quint64;
        static constexpr Real large = 6755399441055744.0; // 1.5 times 2 to the 52nd
        static constexpr Real error = 1.0 / (1 << 30);    // none, but keys have 32 bits
        static Real product(double number, double scale, double power) { return number * scale * power; }
    };

    // Computes the keys that are certain; the others become `uncertain`. Returns whether all are certain.
    // Compilers make whole vectors of the loop, with SSE2 alone. A comparison with NaN is false.
    template <class Stored>
    bool guess(const Stored *numbers, int count, qint32 *keys, quint32 *largest) const
    {
        using Way = std::conditional_t<std::is_same_v<Stored, double>, Double, Single>;
        using Real = typename Way::Real;
        using Bits = typename Way::Bits;
        static_assert(FLT_EVAL_METHOD == 0, "sums are rounded to their type");
        Bits zero;
        std::memcpy(&zero, &Way::large, sizeof(zero));
        qint32 doubts = 0;
        quint32 most = 0;
        for (int i = 0; i < count; ++i) {
            const Real product = Way::product(Real(numbers[i]), scale, power);
            const Real sum = product + Way::large;
            const Real rest = product - (sum - Way::large);
            Bits bits;
            std::memcpy(&bits, &sum, sizeof(bits));
            const bool is_certain = std::fabs(rest) + std::fabs(product) * Way::error < Real(0.5);
            keys[i] = is_certain ? qint32(bits - zero) : uncertain;
            most = std::max(most, quint32(keys[i]));
            doubts |= is_certain ? 0 : -1;
        }
        *largest = most;
        return doubts == 0;
    }

    double scale;
    double power;
};

#endif // MASSKEYS_P_H
