#include "agreement_p.h"

#include <algorithm>
#include <array>
#include <cstddef>

void MsAgreement::add_disagreement(qint64 scan, double claimed, double measured)
{
    constexpr std::array<double, LimitCount> limits = {exact, 1e-5, 1e-4, 1e-3, 1e-2};
    const double difference = std::abs(claimed - measured);
    const double larger = std::max(std::abs(claimed), std::abs(measured));
    std::size_t limit = Hundredth;
    while (limit > 0 && difference <= limits[limit] * larger)
        --limit;
    if (!(difference <= exact * larger))
        off[limit].add(scan);
}

MsFinding MsAgreement::off_by_more_than(Limit limit) const
{
    MsFinding all;
    for (std::size_t i = limit; i < off.size(); ++i)
        all.add(off[i]);
    return all;
}

MsFinding MsAgreement::disagreeing() const
{
    const MsFinding found = off_by_more_than(Thousandth);
    return found.count * 100 > compared ? found : MsFinding();
}

MsFinding MsAgreement::disagreeing_unlike(const MsAgreement &other) const
{
    return other.is_exact() ? off_by_more_than(Rounding) : MsFinding();
}

MsFinding MsAgreement::far_off() const
{
    return off_by_more_than(Hundredth);
}

bool MsAgreement::nearly_all_are_within(Limit limit) const
{
    constexpr qint64 enough = 5;
    return compared >= enough && off_by_more_than(limit).count * 100 <= std::max<qint64>(compared, 100);
}

MsFinding MsAgreement::odd_ones_out() const
{
    // A sum in single precision is exact up to here, and off by its rounding beyond.
    constexpr double exact_floats = 1 << 24;
    if (nearly_all_are_within(Exact))
        return off_by_more_than(largest < exact_floats ? Exact : Rounding);
    return nearly_all_are_within(Rounding) ? off_by_more_than(Little) : MsFinding();
}

bool MsAgreement::holds_where(const MsAgreement &other_fails) const
{
    return nearly_all_are_within(Rounding) && other_fails.off_by_more_than(Little).count * 2 > compared;
}
