// A sum that comes out as if its numbers were added one by one, from front to back.
//
// Each addition waits for the one before, and rounding makes the order matter. But where no addition has
// anything to round, every order has the same result, and several numbers can be added at once. Counts of
// ions, and what else is precise to some digits, are nearly always of that kind.
// Small whole numbers are added as such, in the narrow type that a file stores.
#ifndef ORDEREDSUM_H
#define ORDEREDSUM_H

#include <QtGlobal>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <type_traits>

class OrderedSum
{
public:
    double total() const { return sum; }

    void add(const double *numbers, int count)
    {
        if (!isOnGrid || count < fewest)
            return addEach(numbers, count);
        double most = 0.0;
        const double together = sumOf(numbers, count, &most);
        isOnGrid = areOnGrid(numbers, count, std::abs(sum) + most);
        if (isOnGrid)
            sum += together;
        else
            addEach(numbers, count);
    }

    // Adds numbers of any type that are whole, none of them larger than largestWhole. Returns false, and
    // adds nothing, where they aren't, and where the sum so far isn't whole or is very large.
    template <class Number> bool addWhole(const Number *numbers, int count)
    {
        constexpr double most = 4503599627370496.0; // 2 to the 52nd: the next sums are whole, too
        if (count > mostWhole || !(std::abs(sum) <= most && sum == std::trunc(sum)))
            return false;
        qint32 together = 0;
        const bool areWhole = sumWhole(numbers, count, &together);
        sum += areWhole ? together : 0;
        return areWhole;
    }

    static constexpr qint32 largestWhole = 1 << 21;

private:
    static constexpr int mostWhole = 512; // the sum of as many has to fit in 32 bits
    static constexpr int fewest = 64;     // fewer are sooner added than looked at

    // Returns whether `together` is the sum of all numbers.
    template <class Whole> static bool sumWhole(const Whole *numbers, int count, qint32 *together)
    {
        if constexpr (std::is_floating_point_v<Whole>)
            return sumWholeReals(numbers, count, together);
        quint32 result = 0;
        qint32 others = 0;
        for (int i = 0; i < count; ++i) {
            const auto bits = quint32(numbers[i]);
            result += bits;
            others |= bits + largestWhole <= 2 * quint32(largestWhole) ? 0 : 1;
        }
        *together = qint32(result);
        return others == 0;
    }

    // In a number as large as `large` the last bit is worth 1, so adding it rounds to a whole number,
    // which then stands in the lowest bits. A comparison with NaN is false.
    template <class Real> static bool sumWholeReals(const Real *numbers, int count, qint32 *together)
    {
        using Bits = std::conditional_t<std::is_same_v<Real, double>, quint64, quint32>;
        static_assert(FLT_EVAL_METHOD == 0, "sums are rounded to their type");
        constexpr Real large = std::is_same_v<Real, double> ? Real(6755399441055744.0) : Real(12582912.0);
        Bits zero;
        std::memcpy(&zero, &large, sizeof(zero));
        Bits result = 0;
        Bits others = 0;
        for (int i = 0; i < count; ++i) {
            const Real moved = numbers[i] + large;
            const bool isWhole = moved - large == numbers[i];
            const bool isSmall = std::abs(numbers[i]) <= Real(largestWhole);
            others |= bool(int(isWhole) & int(isSmall)) ? 0 : 1;
            Bits bits;
            std::memcpy(&bits, &moved, sizeof(bits));
            result += bits - zero;
        }
        *together = qint32(result);
        return others == 0;
    }

    void addEach(const double *numbers, int count)
    {
        for (int i = 0; i < count; ++i)
            sum += numbers[i];
    }

    // In several sums, which don't wait for each other; `most` becomes the sum without signs.
    static double sumOf(const double *numbers, int count, double *most)
    {
        constexpr int lanes = 16;
        double sums[lanes] = {};
        double sizes[lanes] = {};
        int i = 0;
        for (; i + lanes <= count; i += lanes) {
            for (int lane = 0; lane < lanes; ++lane) {
                sums[lane] += numbers[i + lane];
                sizes[lane] += std::abs(numbers[i + lane]);
            }
        }
        for (int lane = 0; i < count; ++i, ++lane) {
            sums[lane] += numbers[i];
            sizes[lane] += std::abs(numbers[i]);
        }
        for (int half = lanes / 2; half > 0; half /= 2) {
            for (int lane = 0; lane < half; ++lane) {
                sums[lane] += sums[lane + half];
                sizes[lane] += sizes[lane + half];
            }
        }
        *most = sizes[0];
        return sums[0];
    }

    // Whether the sum so far and all numbers are multiples of one power of two of which 2 to the 52nd are
    // more than `most`, the sum of them all without their signs. Then every sum of some of them is such a
    // multiple and no larger, and doubles hold all of these. A NaN, and what is too large, is none.
    bool areOnGrid(const double *numbers, int count, double most) const
    {
        // Next to `large` doubles lie one such power apart, as far up and down as `most` reaches. So
        // adding it rounds to a multiple.
        constexpr quint64 exponent = quint64(0x7ff) << 52;
        quint64 bits = 0;
        std::memcpy(&bits, &most, sizeof(bits));
        bits &= exponent;
        double large = 0.0;
        std::memcpy(&large, &bits, sizeof(large));
        large *= 6.0;
        qint64 others = (sum + large) - large == sum ? 0 : 1;
        for (int i = 0; i < count; ++i)
            others |= (numbers[i] + large) - large == numbers[i] ? 0 : 1;
        return others == 0;
    }

    double sum = 0.0;
    bool isOnGrid = true; // until a number wasn't
};

#endif // ORDEREDSUM_H
