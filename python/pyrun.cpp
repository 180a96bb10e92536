#include "pyrun.h"

#include "errors.h"
#include "pyarrays.h"
#include "records.h"
#include "texts.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

namespace {

constexpr qint32 oftenEnough = 4096; // scans between two looks at signals

// How long operations of a run look at signals. They leave the exception in `failure` and stop.
MsRun::Progress signalChecks(Unlocked *unlocked, std::exception_ptr *failure)
{
    return [=](double) {
        try {
            unlocked->checkSignals();
            return true;
        } catch (py::error_already_set &) {
            *failure = std::current_exception();
            return false;
        }
    };
}

// Writes the spectrum's masses or intensities in the type of the array, which is float where they are
// stored so.
template <class Number>
void copy(const float *stored, const double *(MsSpectrum::*scaled)() const, const MsSpectrum &spectrum,
          Number *target)
{
    if (spectrum.size() == 0)
        return;
    if constexpr (std::is_same_v<Number, float>)
        std::copy_n(stored, spectrum.size(), target);
    else
        std::copy_n((spectrum.*scaled)(), spectrum.size(), target);
}

} // namespace

PyRun::PyRun(const py::object &path, const py::object &lookProgram) : process_(getpid())
{
    const Turn turn;
    const KeptNames kept;
    MsRunOptions options;
    options.lookProgram = fileName(lookProgram);
    name_ = fileName(path);
    run_ = std::make_unique<MsRun>(name_, options);
    if (!run_->isOpen()) {
        const QString error = run_->error();
        run_.reset();
        throwReadError(error);
    }
    readsAlone_ = run_->readsScansAlone();
}

PyRun::~PyRun()
{
    close();
}

void PyRun::close()
{
    if (!run_)
        return;
    const Turn turn;
    if (uses_ > 0 && process_ != getpid()) { // who used it stayed there, in the middle of a call
        static_cast<void>(run_.release());
        return;
    }
    if (uses_ > 0)
        throwClosedError(QStringLiteral("The run \"%1\" is being read and can't be closed.").arg(name_));
    run_.reset();
}

// Calls a long operation of the run, with other threads running meanwhile where they may.
template <class Operation> auto PyRun::runLong(const Operation &operation) const
{
    const Use use(*this);
    std::exception_ptr failure;
    auto result = [&] {
        Unlocked unlocked(readsAlone_);
        return operation(signalChecks(&unlocked, &failure));
    }();
    if (failure)
        std::rethrow_exception(failure);
    return result;
}

// To be called when it is this thread's turn: another one may have closed the run before.
const MsRun &PyRun::run() const
{
    if (!run_)
        throwClosedError(QStringLiteral("The run \"%1\" is closed.").arg(name_));
    if (process_ != getpid())
        throwClosedError(QStringLiteral("The run was opened in another process; open it in this one."));
    return *run_;
}

qint32 PyRun::place(const py::int_ &index) const
{
    const qint32 size = run().size();
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
    if (overflow != 0 || number < -qint64(size) || number >= size)
        throw py::index_error("There is no scan "
                              + (overflow == 0 ? std::to_string(number) : "of that number")
                              + " in a run of " + std::to_string(size) + " scans.");
    return qint32(number < 0 ? number + size : number);
}

py::str PyRun::kind() const
{
    const Turn turn;
    switch (run().kind()) {
    case MsRun::Kind::Spectra:
        return "spectra";
    case MsRun::Kind::Trace:
        return "trace";
    case MsRun::Kind::Library:
        break;
    }
    return "library";
}

qint32 PyRun::size() const
{
    const Turn turn;
    return run().size();
}

bool PyRun::hasSeconds() const
{
    const Turn turn;
    return run().hasSeconds();
}

bool PyRun::readsAlone() const
{
    return readsAlone_;
}

PyScan PyRun::scan(const py::int_ &index) const
{
    const Turn turn;
    const MsRun &open = run();
    return {open.spectrum(place(index)), open.hasStoredMasses(), open.hasStoredIntensities(),
            open.hasSeconds()};
}

qint32 PyRun::scanAt(double time) const
{
    const Turn turn;
    return run().scanAt(time);
}

py::array PyRun::times() const
{
    const Turn turn;
    const MsRun &open = run();
    return arrayOf(runLong([&](const MsRun::Progress &) { return open.times(); }));
}

py::array PyRun::totals() const
{
    const Turn turn;
    const MsRun &open = run();
    std::vector<double> totals = runLong([&](const MsRun::Progress &) { return open.storedTotals(); });
    const auto isUnknown = [](double total) { return std::isnan(total); };
    if (open.kind() != MsRun::Kind::Trace && std::any_of(totals.begin(), totals.end(), isUnknown)) {
        const std::vector<double> sums =
            runLong([&](const MsRun::Progress &progress) { return open.summedTotals(progress); });
        for (std::size_t i = 0; i < totals.size(); ++i)
            totals[i] = isUnknown(totals[i]) ? sums[i] : totals[i];
    }
    return arrayOf(totals);
}

py::array PyRun::summedTotals() const
{
    const Turn turn;
    const MsRun &open = run();
    return arrayOf(runLong([&](const MsRun::Progress &progress) { return open.summedTotals(progress); }));
}

template <class Mass, class Intensity> py::tuple PyRun::pointsAs(qint32 first, qint32 end) const
{
    const MsRun &open = run();
    const qint32 scans = std::max(end - first, 0);
    // Of a whole run, how many there are is known, but for those without data.
    const std::size_t all = std::size_t(open.pointCount());
    std::size_t room = first == 0 && end == open.size() ? all : 0;
    ArrayBlock<Mass> masses(room);
    ArrayBlock<Intensity> intensities(room);
    ArrayBlock<std::int64_t> offsets(std::size_t(scans) + 1);
    std::size_t count = 0;
    {
        const Use use(*this);
        Unlocked unlocked(readsAlone_);
        offsets.data()[0] = 0;
        for (qint32 i = 0; i < scans; ++i) {
            if (i % oftenEnough == oftenEnough - 1)
                unlocked.checkSignals();
            const MsSpectrum spectrum = open.spectrum(first + i);
            const std::size_t needed = count + std::size_t(spectrum.size());
            if (needed > room) {
                room = std::max(needed, room + room / 2);
                masses.resize(room);
                intensities.resize(room);
            }
            copy(spectrum.storedMasses(), &MsSpectrum::masses, spectrum, masses.data() + count);
            copy(spectrum.storedIntensities(), &MsSpectrum::intensities, spectrum,
                 intensities.data() + count);
            count = needed;
            offsets.data()[i + 1] = std::int64_t(count);
        }
    }
    return py::make_tuple(masses.take(count), intensities.take(count),
                          offsets.take(std::size_t(scans) + 1));
}

py::tuple PyRun::points(qint32 first, qint32 end) const
{
    const Turn turn;
    const MsRun &open = run();
    constexpr qint64 always = 1 << 24;
    constexpr qint64 mostUses = 4; // of a position; no right file comes near
    if (open.pointCount() > always + mostUses * open.positionCount())
        throwReadError(
            QStringLiteral(
                "The scans of \"%1\" share their points so often that they can't all be held at "
                "once; read them one by one.")
                .arg(open.name()));
    if (open.hasStoredMasses())
        return open.hasStoredIntensities() ? pointsAs<float, float>(first, end)
                                           : pointsAs<float, double>(first, end);
    return open.hasStoredIntensities() ? pointsAs<double, float>(first, end)
                                       : pointsAs<double, double>(first, end);
}

py::array PyRun::extractedTraces(const std::vector<std::pair<double, double>> &windows) const
{
    const Turn turn;
    const MsRun &open = run();
    std::vector<MsInterval> intervals;
    for (const auto &[from, to] : windows)
        intervals.push_back({from, to});
    const std::vector<std::vector<double>> traces = runLong(
        [&](const MsRun::Progress &progress) { return open.extractedTraces(intervals, progress); });
    py::array_t<double> result({py::ssize_t(windows.size()), py::ssize_t(open.size())});
    double *target = result.mutable_data();
    for (const std::vector<double> &trace : traces)
        target = std::copy(trace.begin(), trace.end(), target);
    return result;
}

py::tuple PyRun::averaged(double from, double to, double width) const
{
    const Turn turn;
    const MsRun &open = run();
    const MsPeaks peaks = runLong([&](const MsRun::Progress &progress) {
        return open.averaged({from, to}, width, progress);
    });
    return py::make_tuple(arrayOf(peaks.masses), arrayOf(peaks.intensities));
}

py::tuple PyRun::modulation() const
{
    const Turn turn;
    const MsRun &open = run();
    const MsModulation guess =
        runLong([&](const MsRun::Progress &progress) { return open.modulation(progress); });
    return py::make_tuple(guess.seconds, guess.confidence, guess.isConfident);
}

py::dict PyRun::attributes() const
{
    const Turn turn;
    return attributesOf(run().fileId(), NC_GLOBAL);
}

py::dict PyRun::variableAttributes() const
{
    const Turn turn;
    return attributesOfVariables(run().fileId());
}

py::list PyRun::instruments() const
{
    const Turn turn;
    py::list result;
    for (const MsInstrument &component : run().instruments())
        result.append(instrumentOf(component));
    return result;
}

py::list PyRun::groups() const
{
    const Turn turn;
    py::list result;
    for (const MsGroup &group : run().groups())
        result.append(groupOf(group));
    return result;
}

py::dict PyRun::compound(const py::int_ &index) const
{
    const Turn turn;
    return compoundOf(run().compound(place(index)));
}

py::list PyRun::doubts() const
{
    const Turn turn;
    py::list result;
    for (const MsDoubt &doubt : run().doubts())
        result.append(doubtOf(doubt));
    return result;
}

void definePyRun(py::module_ &module)
{
    module.def(
        "open",
        [](const py::object &path, const py::object &lookProgram) {
            return std::make_unique<PyRun>(path, lookProgram);
        },
        py::arg("path"), py::arg("look_program"));
    py::class_<PyRun> type(module, "Run");
    forbidNew(type);
    type.def("close", &PyRun::close)
        .def_property_readonly("closed", &PyRun::isClosed)
        .def_property_readonly("name", [](const PyRun &run) { return pythonText(run.name()); })
        .def_property_readonly("kind", &PyRun::kind)
        .def_property_readonly("has_seconds", &PyRun::hasSeconds)
        .def_property_readonly("reads_alone", &PyRun::readsAlone)
        .def("__len__", &PyRun::size)
        .def("scan", &PyRun::scan)
        .def("scan_at", &PyRun::scanAt)
        .def("times", &PyRun::times)
        .def("tic", &PyRun::totals)
        .def("summed_tic", &PyRun::summedTotals)
        .def("points", &PyRun::points)
        .def("eic", &PyRun::extractedTraces)
        .def("average", &PyRun::averaged)
        .def("modulation", &PyRun::modulation)
        .def("attributes", &PyRun::attributes)
        .def("variable_attributes", &PyRun::variableAttributes)
        .def("instruments", &PyRun::instruments)
        .def("groups", &PyRun::groups)
        .def("compound", &PyRun::compound)
        .def("doubts", &PyRun::doubts);
}
