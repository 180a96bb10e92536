// What a file says beside its scans, as dictionaries of Python.
#ifndef RECORDS_H
#define RECORDS_H

#include "msrun.h"

#include <pybind11/pybind11.h>

namespace py = pybind11;

// The attributes of an open file, or of one variable: each name in the file with a str, an int, a float,
// or a list of numbers. Types of its own that a file of a newer kind may have are None.
py::dict attributesOf(int ncid, int variable);

// The same of all variables that have attributes, by the variables' names.
py::dict attributesOfVariables(int ncid);

// The arguments of the classes in records.py.
py::dict instrumentOf(const MsInstrument &component);
py::dict groupOf(const MsGroup &group);
py::dict compoundOf(const MsCompound &compound);
py::dict doubtOf(const MsDoubt &doubt);

#endif // RECORDS_H
