// What the points of a scan say as they pass. All of it is one look at numbers that are still near the
// processor.

#include "tally_p.h"

#include "columnwalk_p.h"
#include "doubtfailure_p.h"
#include "filestate_p.h"
#include "msformat.h"
#include "widevectors_p.h"

#include <QByteArray>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

namespace {

// No whole array is as large, but a fill value in it.
constexpr double huge = 1e36;

// A whole number as wide as the elements: the compiler makes a loop of many elements at once of it.
template <class Stored>
using Flag = std::conditional_t<sizeof(Stored) == 8, qint64,
                                std::conditional_t<sizeof(Stored) == 2, qint16, qint32>>;

// In several sums, which don't wait for each other.
template <class Stored> double sum_of(const Stored *numbers, qint32 count)
{
    constexpr qint32 lanes = 8;
    double sums[lanes] = {};
    qint32 i = 0;
    for (; i + lanes <= count; i += lanes) {
        for (qint32 lane = 0; lane < lanes; ++lane)
            sums[lane] += double(numbers[i + lane]);
    }
    double rest = 0.0;
    for (; i < count; ++i)
        rest += double(numbers[i]);
    return ((sums[0] + sums[4]) + (sums[1] + sums[5])) + ((sums[2] + sums[6]) + (sums[3] + sums[7]))
        + rest;
}

// Whether none is below the one before, and none but the first or the last NaN.
template <class Stored> bool rises(const Stored *numbers, qint32 count)
{
    Flag<Stored> falls = 0;
    for (qint32 i = 1; i < count; ++i)
        falls |= Flag<Stored>(numbers[i - 1] <= numbers[i] ? 0 : 1);
    return falls == 0;
}

// Comparisons of doubles come one by one, but not the signs of their differences.
bool rises(const double *numbers, qint32 count)
{
    quint64 signs = 0;
    for (qint32 i = 1; i < count; ++i) {
        const double step = numbers[i] - numbers[i - 1];
        quint64 bits = 0;
        std::memcpy(&bits, &step, sizeof bits);
        signs |= bits;
    }
    return signs >> 63 == 0 && std::isfinite(sum_of(numbers, count));
}

template <class Stored> bool lies_within(const Stored *numbers, qint32 count, Stored least, Stored most)
{
    Flag<Stored> outside = 0;
    for (qint32 i = 0; i < count; ++i)
        outside |= Flag<Stored>(bool(int(numbers[i] >= least) & int(numbers[i] <= most)) ? 0 : 1);
    return outside == 0;
}

template <class Stored> Stored clamp_to(double number)
{
    using Limits = std::numeric_limits<Stored>;
    return Stored(std::clamp(number, double(Limits::lowest()), double(Limits::max())));
}

// Not ms_is_given: a number about as large as a fill value is no claim, and no time.
bool is_usable(double number)
{
    return std::abs(number) < huge && !ms_is_missing(number); // and no NaN
}

// A range that two numbers of the file claim, from either end. None where both are 0: some writers leave
// them so.
MsNumberRange claimed_range(double one, double other)
{
    MsNumberRange range;
    if (is_usable(one) && is_usable(other) && (one != 0.0 || other != 0.0))
        range = {std::min(one, other), std::max(one, other)};
    return range;
}

bool is_usable_scale(double scale)
{
    return scale > 0.0 && std::isfinite(scale);
}

// With room for rounding, and as stored or as scaled: the template doesn't say which of them the range is
// of.
MsNumberRange stored_range(const MsNumberRange &claimed, double scale, double offset)
{
    constexpr double slack = 1e-3;
    if (!claimed.is_known() || !is_usable_scale(scale) || !std::isfinite(offset))
        return {};
    const double room = slack * std::max(std::abs(claimed.least), std::abs(claimed.most));
    const double least = claimed.least - room;
    const double most = claimed.most + room;
    return {std::min(least, (least - offset) / scale), std::max(most, (most - offset) / scale)};
}

// What can't be right about a mass as it is stored; Count for nothing.
MsDoubtKind oddity_of_mass(nc_type type, double mass)
{
    if (!std::isfinite(mass))
        return MsDoubtKind::BadMasses;
    if (ms_is_fill(type, mass))
        return MsDoubtKind::FillMasses;
    if (mass < 0.0)
        return MsDoubtKind::NegativeMasses;
    return mass == 0.0 ? MsDoubtKind::ZeroMasses : MsDoubtKind::Count;
}

class ScanTally
{
public:
    ScanTally(MsFileState &state, const MsScanRecord &record)
        : file(state), tally(state.tally), claims(state.tally.claims), scan(record),
          place(record.scan_number)
    {
    }

    void take()
    {
        if (scan.intensity_values) {
            ms_with_format(file.intensity_format, scan.intensity_values,
                           [this](const auto *numbers) { take_intensities(numbers); });
        } else if (scan.point_count < 1) {
            compare_total(0.0, 0.0);
        }
        if (scan.mass_values) {
            ms_with_format(file.mass_format, scan.mass_values,
                           [this](const auto *numbers) { take_masses(numbers); });
        }
        if (scan.time_values && claimed_range(scan.time_range_min, scan.time_range_max).is_known()) {
            ms_with_format(file.time_format, scan.time_values,
                           [this](const auto *numbers) { take_times(numbers); });
        }
    }

private:
    template <class Stored> void take_intensities(const Stored *numbers)
    {
        const double sum = sum_of(numbers, scan.point_count);
        // A fill value of whole numbers is far below 0.
        const bool is_odd = std::is_floating_point_v<Stored>
            ? !(std::abs(sum) < huge)
            : sum <= double(std::numeric_limits<qint16>::lowest());
        if (is_odd && count_odd_intensities(numbers) > 0)
            return;
        const double scaled = sum * claims.intensity_scale + scan.point_count * claims.intensity_offset;
        if (std::isfinite(scaled))
            compare_total(scaled, sum);
        if (claims.intensities.is_known()
            && !lies_within(numbers, scan.point_count, clamp_to<Stored>(claims.intensities.least),
                            clamp_to<Stored>(claims.intensities.most)))
            tally.found[MsDoubtKind::IntensityRange].add(place);
    }

    template <class Stored> qint32 count_odd_intensities(const Stored *numbers)
    {
        const nc_type type = ms_nc_type_of_format(file.intensity_format, NC_NAT);
        qint32 odd = 0;
        for (qint32 i = 0; i < scan.point_count; ++i) {
            const double number = double(numbers[i]);
            if (std::isfinite(number) && !ms_is_fill(type, number))
                continue;
            tally
                .found[std::isfinite(number) ? MsDoubtKind::FillIntensities : MsDoubtKind::BadIntensities]
                .add(place);
            ++odd;
        }
        return odd;
    }

    void compare_total(double sum, double stored_sum)
    {
        const double total = scan.total_intensity;
        if (ms_is_missing(total) || ms_is_fill(NC_DOUBLE, total))
            return;
        constexpr double slack = 1e-3;
        is_total_right = std::abs(total - sum) <= slack * std::abs(sum);
        // Some writers round it to a whole number, or cut it.
        const bool is_rounded = total == std::trunc(total) && std::abs(total - sum) < 1.0;
        tally.totals.compare(place, total, sum);
        tally.rounded_totals.compare(place, total, is_rounded ? total : sum);
        if (sum != stored_sum)
            tally.stored_totals.compare(place, total, stored_sum);
        tally.claimed_totals.add(total);
    }

    template <class Stored> void take_masses(const Stored *numbers)
    {
        const qint32 count = scan.point_count;
        const bool is_ordered = rises(numbers, count);
        const double first = double(numbers[0]);
        const double last = double(numbers[count - 1]);
        MsNumberRange range;
        qint32 odd = 0;
        if (is_ordered && first > 0.0 && last < huge)
            range = {first, last};
        else
            odd = look_at_masses(numbers, &range);
        constexpr qint32 several = 3; // two may be one when they are rounded
        if (count >= several && is_ordered && first == last && odd == 0)
            tally.found[MsDoubtKind::EqualMasses].add(place);
        tally.scans_with_order += count > 1;
        if (!is_ordered && odd == 0)
            tally.found[MsDoubtKind::UnorderedMasses].add(place);
        if (range.is_known() && is_usable_scale(claims.mass_scale))
            compare_masses({range.least * claims.mass_scale, range.most * claims.mass_scale});
    }

    // Returns how many can't be right, or are none; the others are in the range.
    template <class Stored> qint32 look_at_masses(const Stored *numbers, MsNumberRange *range)
    {
        const nc_type type = ms_nc_type_of_format(file.mass_format, NC_NAT);
        qint32 odd = 0;
        for (qint32 i = 0; i < scan.point_count; ++i) {
            const double mass = double(numbers[i]);
            const MsDoubtKind oddity = oddity_of_mass(type, mass);
            if (oddity == MsDoubtKind::Count) {
                range->add(mass);
                continue;
            }
            ++odd;
            if (oddity != MsDoubtKind::ZeroMasses || !is_filler(i))
                tally.found[oddity].add(place);
        }
        return odd;
    }

    // A writer may fill up a scan with points that are 0 altogether. Its total intensity, or an empty
    // scan's single point, tells that from points that were lost.
    bool is_filler(qint32 point) const
    {
        const double total = scan.total_intensity;
        const bool is_whole =
            ms_is_missing(total) || ms_is_fill(NC_DOUBLE, total) ? scan.point_count == 1 : is_total_right;
        return is_whole && intensity_of(point) == 0.0;
    }

    double intensity_of(qint32 point) const
    {
        double intensity = 0.0;
        ms_with_format(file.intensity_format, scan.intensity_values,
                       [&](const auto *numbers) { intensity = double(numbers[point]); });
        return intensity;
    }

    // Some writers leave the last scan, which was stopped, with the window that was set.
    bool is_window(const MsNumberRange &claimed, const MsNumberRange &measured) const
    {
        return place == file.dimensions[MsDim_scan_number].size - 1 && claimed.least <= measured.least
            && claimed.most >= measured.most && claimed.least == std::trunc(claimed.least)
            && claimed.most == std::trunc(claimed.most);
    }

    void compare_masses(const MsNumberRange &measured)
    {
        // Claims are often whole masses, or those of the scan's nominal window.
        const auto slack = [](double claimed) { return claimed == std::trunc(claimed) ? 1.0 : 0.5; };
        const auto is_beyond = [&](const MsNumberRange &claimed) {
            return claimed.is_known()
                && (measured.least < claimed.least - slack(claimed.least)
                    || measured.most > claimed.most + slack(claimed.most));
        };
        const MsNumberRange claimed = claimed_range(scan.mass_range_min, scan.mass_range_max);
        if (claimed.is_known() && !is_window(claimed, measured)) {
            tally.least_masses.compare(place, claimed.least, measured.least);
            tally.most_masses.compare(place, claimed.most, measured.most);
            if (claims.mass_scale != 1.0)
                tally.stored_masses.compare(place, claimed.most, measured.most / claims.mass_scale);
        }
        if (is_beyond(claimed))
            tally.found[MsDoubtKind::ScanMassRange].add(place);
        if (is_beyond(claims.masses))
            tally.found[MsDoubtKind::MassRange].add(place);
    }

    template <class Stored> void take_times(const Stored *numbers)
    {
        MsNumberRange range;
        for (qint32 i = 0; i < scan.point_count; ++i) {
            const double number = double(numbers[i]);
            if (is_usable(number))
                range.add(number);
        }
        // Beyond rounding, and as stored or as scaled, as above.
        constexpr double slack = 0.01;
        const MsNumberRange claimed = claimed_range(scan.time_range_min, scan.time_range_max);
        const double room = slack * (claimed.most - claimed.least) + slack;
        const auto is_inside = [&](double factor) {
            return range.least * factor >= claimed.least - room
                && range.most * factor <= claimed.most + room;
        };
        const double time_scale = tally.knows_globals ? ms_given(tally.raw.time_scale_factor, 1.0) : 1.0;
        if (range.is_known() && !is_inside(time_scale) && !is_inside(1.0))
            tally.found[MsDoubtKind::ScanTimeRange].add(place);
    }

    MsFileState &file;
    MsTally &tally;
    const MsClaims &claims;
    const MsScanRecord &scan;
    const qint64 place;
    bool is_total_right = false;
};

// Whether a scan is one of the file's, and passes for the first time.
bool is_new(MsFileState &file, qint32 scan)
{
    return scan >= 0 && scan < file.dimensions[MsDim_scan_number].size && file.tally.seen.insert(scan);
}

} // namespace

void ms_tally_globals(MsTally &tally, const MsAdminRecord &admin, const MsRawGlobalRecord &raw)
{
    const auto beginning = [](const char *text) {
        constexpr uint shown = 60; // characters
        return QByteArray(text, int(qstrnlen(text, shown)));
    };
    tally.knows_globals = true;
    tally.stamp = beginning(admin.experiment_date_time_stamp);
    tally.file_stamp = beginning(admin.netcdf_file_date_time_stamp);
    tally.raw = raw;
    MsClaims &claims = tally.claims;
    claims.mass_scale = ms_given(raw.mass_scale_factor, 1.0);
    claims.intensity_scale = ms_given(raw.intensity_scale_factor, 1.0);
    claims.intensity_offset = ms_given(raw.intensity_add_offset, 0.0);
    claims.masses = claimed_range(raw.global_mass_min, raw.global_mass_max);
    claims.times = claimed_range(raw.global_time_min, raw.global_time_max);
    claims.intensities = stored_range(claimed_range(raw.global_intensity_min, raw.global_intensity_max),
                                      claims.intensity_scale, claims.intensity_offset);
}

void ms_tally_scan(MsFileState &file, const MsScanRecord &scan)
{
    if (is_new(file, scan.scan_number))
        ms_with_widest_vectors([&](auto) { ScanTally(file, scan).take(); });
}

void ms_tally_failure(MsFileState &file, qint32 scan, const MsScanPlace *place)
{
    MsTally &tally = file.tally;
    tally.has_failure = true;
    tally.failed_scan = scan;
    tally.failed_place = place ? std::optional<MsScanPlace>(*place) : std::nullopt;
    if (!is_new(file, scan))
        return;
    MsFinding &unreadable = tally.found[MsDoubtKind::UnreadableScans];
    if (unreadable.count == 0)
        tally.first_failure = ms_describe_failure(file, scan, place);
    unreadable.add(scan);
}

void ms_tally_masses(MsCensusTally &census, const void *masses, qint32 format, qint32 count)
{
    const nc_type type = ms_nc_type_of_format(format, NC_NAT);
    ms_with_format(format, masses, [&](const auto *numbers) {
        for (qint32 i = 0; i < count; ++i, ++census.seen) {
            const double mass = double(numbers[i]);
            const MsDoubtKind oddity = oddity_of_mass(type, mass);
            if (oddity != MsDoubtKind::Count)
                census.found[oddity].add(census.seen);
            census.masses.add(mass);
        }
    });
}

void ms_tally_census(MsCensusTally &census, bool is_read, const QSet<qint32> &keys, qint32 decimals)
{
    census.is_done = true;
    census.is_read = is_read;
    census.keys = keys.size();
    constexpr double largest_key = 1e9; // a fill value or infinity has another
    if (decimals != 2)
        return;
    for (const qint32 step : {100, 10, 5}) {
        const int most = keys.size() / 100; // of fewer than 100 keys none is told
        int odd = 0;
        for (auto key = keys.begin(); key != keys.end() && odd <= most; ++key)
            odd += *key % step != 0 && std::abs(double(*key)) < largest_key;
        if (odd <= most) {
            census.grid = step / 100.0;
            census.odd_keys = odd;
            return;
        }
    }
}
