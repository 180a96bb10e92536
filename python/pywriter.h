// A file that Python writes.
#ifndef PYWRITER_H
#define PYWRITER_H

#include "msfile.h"
#include "outputfile.h"

#include <pybind11/numpy.h>

#include <deque>
#include <memory>

namespace py = pybind11;

// What the file is made for.
struct PyLayout {
    qint32 scans;
    bool floatMasses; // else double
    bool floatIntensities;
    bool isLibrary;
};

// Writes a file beside its place, and moves it there when it is whole. Each call throws WriteError where
// the file can't be written.
class PyWriter
{
public:
    // `attributes` are the global ones, by name; `instruments` and `groups` as in records.h.
    PyWriter(const py::object &path, bool overwrite, const PyLayout &layout, const py::dict &attributes,
             const py::list &instruments, const py::list &groups);
    ~PyWriter();

    // Adds the next scan. `numbers` are its numbers by their names in the file; of these, a total and a
    // mass range that are missing are worked out. `entry` is what a library has of its compound,
    // likewise; `flags` two lists of the same length, peaks and values.
    void add(const py::dict &numbers, const py::array &masses, const py::array &intensities,
             const py::tuple &flags, const py::dict &entry);

    // Ends the file, which has all its scans by now.
    void finish();

private:
    void begin(const py::dict &attributes, const py::list &instruments, const py::list &groups);
    void writeGlobals(const py::dict &attributes);
    void writeInstruments(const py::list &instruments);
    void writeGroups(const py::list &groups);
    bool putOthers(const py::dict &attributes);
    char *keep(const QByteArray &text);
    [[noreturn]] void fail(const QString &reason);

    QString name_;
    PyLayout layout_;
    std::deque<QByteArray> texts_; // of the records that are written
    std::unique_ptr<OutputFile> output_;
    MsFile file_;
    qint32 next_ = 0;
};

void definePyWriter(py::module_ &module);

#endif // PYWRITER_H
