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

const auto &timingOf(SampleKind kind)
{
    return *std::find_if(std::begin(timings), std::end(timings),
                         [kind](const auto &timing) { return timing.kind == kind; });
}

// Returns the standard deviation of the peaks, in seconds. In a run of any length, `peakCapacity` peaks
// fit beside each other, unless they would be too narrow for the scans.
double peakSigma(const SampleClock &clock, double peakCapacity)
{
    return std::max(clock.length() / peakCapacity, 0.3);
}

class GcmsRun : public SampleRun
{
public:
    GcmsRun(const SampleOptions &wanted, const SampleClock &runClock)
        : SampleRun(wanted, runClock), builder(wanted.points), sigma(peakSigma(runClock, 600.0))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        // The column bleeds more the hotter it gets.
        const double progress = clock().progress(number);
        builder.start(900.0 + 3000.0 * progress * progress);
        for (const SampleElution &elution : chromatogram.elutions())
            builder.add(elution.compound, SampleChromatogram::heightAt(elution, scan->time, sigma));
        builder.finish(&random, scan);
    }

private:
    SampleSpectrumBuilder builder;
    double sigma;
};

// The modulator collects what elutes from the first column during a modulation and releases it onto the
// second one at once. So a compound has a narrow peak in a few modulations, at the same place in each.
class GcxgcRun : public SampleRun
{
public:
    GcxgcRun(const SampleOptions &wanted, const SampleClock &runClock)
        : SampleRun(wanted, runClock), builder(wanted.points),
          firstSigma(std::max(peakSigma(runClock, 40.0), 1.2 * modulationSeconds))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        constexpr int scansPerModulation = 400;
        const int modulation = number / scansPerModulation;
        const double released = clock().time(modulation * scansPerModulation);
        const double secondTime = double(number % scansPerModulation) / 100.0;

        builder.start(700.0);
        for (const SampleElution &elution : chromatogram.elutions()) {
            const double amount =
                SampleChromatogram::heightAt(elution, released - modulationSeconds / 2.0, firstSigma);
            // The hotter the oven, the shorter the way through the second column.
            const double apex = sampleCompounds.first[elution.compound].secondTime - 0.002 * modulation;
            const double place = std::max(apex, 0.3);
            builder.add(elution.compound,
                        SampleChromatogram::heightAt({elution.compound, place, amount}, secondTime,
                                                     0.025 + 0.01 * place));
        }
        builder.finish(&random, scan);
    }

private:
    static constexpr double modulationSeconds = 4.0;

    SampleSpectrumBuilder builder;
    double firstSigma;
};

// A detector that counts all ions together: no masses, only times.
class TicRun : public SampleRun
{
public:
    TicRun(const SampleOptions &wanted, const SampleClock &runClock)
        : SampleRun(wanted, runClock), sigma(peakSigma(runClock, 600.0))
    {
    }

protected:
    void fill(int number, SampleScan *scan) override
    {
        const int points = std::max(options.points, 1);
        const double step = double(clock().interval) / 1000.0 / points;
        const double progress = clock().progress(number);
        for (int i = 0; i < points; ++i) {
            const double time = scan->time + i * step;
            double count = 9000.0 + 16000.0 * progress * progress;
            for (const SampleElution &elution : chromatogram.elutions())
                count += SampleChromatogram::heightAt(elution, time, sigma);
            scan->times.push_back(time);
            scan->counts.push_back(noisyCount(count, random.bits()));
        }
    }

private:
    double sigma;
};

class LibraryRun : public SampleRun
{
public:
    LibraryRun(const SampleOptions &wanted, const SampleClock &runClock)
        : SampleRun(wanted, runClock), builder(wanted.points)
    {
    }

    double largestCount() const override { return 2.0 * basePeak; }

protected:
    void fill(int number, SampleScan *scan) override
    {
        const int compound = number % sampleCompounds.count;
        scan->time = sampleRetentionTime(sampleReferenceClock(), compound);
        builder.start(0.0);
        builder.add(compound, basePeak);
        if (options.points != 0) {
            builder.finish(&random, scan);
            return;
        }
        // An entry has no noise between its peaks.
        for (int mass = sampleMassMin; mass <= sampleMassMax; ++mass) {
            if (builder.countsAt(mass) == 0.0)
                continue;
            scan->masses.push_back(samplePeakMass(mass));
            scan->counts.push_back(noisyCount(builder.countsAt(mass), random.bits()));
        }
    }

private:
    static constexpr double basePeak = 9999.0;

    SampleSpectrumBuilder builder;
};

class SimRun : public SampleRun
{
public:
    SimRun(const SampleOptions &wanted, const SampleClock &runClock)
        : SampleRun(wanted, runClock), builder(0),
          ionGroups(makeSampleGroups(chromatogram, wanted.points)), sigma(peakSigma(runClock, 600.0))
    {
        // Every third peak is more than the detector can count.
        for (std::size_t i = 0; i < chromatogram.elutions().size(); i += 3)
            chromatogram.elutions()[i].height = 2.0 * sampleCountLimit;
    }

    const std::vector<SampleGroup> &groups() const override { return ionGroups; }

protected:
    void fill(int number, SampleScan *scan) override
    {
        while (currentGroup + 1 < ionGroups.size() && ionGroups[currentGroup + 1].startingScan <= number)
            ++currentGroup;
        builder.start(900.0);
        for (const SampleElution &elution : chromatogram.elutions())
            builder.add(elution.compound, SampleChromatogram::heightAt(elution, scan->time, sigma));
        for (const int mass : ionGroups[currentGroup].masses) {
            const double count = noisyCount(builder.countsAt(mass) + 40.0, random.bits());
            if (count == sampleCountLimit)
                scan->saturated.push_back(qint32(scan->counts.size()));
            scan->masses.push_back(samplePeakMass(mass));
            scan->counts.push_back(count);
        }
    }

private:
    SampleSpectrumBuilder builder;
    std::vector<SampleGroup> ionGroups;
    std::size_t currentGroup = 0;
    double sigma;
};

} // namespace

SampleRun::SampleRun(const SampleOptions &wanted, const SampleClock &runClock)
    : options(wanted), random(wanted.seed), chromatogram(runClock, &random)
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

int defaultSampleScans(SampleKind kind)
{
    return timingOf(kind).scans;
}

SampleClock sampleReferenceClock()
{
    const auto &timing = timingOf(SampleKind::Gcms);
    return {timing.start, timing.interval, timing.scans};
}

std::unique_ptr<SampleRun> makeSampleRun(const SampleOptions &options)
{
    const auto &timing = timingOf(options.kind);
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
