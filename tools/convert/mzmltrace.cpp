#include "mzmltrace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <string>

#include <boost/make_shared.hpp>

using namespace pwiz::cv;
using namespace pwiz::msdata;

RunTrace::RunTrace(const SpectrumFacts &facts, BinaryDataEncoder::Config *encoding)
    : facts_(facts), encoding_(encoding)
{
    auto identity = boost::make_shared<Chromatogram>();
    identity->index = 0;
    identity->id = "TIC";
    chromatograms.push_back(identity);
}

ChromatogramPtr RunTrace::chromatogram(size_t, bool) const
{
    encoding_->precisionOverrides.clear();
    auto trace = boost::make_shared<Chromatogram>(*chromatograms[0]);
    trace->set(MS_total_ion_current_chromatogram);
    std::vector<double> times;
    std::vector<double> totals;
    for (std::size_t i = 0; i < facts_.times.size(); ++i) {
        if (!std::isfinite(facts_.times[i]) || !std::isfinite(facts_.totals[i]))
            continue;
        times.push_back(facts_.times[i]);
        totals.push_back(facts_.totals[i]);
    }
    trace->setTimeIntensityArrays(times, totals, facts_.timeUnit, facts_.intensityUnit);
    return trace;
}
