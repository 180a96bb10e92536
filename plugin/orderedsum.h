// A sum that comes out as if its numbers were added one by one, from front to back.
//
// Each addition waits for the one before, and rounding makes the order matter. But where no addition has
// anything to round, every order has the same result, and several numbers can be added at once. Counts of
// ions, and what else is precise to some digits, are nearly always of that kind.
#ifndef ORDEREDSUM_H
#define ORDEREDSUM_H

#include <QtGlobal>

#include <cmath>
#include <cstring>

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

private:
    static constexpr int fewest = 64; // fewer are sooner added than looked at

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
