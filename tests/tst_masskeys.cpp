// Keys of masses: computed in blocks they are those of each mass by itself.

#include "masskeys_p.h"
#include "rows.h"
#include "widevectors_p.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

// Whole numbers and halves of the keys' grid and what lies next to them, up to the end of a key's range and
// beyond; what is no number; and numbers of all sizes.
template <class Stored> std::vector<Stored> numbersOf(double scale, double power)
{
    using Limits = std::numeric_limits<Stored>;
    std::mt19937 random(1);
    std::vector<Stored> numbers = {0, Limits::lowest(), Limits::max(), Limits::min(), Stored(-1), Stored(1)};
    const auto add = [&](double number) {
        if (!(std::fabs(number) < double(Limits::max())))
            return;
        if constexpr (std::is_floating_point_v<Stored>) {
            const Stored near = Stored(number);
            for (const Stored end : {Limits::lowest(), Limits::max()})
                numbers.push_back(std::nextafter(near, end));
        }
        numbers.push_back(Stored(number));
    };
    if constexpr (std::is_floating_point_v<Stored>)
        numbers.insert(numbers.end(),
                       {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::denorm_min()});
    for (int i = 0; i < 4000; ++i) {
        const double key = double(random() >> (random() % 32)) * (random() % 8 == 0 ? -1 : 1);
        for (const double part : {0.0, 0.5, double(random()) / 4294967296.0})
            add((key + part) / power / scale);
        add(std::ldexp(double(random()), int(random() % 200) - 100));
    }
    return numbers;
}

struct Factors {
    double scale = 1.0;
    double power = 1.0;
};

template <class Stored> void compareAll(double scale, double power)
{
    const std::vector<Stored> numbers = numbersOf<Stored>(scale, power);
    const MsMassKeys masses(scale, power);
    MsMassKeys::Block keys;
    for (std::size_t first = 0; first < numbers.size(); first += keys.size() - 1) {
        const int count = int(std::min(keys.size() - 1, numbers.size() - first));
        keys.back() = -77;
        const quint32 largest =
            ms_with_widest_vectors([&](auto) { return masses.compute(numbers.data() + first, count, &keys); });
        QCOMPARE(keys.back(), -77);
        QCOMPARE(largest, quint32(*std::max_element(keys.begin(), keys.begin() + count, [](qint32 one, qint32 other) {
                     return quint32(one) < quint32(other);
                 })));
        for (int i = 0; i < count; ++i) {
            const double number = double(numbers[first + std::size_t(i)]);
            QVERIFY2(keys[std::size_t(i)] == TMath::round(number * scale * power),
                     qPrintable(QString::number(number, 'g', 17)));
        }
    }
}

} // namespace

class TestMassKeys : public QObject
{
    Q_OBJECT

private slots:
    void blocks_data()
    {
        const Rows<Factors> row;
        row("as they are") = {1.0, 100.0};
        row("hundredths") = {0.01, 100.0};
        row("after the last decimal") = {1.0, 0.1};
        row("six decimals") = {1.0 / 3.0, 1e6};
        row("negative") = {-0.01, 100.0};
        row("zero") = {0.0, 100.0};
        row("very small") = {1e-310, 1e300};
        row("in steps of the smallest float") = {1.0, std::ldexp(1050000.49, -149)};
        row("large beyond a float") = {1e25, 1e20};
        row("large beyond a double on the way") = {1e306, 1e-306};
        row("infinite") = {std::numeric_limits<double>::infinity(), 100.0};
        row("NaN") = {std::numeric_limits<double>::quiet_NaN(), 100.0};
    }
    void blocks()
    {
        const auto [scale, power] = Rows<Factors>::current();
        compareAll<qint16>(scale, power);
        compareAll<qint32>(scale, power);
        compareAll<float>(scale, power);
        compareAll<double>(scale, power);
    }
};

QTEST_GUILESS_MAIN(TestMassKeys)
#include "tst_masskeys.moc"
