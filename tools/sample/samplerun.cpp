// The signal of each kind of sample, scan by scan.

#include "samplerun.h"

#include "samplecompounds.h"
#include "samplespectrum.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

// clang-format off
constexpr struct {
    SampleKind kind;
    qint64 start;    // milliseconds since injection, like the interval
    qint64 interval;
    int scans;
} timings[] = {
    {SampleKind::Gcms,    180'000, 600,  2'000},
    {SampleKind::Gcxgc,   300'000,  10, 24'000},
    {SampleKind::Tic,     180'000, 600,  2'000},
    {SampleKind::Library, 180'000, 600,     24},
    {SampleKind::Sim,     180'000, 500,  2'400},
};
// clang-format on

const auto &timing_of(SampleKind kind)
{
    return *std::find_if(std::begin(timings), std::end(timings),
                         [kind](const auto &timing) { return timing.kind == kind; });
}

// How wide peaks are, for a number of peaks beside each other that doesn't depend on the run's length.
double peak_sigma(const SampleClock &clock, double peak_capacity)
{
    return std::max(clock.length() / peak_capacity, 0.3);
}

class GcmsRun : public SampleRun
{
public:
    GcmsRun(const SampleOptions &options, const SampleClock &clock)
        : SampleRun(options, clock), builder_(options.points), sigma_(peak_sigma(clock, 600.0))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        // The column bleeds more the hotter it gets.
        const double progress = clock().progress(number);
        builder_.start(900.0 + 3000.0 * progress * progress);
        for (const SampleElution &elution : chromatogram_.elutions())
            builder_.add(elution.compound, SampleChromatogram::height_at(elution, scan->time, sigma_));
        builder_.finish(&random_, scan);
    }

private:
    SampleSpectrumBuilder builder_;
    double sigma_;
};

// What elutes from the first column within a modulation is let go onto the second one as a whole, so
// a compound has a narrow peak at the same place in each of a few modulations.
class GcxgcRun : public SampleRun
{
public:
    GcxgcRun(const SampleOptions &options, const SampleClock &clock)
        : SampleRun(options, clock), builder_(options.points),
          first_sigma_(std::max(peak_sigma(clock, 40.0), 1.2 * modulation_seconds))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        constexpr int scans_per_modulation = 400;
        const int modulation = number / scans_per_modulation;
        const double released = clock().time(modulation * scans_per_modulation);
        const double second_time = double(number % scans_per_modulation) / 100.0;

        builder_.start(700.0);
        for (const SampleElution &elution : chromatogram_.elutions()) {
            const double amount =
                SampleChromatogram::height_at(elution, released - modulation_seconds / 2.0, first_sigma_);
            // The hotter the oven, the shorter the way through the second column.
            const double apex = sample_compounds.first[elution.compound].second_time - 0.002 * modulation;
            const double place = std::max(apex, 0.3);
            builder_.add(elution.compound,
                         SampleChromatogram::height_at({elution.compound, place, amount}, second_time,
                                                       0.025 + 0.01 * place));
        }
        builder_.finish(&random_, scan);
    }

private:
    static constexpr double modulation_seconds = 4.0;

    SampleSpectrumBuilder builder_;
    double first_sigma_;
};

// A detector that counts all ions together: no masses, only times.
class TicRun : public SampleRun
{
public:
    TicRun(const SampleOptions &options, const SampleClock &clock)
        : SampleRun(options, clock), sigma_(peak_sigma(clock, 600.0))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        const int points = std::max(options_.points, 1);
        const double step = double(clock().interval) / 1000.0 / points;
        const double progress = clock().progress(number);
        for (int i = 0; i < points; ++i) {
            const double time = scan->time + i * step;
            double count = 9000.0 + 16000.0 * progress * progress;
            for (const SampleElution &elution : chromatogram_.elutions())
                count += SampleChromatogram::height_at(elution, time, sigma_);
            scan->times.push_back(time);
            scan->counts.push_back(noisy_count(count, random_.bits()));
        }
    }

private:
    double sigma_;
};

class LibraryRun : public SampleRun
{
public:
    LibraryRun(const SampleOptions &options, const SampleClock &clock)
        : SampleRun(options, clock), builder_(options.points)
    {
    }

    double largest_count() const override { return 2.0 * base_peak; }

protected:
    void fill(int number, SampleScan *scan) override
    {
        const int compound = number % sample_compounds.count;
        scan->time = sample_retention_time(sample_reference_clock(), compound);
        builder_.start(0.0);
        builder_.add(compound, base_peak);
        if (options_.points != 0) {
            builder_.finish(&random_, scan);
            return;
        }
        // An entry has no noise between its peaks.
        for (int mass = sample_mass_min; mass <= sample_mass_max; ++mass) {
            if (builder_.counts_at(mass) == 0.0)
                continue;
            scan->masses.push_back(sample_peak_mass(mass));
            scan->counts.push_back(noisy_count(builder_.counts_at(mass), random_.bits()));
        }
    }

private:
    static constexpr double base_peak = 9999.0;

    SampleSpectrumBuilder builder_;
};

class SimRun : public SampleRun
{
public:
    SimRun(const SampleOptions &options, const SampleClock &clock)
        : SampleRun(options, clock), builder_(0),
          groups_(make_sample_groups(chromatogram_, options.points)), sigma_(peak_sigma(clock, 600.0))
    {
        // Every third peak is more than the detector can count.
        for (std::size_t i = 0; i < chromatogram_.elutions().size(); i += 3)
            chromatogram_.elutions()[i].height = 2.0 * sample_count_limit;
    }

    const std::vector<SampleGroup> &groups() const override { return groups_; }

protected:
    void fill(int number, SampleScan *scan) override
    {
        while (group_ + 1 < groups_.size() && groups_[group_ + 1].starting_scan <= number)
            ++group_;
        builder_.start(900.0);
        for (const SampleElution &elution : chromatogram_.elutions())
            builder_.add(elution.compound, SampleChromatogram::height_at(elution, scan->time, sigma_));
        for (const int mass : groups_[group_].masses) {
            const double count = noisy_count(builder_.counts_at(mass) + 40.0, random_.bits());
            if (count == sample_count_limit)
                scan->saturated.push_back(qint32(scan->counts.size()));
            scan->masses.push_back(sample_peak_mass(mass));
            scan->counts.push_back(count);
        }
    }

private:
    SampleSpectrumBuilder builder_;
    std::vector<SampleGroup> groups_;
    std::size_t group_ = 0;
    double sigma_;
};

} // namespace

SampleRun::SampleRun(const SampleOptions &options, const SampleClock &clock)
    : options_(options), random_(options.seed), chromatogram_(clock, &random_)
{
}

void SampleRun::scan(int number, SampleScan *scan)
{
    scan->clear();
    scan->time = clock().time(number);
    fill(number, scan);
}

const std::vector<SampleGroup> &SampleRun::groups() const
{
    static const std::vector<SampleGroup> none;
    return none;
}

int default_sample_scans(SampleKind kind)
{
    return timing_of(kind).scans;
}

SampleClock sample_reference_clock()
{
    const auto &timing = timing_of(SampleKind::Gcms);
    return {timing.start, timing.interval, timing.scans};
}

std::unique_ptr<SampleRun> make_sample_run(const SampleOptions &options)
{
    const auto &timing = timing_of(options.kind);
    const SampleClock clock = {timing.start, timing.interval, options.scans};
    switch (options.kind) {
    case SampleKind::Gcms:
        return std::make_unique<GcmsRun>(options, clock);
    case SampleKind::Gcxgc:
        return std::make_unique<GcxgcRun>(options, clock);
    case SampleKind::Tic:
        return std::make_unique<TicRun>(options, clock);
    case SampleKind::Library:
        return std::make_unique<LibraryRun>(options, clock);
    case SampleKind::Sim:
        return std::make_unique<SimRun>(options, clock);
    }
    return nullptr;
}
