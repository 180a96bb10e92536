// A scan as Python has it: a spectrum that owns its numbers and outlives its run.
#ifndef PYSCAN_H
#define PYSCAN_H

#include "msspectrum.h"

#include <pybind11/numpy.h>

#include <memory>

namespace py = pybind11;

struct PyScan {
    PyScan(MsSpectrum &&read, bool massesAreFloat, bool intensitiesAreFloat, bool timeIsSeconds)
        : spectrum(std::make_unique<MsSpectrum>(std::move(read))), hasFloatMasses(massesAreFloat),
          hasFloatIntensities(intensitiesAreFloat), hasSeconds(timeIsSeconds)
    {
    }

    std::unique_ptr<MsSpectrum> spectrum;
    bool hasFloatMasses; // stored as float, without a factor
    bool hasFloatIntensities;
    bool hasSeconds; // as MsRun::hasSeconds
};

void definePyScan(py::module_ &module);

#endif // PYSCAN_H
