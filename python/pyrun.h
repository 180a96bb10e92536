// A run as Python has it.
#ifndef PYRUN_H
#define PYRUN_H

#include "pyscan.h"
#include "turn.h"

#include "msrun.h"

#include <pybind11/numpy.h>

#include <memory>
#include <unistd.h>
#include <vector>

class PyRun
{
public:
    // Throws ReadError where the file can't be read.
    PyRun(const py::object &path, const py::object &lookProgram);
    ~PyRun();

    void close();
    bool isClosed() const { return !run_ || process_ != getpid(); }
    QString name() const { return name_; }

    py::str kind() const;
    qint32 size() const;
    bool hasSeconds() const;
    bool readsAlone() const;

    // Throws IndexError for a scan that isn't there. A negative index counts from the end.
    PyScan scan(const py::int_ &index) const;
    qint32 scanAt(double time) const;

    py::array times() const;
    py::array totals() const;
    py::array summedTotals() const;

    // The points of scans `first` to `end` - 1: masses, intensities, and where each scan's begin.
    py::tuple points(qint32 first, qint32 end) const;
    py::array extractedTraces(const std::vector<std::pair<double, double>> &windows) const;
    py::tuple averaged(double from, double to, double width) const;

    py::tuple modulation() const;

    py::dict attributes() const;
    py::dict variableAttributes() const;
    py::list instruments() const;
    py::list groups() const;
    py::dict compound(const py::int_ &index) const;
    py::list doubts() const;

private:
    // A long operation on the run. A signal's handler in Python may call this run meanwhile, and mustn't
    // close it.
    class Use
    {
    public:
        explicit Use(const PyRun &run) : uses_(run.uses_) { ++uses_; }
        ~Use() { --uses_; }
        Use(const Use &) = delete;
        Use &operator=(const Use &) = delete;

    private:
        int &uses_;
    };

    const MsRun &run() const;
    template <class Operation> auto runLong(const Operation &operation) const;
    qint32 place(const py::int_ &index) const;
    template <class Mass, class Intensity> py::tuple pointsAs(qint32 first, qint32 end) const;

    QString name_;
    pid_t process_;
    bool readsAlone_ = false; // without the netCDF library, so without the interpreter's lock
    mutable int uses_ = 0;    // long operations that are at work on the run
    std::unique_ptr<MsRun> run_;
};

void definePyRun(py::module_ &module);

#endif // PYRUN_H
