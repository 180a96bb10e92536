// The module aiams._core, on which the package stands.

#include "pyrun.h"
#include "pyscan.h"
#include "pywriter.h"
#include "turn.h"

PYBIND11_MODULE(_core, module)
{
    prepareTurns();
    definePyScan(module);
    definePyRun(module);
    definePyWriter(module);
}
