#include "pyscan.h"

#include "pyarrays.h"
#include "texts.h"

#include <array>

namespace {

py::array masses(const py::object &self)
{
    const auto &scan = self.cast<const PyScan &>();
    const MsSpectrum &spectrum = *scan.spectrum;
    return scan.hasFloatMasses ? viewOf(spectrum.storedMasses(), spectrum.size(), self)
                               : viewOf(spectrum.masses(), spectrum.size(), self);
}

py::array intensities(const py::object &self)
{
    const auto &scan = self.cast<const PyScan &>();
    const MsSpectrum &spectrum = *scan.spectrum;
    return scan.hasFloatIntensities ? viewOf(spectrum.storedIntensities(), spectrum.size(), self)
                                    : viewOf(spectrum.intensities(), spectrum.size(), self);
}

py::tuple pair(const MsInterval &interval)
{
    return py::make_tuple(interval.from, interval.to);
}

// The numbers that the file has of the scan, by their names in the template.
py::dict numbers(const PyScan &scan)
{
    py::dict result;
    const auto *record = reinterpret_cast<const char *>(&scan.spectrum->record());
    for (const MsVariableRow &row : ms_per_scan_table) {
        const void *field = record + row.field;
        if (row.nc_type == NC_DOUBLE) {
            const double number = *static_cast<const double *>(field);
            if (ms_is_given(number))
                result[row.name] = number;
        } else {
            const qint32 number = row.nc_type == NC_SHORT ? *static_cast<const qint16 *>(field)
                                                          : *static_cast<const qint32 *>(field);
            if (ms_is_given(number) && !ms_is_fill(row.nc_type, number))
                result[row.name] = number;
        }
    }
    return result;
}

} // namespace

void definePyScan(py::module_ &module)
{
    py::class_<PyScan> type(module, "Scan", R"(One scan of a run, or one spectrum of a library.

It owns its numbers: they stay when the run is closed. Points that were never written, are infinite or no
number are left out.)");
    forbidNew(type);
    type.def_readonly("has_seconds", &PyScan::hasSeconds, "Whether the time is in s.")
        .def("__len__", [](const PyScan &scan) { return scan.spectrum->size(); })
        .def_property_readonly(
            "index", [](const PyScan &scan) { return scan.spectrum->index(); },
            "Place in the run, from 0.")
        .def_property_readonly(
            "number", [](const PyScan &scan) { return scan.spectrum->number(); },
            "The file's own number of the scan, else the index. It needn't be unique.")
        .def_property_readonly(
            "time", [](const PyScan &scan) { return scan.spectrum->time(); },
            "When the scan was taken: in s where Run.has_seconds, else as stored. NaN unknown.")
        .def_property_readonly(
            "tic", [](const PyScan &scan) { return scan.spectrum->storedTotal(); },
            "Total intensity as the file gives it; NaN where it gives none.")
        .def_property_readonly(
            "total", [](const PyScan &scan) { return scan.spectrum->summedTotal(); },
            "Sum of the intensities; NaN for a scan that can't be read.")
        .def_property_readonly(
            "is_read", [](const PyScan &scan) { return scan.spectrum->isRead(); },
            "Whether the scan could be read. If not, it has no points.")
        .def_property_readonly(
            "failure", [](const PyScan &scan) { return pythonTextOrNone(scan.spectrum->failure()); },
            "Why the scan couldn't be read, as the rest of a sentence; None if it could.")
        .def_property_readonly(
            "mass_range", [](const PyScan &scan) { return pair(scan.spectrum->massRange()); },
            "(lowest, highest) mass as the file gives them; NaN where it gives none.")
        .def_property_readonly("numbers", numbers,
                               "The numbers that the file has of the scan, by their names in the file.")
        .def_property_readonly(
            "flags",
            [](const PyScan &scan) {
                return py::make_tuple(
                    arrayOf(scan.spectrum->flaggedPeaks().toVector()).attr("astype")("int32"),
                    arrayOf(scan.spectrum->flagValues().toVector()).attr("astype")("int16"));
            },
            "(peaks, values): flagged peaks as the file counts them, int32, and their flags, int16.")
        .def_property_readonly(
            "mz", masses,
            "Masses, shape (len,): float32 where stored so and without a factor, else float64.")
        .def_property_readonly("intensity", intensities,
                               "Intensities of the points, shape (len,); types as with mz.");
}
