// Private to the toolkit: how what scans claim agrees with what their points say.
#ifndef AGREEMENT_P_H
#define AGREEMENT_P_H

#include "findings_p.h"

#include <algorithm>
#include <array>
#include <cmath>

// How a number that the scans of a file claim agrees with what their points say.
class MsAgreement
{
public:
    void compare(qint64 scan, double claimed, double measured)
    {
        ++compared;
        largest = std::max(largest, std::abs(claimed));
        if (!(std::abs(claimed - measured) <= exact * std::abs(claimed))) // a NaN, too
            add_disagreement(scan, claimed, measured);
    }

    // Scans that disagree: by more than a tenth of a percent, where that is more than a hundredth of
    // them.
    MsFinding disagreeing() const;

    // Scans that disagree where nearly all others agree to the last digits, or but for rounding.
    MsFinding odd_ones_out() const;

    // Scans that disagree by more than rounding, where nearly all agree in another comparison of theirs.
    MsFinding disagreeing_unlike(const MsAgreement &other) const;

    // Scans that are off by more than a hundredth.
    MsFinding far_off() const;

    bool is_empty() const { return compared == 0; }

    // Whether nearly all scans agree, and hardly any do in another comparison of theirs.
    bool holds_where(const MsAgreement &other_fails) const;

    // Whether nearly all scans agree to the last digits.
    bool is_exact() const { return nearly_all_are_within(Exact); }

private:
    enum Limit { Exact, Rounding, Little, Thousandth, Hundredth, LimitCount };
    static constexpr double exact = 1e-9;

    bool nearly_all_are_within(Limit limit) const;
    void add_disagreement(qint64 scan, double claimed, double measured);
    MsFinding off_by_more_than(Limit limit) const;

    qint64 compared = 0;
    double largest = 0.0;                  // that was claimed
    std::array<MsFinding, LimitCount> off; // by more than each, but not the next
};

#endif // AGREEMENT_P_H
