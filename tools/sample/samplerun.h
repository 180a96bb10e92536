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
    SampleRun(const SampleOptions &options, const SampleClock &clock);
    virtual ~SampleRun() = default;
    Q_DISABLE_COPY(SampleRun)

    // The scans come in their order, each once.
    void scan(int number, SampleScan *scan);

    const SampleClock &clock() const { return chromatogram_.clock(); }
    virtual double largest_count() const { return sample_count_limit; }
    // Empty but in a run of selected ion monitoring.
    virtual const std::vector<SampleGroup> &groups() const;

protected:
    virtual void fill(int number, SampleScan *scan) = 0;

    SampleOptions options_;
    SampleRandom random_;
    SampleChromatogram chromatogram_;
};

std::unique_ptr<SampleRun> make_sample_run(const SampleOptions &options);

// How many scans a sample has where nobody says.
int default_sample_scans(SampleKind kind);

// The run that the retention times of library entries come from.
SampleClock sample_reference_clock();

#endif // SAMPLERUN_H
