// Sums from front to back: to the last bit those of one addition behind the other.

#include "orderedsum.h"
#include "rows.h"
#include "widevectors_p.h"

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

struct Numbers {
    std::vector<double> part; // comes over and over again
    int count = 1000;
    int each = 1;       // how often a number comes before the next one
    double noise = 0.0; // the most that is added to the first one, in 32 binary places
};

std::vector<double> all(const Numbers &row, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<double> numbers;
    for (int i = 0; i < row.count; ++i) {
        const std::size_t place = std::size_t(i / row.each) % row.part.size();
        const double noise = place == 0 ? row.noise * double(random()) / 4294967296.0 : 0.0;
        numbers.push_back(row.part[place] + noise);
    }
    return numbers;
}

double sumInBlocks(const std::vector<double> &numbers, int block)
{
    return ms_with_widest_vectors([&](auto) {
        OrderedSum sum;
        for (std::size_t first = 0; first < numbers.size(); first += std::size_t(block))
            sum.add(numbers.data() + first, int(std::min(std::size_t(block), numbers.size() - first)));
        return sum.total();
    });
}

struct Whole {
    double most = 1.0; // of 512 numbers: 0, -1, 1, this, and again
    double before = 0.0;
    bool isAdded = true;
    int count = 512;
};

quint64 bitsOf(double number)
{
    quint64 bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    return bits;
}

} // namespace

class TestOrderedSum : public QObject
{
    Q_OBJECT

    template <class Number> void addWholes()
    {
        const Whole &row = Rows<Whole>::current();
        if (std::is_integral_v<
                Number> && !(row.most == std::trunc(row.most) && std::abs(row.most) <= double(std::numeric_limits<Number>::max())))
            return;
        std::vector<Number> numbers;
        OrderedSum sum;
        sum.add(&row.before, 1);
        double expected = row.before;
        for (int i = 0; i < row.count; ++i) {
            numbers.push_back(i % 4 == 3 ? Number(row.most) : Number(i % 4 == 1 ? -1 : i % 4 / 2));
            expected += row.isAdded ? double(numbers.back()) : 0.0;
        }
        const bool isAdded = ms_with_widest_vectors([&](auto) { return sum.addWhole(numbers.data(), row.count); });
        QCOMPARE(isAdded, row.isAdded);
        QCOMPARE(bitsOf(sum.total()), bitsOf(expected));
    }

private slots:
    void sums_data()
    {
        const double most = std::numeric_limits<double>::max();
        const Rows<Numbers> row;
        row("none") = {{1.0}, 0};
        row("counts") = {{1.0, 30000.0, 0.0, 17.0}};
        row("quarters") = {{0.25, 1000.75, 3.5}};
        row("floats of many sizes") = {{double(0.1f), double(123456.7f), double(9.9e6f)}};
        row("no common step") = {{0.1, 0.2, 0.7, 1e6 / 3.0}};
        row("noise") = {{1.0, 1e5}, 5000, 1, 1e3};
        row("ever finer") = {{std::ldexp(1.0, 53), 3.0, 0.75}, 300, 64};
        row("ever coarser") = {{0.0, 1e12}, 300, 64, 1.0};
        row("just too fine") = {{std::ldexp(1.0, 52), 1.0, 1.0, 0.5}};
        row("up to the last bit") = {{std::ldexp(1.0, 43) - 1.0, 1.0}, 1024};
        row("negative zeros") = {{-0.0}};
        row("negative") = {{-5.0, 7.0, -1000.0}};
        row("large ones that cancel") = {{1e17, 1.0, -1e17, 3.0}};
        row("smallest") = {{std::numeric_limits<double>::denorm_min(), std::ldexp(1.0, -1030)}};
        row("too large") = {{most, 1.0}};
        row("too large on the way") = {{most, most, -most, -most}};
        row("infinite") = {{1.0, std::numeric_limits<double>::infinity()}};
    }
    void sums()
    {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<double> numbers = all(Rows<Numbers>::current(), seed);
            double expected = 0.0;
            for (const double number : numbers)
                expected += number;
            for (const int block : {1, 63, 64, 100, 512})
                QCOMPARE(bitsOf(sumInBlocks(numbers, block)), bitsOf(expected));
        }
    }

    // In the types that files store, as far as these have the number.
    void wholes_data()
    {
        constexpr double most = OrderedSum::largestWhole;
        const Rows<Whole> row;
        row("counts") = {30000.0, 17.0};
        row("the largest") = {most, std::ldexp(1.0, 52)};
        row("the least") = {-most, -std::ldexp(1.0, 52)};
        row("negative zeros") = {-0.0};
        row("too large") = {most + 1.0, 0.0, false};
        row("too small") = {-most - 1.0, 0.0, false};
        row("far too large") = {1e9, 0.0, false};
        row("a fraction") = {0.5, 0.0, false};
        row("not a number") = {std::numeric_limits<double>::quiet_NaN(), 0.0, false};
        row("infinite") = {std::numeric_limits<double>::infinity(), 0.0, false};
        row("behind a fraction") = {1.0, 0.5, false};
        row("behind a very large one") = {1.0, std::ldexp(1.0, 53), false};
        row("too many") = {most, 0.0, false, 513};
    }
    void wholes()
    {
        addWholes<qint16>();
        addWholes<qint32>();
        addWholes<float>();
        addWholes<double>();
    }

    void notANumber()
    {
        std::vector<double> numbers(300, 1.0);
        numbers[200] = std::numeric_limits<double>::quiet_NaN();
        QVERIFY(std::isnan(sumInBlocks(numbers, 100)));
    }
};

QTEST_GUILESS_MAIN(TestOrderedSum)
#include "tst_orderedsum.moc"
