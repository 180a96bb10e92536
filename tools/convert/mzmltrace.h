// The total ion current of a run as the mzML library asks for it.
#ifndef MZMLTRACE_H
#define MZMLTRACE_H

#include "mzmlspectra.h"

#include <pwiz/data/msdata/BinaryDataEncoder.hpp>
#include <pwiz/data/msdata/MSData.hpp>

// It is written behind the spectra. Facts and encoding have to outlive it.
class RunTrace : public pwiz::msdata::ChromatogramListSimple
{
public:
    // Numbers of the trace are doubles, whatever the spectra's are. The library asks for this list after
    // the spectra and encodes what it gets by `encoding`, which is changed for that.
    RunTrace(const SpectrumFacts &facts, pwiz::msdata::BinaryDataEncoder::Config *encoding);

    // The library's own would refer to a chromatogram that is gone.
    const pwiz::msdata::ChromatogramIdentity &chromatogramIdentity(size_t) const override
    {
        return *chromatograms[0];
    }

    pwiz::msdata::ChromatogramPtr chromatogram(size_t index, bool getBinaryData) const override;

private:
    const SpectrumFacts &facts_;
    pwiz::msdata::BinaryDataEncoder::Config *encoding_;
};

#endif // MZMLTRACE_H
