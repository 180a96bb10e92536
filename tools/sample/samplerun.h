// The signal of each kind of sample, scan by scan.
#ifndef SAMPLERUN_H
#define SAMPLERUN_H

#include "samplechromatogram.h"
#include "samplegroups.h"
#include "sampleoptions.h"
#include "samplescan.h"

#include <memory>
#include <vector>

class SampleRun
{
public:
    SampleRun(const SampleOptions &wanted, const SampleClock &runClock);
    virtual ~SampleRun() = default;
    Q_DISABLE_COPY(SampleRun)

    // Fills in scan `number`. Ask for the scans in their order, each once.
    void scan(int number, SampleScan *scan);

    const SampleClock &clock() const { return chromatogram.clock(); }
    // Returns the most that a point can count.
    virtual double largestCount() const { return sampleCountLimit; }
    // Returns the groups of a run of selected ion monitoring; other runs have none.
    virtual const std::vector<SampleGroup> &groups() const;

protected:
    virtual void fill(int number, SampleScan *scan) = 0;

    SampleOptions options;
    SampleRandom random;
    SampleChromatogram chromatogram;
};

std::unique_ptr<SampleRun> makeSampleRun(const SampleOptions &options);

// Returns how many scans a sample has if no number is asked for.
int defaultSampleScans(SampleKind kind);

// Returns the clock of the run that the retention times of library entries come from.
SampleClock sampleReferenceClock();

#endif // SAMPLERUN_H
