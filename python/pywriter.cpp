#include "pywriter.h"

#include "errors.h"
#include "givenvalues.h"
#include "texts.h"
#include "turn.h"

#include "numbers_p.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

PyWriter::PyWriter(const py::object &path, bool overwrite, const PyLayout &layout,
                   const py::dict &attributes, const py::list &instruments, const py::list &groups)
    : layout_(layout)
{
    const Turn turn;
    const KeptNames kept;
    name_ = fileName(path);
    if (name_.isEmpty())
        throwWriteError(QStringLiteral("The name of the file is empty."));
    const QString name = name_ == QLatin1String("-") ? QStringLiteral("./-") : name_;
    output_ = std::make_unique<OutputFile>(
        name, overwrite ? OutputFile::Existing::Replace : OutputFile::Existing::Keep);
    if (output_->isDirect())
        throwWriteError(QStringLiteral("\"%1\" isn't a regular file.").arg(name_));
    if (layout.scans < 1)
        fail(QStringLiteral("there are no scans"));
    if (!overwrite && QFileInfo(output_->place()).isFile())
        throwWriteError(
            QStringLiteral("The file \"%1\" exists. With overwrite=True it is written over.").arg(name_));
    const QString objection = output_->objection();
    if (!objection.isNull())
        throwWriteError(objection);
    if (!output_->open())
        throwWriteError(output_->errorText());
    try {
        begin(attributes, instruments, groups);
    } catch (...) {
        file_.close(); // as long as it is this thread's turn
        throw;
    }
}

void PyWriter::begin(const py::dict &attributes, const py::list &instruments, const py::list &groups)
{
    MsFileLayout made;
    made.experiment_type = layout_.isLibrary ? MsLibrarySpectrum : MsCentroidedSpectrum;
    made.scan_count = layout_.scans;
    made.instrument_count = qint32(instruments.size());
    made.mass_format = layout_.floatMasses ? MsFloatFormat : MsDoubleFormat;
    made.intensity_format = layout_.floatIntensities ? MsFloatFormat : MsDoubleFormat;
    file_ = MsFile::create(output_->path().constData(), made);
    if (!file_)
        fail(QStringLiteral("netCDF can't create it"));
    writeGlobals(attributes);
    writeInstruments(instruments);
    writeGroups(groups);
}

PyWriter::~PyWriter()
{
    const Turn turn;
    const KeptNames kept;
    file_.close();
    output_.reset();
}

void PyWriter::fail(const QString &reason)
{
    output_->fail(reason);
    throwWriteError(output_->errorText());
}

char *PyWriter::keep(const QByteArray &text)
{
    texts_.push_back(text);
    return texts_.back().data();
}

void PyWriter::add(const py::dict &numbers, const py::array &masses, const py::array &intensities,
                   const py::tuple &flags, const py::dict &entry)
{
    const Turn turn;
    const KeptNames kept;
    if (!file_)
        throwClosedError(QStringLiteral("The file \"%1\" is finished.").arg(name_));
    const qint32 place = next_++;
    const auto refuse = [&](const QString &why) {
        throwWriteError(
            QStringLiteral("Scan %1 of \"%2\" can't be written: %3.").arg(place).arg(name_, why));
    };
    if (masses.ndim() != 1 || intensities.ndim() != 1 || masses.size() != intensities.size()
        || masses.size() > std::numeric_limits<qint32>::max())
        refuse(QStringLiteral("masses and intensities aren't two arrays of one length"));
    if (!areNumbers(masses) || !areNumbers(intensities))
        refuse(QStringLiteral("masses and intensities aren't numbers"));
    if (!areExact(masses) || !areExact(intensities))
        refuse(QStringLiteral("a mass or intensity is too large to be stored exactly"));
    const Vector storedMasses(masses, layout_.floatMasses);
    const Vector storedIntensities(intensities, layout_.floatIntensities);
    if (!storedMasses.areData() || !storedIntensities.areData())
        refuse(QStringLiteral("a mass or intensity is infinite or no number"));

    MsScanDraft scan(place);
    for (const auto &[key, value] : numbers) {
        const QByteArray name = bytesOf(key);
        const MsVariableRow *row = rowOf(ms_per_scan_table, name);
        if (!row)
            refuse(QStringLiteral("\"%1\" is no number that scans have").arg(QString::fromUtf8(name)));
        if (!storeNumber(value, row->nc_type, row->field, static_cast<MsScanRecord *>(&scan)))
            refuse(refusal(*row, value));
    }
    if (const std::optional<MsInterval> range = storedMasses.range()) {
        scan.mass_range_min = knownOr(scan.mass_range_min, range->from);
        scan.mass_range_max = knownOr(scan.mass_range_max, range->to);
    }
    const double sum = storedIntensities.sum();
    if (!ms_is_given(scan.total_intensity) && !std::isfinite(sum))
        refuse(QStringLiteral("its intensities add up to more than a number can hold"));
    scan.total_intensity = knownOr(scan.total_intensity, sum);
    scan.point_count = qint32(masses.size());
    scan.mass_values = storedMasses.data();
    scan.intensity_values = storedIntensities.data();
    const Numbers<qint32> flaggedPeaks(flags[0]);
    const Numbers<qint16> flagValues(flags[1]);
    if (flaggedPeaks.size() != flagValues.size())
        refuse(QStringLiteral("it has a flag without a value"));
    scan.flag_count = qint32(flaggedPeaks.size());
    if (scan.flag_count > 0) {
        scan.flagged_peaks = const_cast<qint32 *>(flaggedPeaks.data());
        scan.flag_values = const_cast<qint16 *>(flagValues.data());
    }

    MsLibraryDraft compound(place);
    const std::size_t before = texts_.size();
    for (const auto &[key, value] : entry) {
        const QByteArray name = bytesOf(key);
        const MsVariableRow *row = rowOf(ms_library_table, name);
        if (!row)
            refuse(QStringLiteral("\"%1\" is nothing that compounds have").arg(QString::fromUtf8(name)));
        auto *record = static_cast<MsLibraryRecord *>(&compound);
        bool isSet = false;
        if (row->nc_type == NC_CHAR) {
            const std::optional<QByteArray> latin1 = latin1Of(value, *row);
            isSet = latin1.has_value();
            if (isSet)
                *reinterpret_cast<char **>(reinterpret_cast<char *>(record) + row->field) = keep(*latin1);
        } else {
            isSet = storeNumber(value, row->nc_type, row->field, record);
        }
        if (!isSet)
            refuse(refusal(*row, value));
    }
    const bool written = layout_.isLibrary ? file_.write(scan, compound) : file_.write(scan);
    texts_.resize(before);
    if (!written)
        fail(QStringLiteral("netCDF refuses scan %1").arg(place));
}

void PyWriter::finish()
{
    const Turn turn;
    const KeptNames kept;
    if (next_ != layout_.scans)
        fail(QStringLiteral("only %1 of its %2 scans came").arg(next_).arg(layout_.scans));
    if (!file_.finish())
        fail(QStringLiteral("netCDF can't end it"));
    if (!output_->commit())
        throwWriteError(output_->errorText());
}

void definePyWriter(py::module_ &module)
{
    module.def(
        "create",
        [](const py::object &path, bool overwrite, qint32 scans, bool floatMasses, bool floatIntensities,
           bool isLibrary, const py::dict &attributes, const py::list &instruments,
           const py::list &groups) {
            return std::make_unique<PyWriter>(path, overwrite,
                                              PyLayout{scans, floatMasses, floatIntensities, isLibrary},
                                              attributes, instruments, groups);
        },
        py::kw_only(), py::arg("path"), py::arg("overwrite"), py::arg("scans"), py::arg("float_masses"),
        py::arg("float_intensities"), py::arg("is_library"), py::arg("attributes"),
        py::arg("instruments"), py::arg("groups"));
    py::class_<PyWriter> type(module, "Writer");
    forbidNew(type);
    type.def("add", &PyWriter::add).def("finish", &PyWriter::finish);
}
