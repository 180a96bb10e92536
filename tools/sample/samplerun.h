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

    // The scans come in their order, each once.
    void scan(int number, SampleScan *scan);

    const SampleClock &clock() const { return chromatogram.clock(); }
    virtual double largestCount() const { return sampleCountLimit; }
    // Empty but in a run of selected ion monitoring.
    virtual const std::vector<SampleGroup> &groups() const;

protected:
    virtual void fill(int number, SampleScan *scan) = 0;

    SampleOptions options;
    SampleRandom random;
    SampleChromatogram chromatogram;
};

std::unique_ptr<SampleRun> makeSampleRun(const SampleOptions &options);

// How many scans a sample has where nobody says.
int defaultSampleScans(SampleKind kind);

// The run that the retention times of library entries come from.
SampleClock sampleReferenceClock();

#endif // SAMPLERUN_H
