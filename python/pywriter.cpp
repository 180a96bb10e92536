#include "pywriter.h"

#include "errors.h"
#include "texts.h"
#include "turn.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

// What says how the file is made is written anew, whatever the run was made from.
constexpr const char *madeAnew[] = {"ms_template_revision", "netcdf_revision", "raw_data_mass_format",
                                    "raw_data_time_format", "raw_data_intensity_format"};

// For these the toolkit has texts of its own, so others are put behind it.
constexpr const char *fixed[] = {"dataset_completeness", "languages"};

template <std::size_t count> bool isOneOf(const char *const (&names)[count], const std::string &name)
{
    return std::any_of(names, names + count, [&name](const char *one) { return name == one; });
}

bool isWholeNumber(const py::handle &value)
{
    return py::isinstance<py::int_>(value) || py::hasattr(value, "__index__");
}

bool isNumber(const py::handle &value)
{
    return isWholeNumber(value) || PyFloat_Check(value.ptr()) || py::hasattr(value, "__float__");
}

// The whole number, where 32 bits hold it. Throws OverflowError where even 64 don't.
bool fits32(const py::handle &value)
{
    const auto number = value.cast<qint64>();
    return number >= std::numeric_limits<qint32>::min() && number <= std::numeric_limits<qint32>::max();
}

// A number for a field of that type. Returns false where the type doesn't hold it.
bool storeNumber(const py::handle &value, qint32 type, std::size_t field, void *record)
{
    if (type == NC_SHORT || type == NC_LONG) {
        if (!isWholeNumber(value) || !fits32(value))
            return false;
        const auto number = value.cast<qint32>();
        if (type == NC_SHORT && number != qint16(number))
            return false;
        ms_store_variant(record, field, QVariant(number), type);
        return true;
    }
    if (!isNumber(value))
        return false;
    ms_store_variant(record, field,
                     QVariant(py::float_(py::reinterpret_borrow<py::object>(value)).cast<double>()),
                     type);
    return true;
}

template <class Record>
const MsVariableRow *rowOf(const MsTable<MsVariableRow> &table, const Record &name)
{
    const auto *row = std::find_if(table.begin(), table.end(),
                                   [&name](const MsVariableRow &one) { return name == one.name; });
    return row == table.end() ? nullptr : row;
}

template <class Number> using Numbers = py::array_t<Number, py::array::c_style | py::array::forcecast>;

// The numbers as the file has them, and a pointer to the first; null for none.
struct Vector {
    Vector(const py::array &numbers, bool asFloat)
    {
        if (asFloat)
            array = Numbers<float>(numbers);
        else
            array = Numbers<double>(numbers);
        isFloat = asFloat;
    }

    void *data() const { return array.size() > 0 ? const_cast<void *>(array.data()) : nullptr; }

    // Whether a reader would take each number for one.
    bool areData() const
    {
        const auto check = [this](const auto *numbers) {
            return std::all_of(numbers, numbers + array.size(), [](auto number) {
                return std::isfinite(number) && !ms_is_fill(NC_DOUBLE, double(number));
            });
        };
        return isFloat ? check(static_cast<const float *>(array.data()))
                       : check(static_cast<const double *>(array.data()));
    }

    py::array array;
    bool isFloat = false;
};

QByteArray bytesOf(const py::handle &text)
{
    return QByteArray::fromStdString(py::str(text).cast<std::string>()); // UTF-8
}

} // namespace

PyWriter::PyWriter(const py::object &path, bool overwrite, const PyLayout &layout,
                   const py::dict &attributes, const py::list &instruments, const py::list &groups)
    : layout_(layout)
{
    const Turn turn;
    const KeptNames kept;
    name_ = fileName(path);
    const QString name = name_ == QLatin1String("-") ? QStringLiteral("./-") : name_;
    output_ = std::make_unique<OutputFile>(
        name, overwrite ? OutputFile::Existing::Replace : OutputFile::Existing::Keep);
    if (output_->isDirect())
        throwWriteError(QStringLiteral("\"%1\" isn't a regular file.").arg(name_));
    if (!overwrite && QFileInfo(output_->place()).isFile())
        throwWriteError(
            QStringLiteral("The file \"%1\" exists. With overwrite=True it is written over.").arg(name_));
    const QString objection = output_->objection();
    if (!objection.isNull())
        throwWriteError(objection);
    if (!output_->open())
        throwWriteError(output_->errorText());

    MsFileLayout made;
    made.experiment_type = layout.isLibrary ? MsLibrarySpectrum : MsCentroidedSpectrum;
    made.scan_count = layout.scans;
    made.instrument_count = qint32(instruments.size());
    made.mass_format = layout.floatMasses ? MsFloatFormat : MsDoubleFormat;
    made.intensity_format = layout.floatIntensities ? MsFloatFormat : MsDoubleFormat;
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

char *PyWriter::keep(const py::handle &text)
{
    texts_.push_back(bytesOf(text));
    return texts_.back().data();
}

void PyWriter::writeGlobals(const py::dict &attributes)
{
    MsGlobalsDraft globals;
    py::dict others;
    for (const auto &[name, value] : attributes) {
        if (!isOneOf(madeAnew, py::str(name)))
            others[name] = value;
    }
    const auto fill = [&](const MsTable<MsAttributeRow> &table, auto *record) {
        for (const MsAttributeRow &row : table) {
            if (row.variable != -1)
                continue;
            auto *field = reinterpret_cast<char *>(record) + row.field;
            if (row.enumerated) // what nobody states isn't in the file
                *reinterpret_cast<qint32 *>(field) = -1;
            if (!others.contains(row.name))
                continue;
            const py::object value = others[row.name];
            const bool isText = py::isinstance<py::str>(value);
            bool isSet = false;
            if (row.enumerated && isText) {
                *reinterpret_cast<qint32 *>(field) = ms_enum_code(bytesOf(value).constData());
                isSet = *reinterpret_cast<qint32 *>(field) != -1;
            } else if (row.nc_type == NC_CHAR && isText && !isOneOf(fixed, row.name)) {
                *reinterpret_cast<char **>(field) = keep(value);
                isSet = true;
            } else if (row.nc_type != NC_CHAR && !row.enumerated && !isText) {
                isSet = storeNumber(value, row.nc_type, row.field, record);
            }
            if (isSet)
                others.attr("pop")(row.name);
        }
    };
    fill(ms_admin_table, &globals.admin);
    fill(ms_sample_table, &globals.sample);
    fill(ms_test_table, &globals.test);
    fill(ms_raw_table, &globals.raw);
    if (!others.contains("experiment_type") && globals.admin.experiment_type == -1)
        globals.admin.experiment_type = layout_.isLibrary ? MsLibrarySpectrum : MsCentroidedSpectrum;
    globals.raw.raw_data_mass_format = layout_.floatMasses ? MsFloatFormat : MsDoubleFormat;
    globals.raw.raw_data_intensity_format = layout_.floatIntensities ? MsFloatFormat : MsDoubleFormat;
    if (!file_.write(globals) || !putOthers(others))
        fail(QStringLiteral("netCDF refuses its attributes"));
}

// Writes attributes as they are given: those that the template lacks, and those whose values it doesn't
// foresee.
bool PyWriter::putOthers(const py::dict &attributes)
{
    if (attributes.empty())
        return true;
    bool written = nc_redef(file_.id()) == NC_NOERR;
    for (const auto &[key, value] : attributes) {
        const QByteArray name = bytesOf(key);
        if (value.is_none())
            continue;
        if (py::isinstance<py::str>(value)) {
            const QByteArray text = bytesOf(value);
            written = written
                && nc_put_att_text(file_.id(), NC_GLOBAL, name.constData(), std::size_t(text.size()),
                                   text.constData())
                    == NC_NOERR;
            continue;
        }
        const py::array given = py::array::ensure(value);
        const bool isWhole = given && (given.dtype().kind() == 'i' || given.dtype().kind() == 'u');
        if (!given || given.ndim() > 1 || !(isWhole || given.dtype().kind() == 'f'))
            throwWriteError(QStringLiteral("The attribute \"%1\" is neither a text nor numbers.")
                                .arg(QString::fromUtf8(name)));
        const Numbers<double> numbers(given);
        const bool fits =
            isWhole && std::all_of(numbers.data(), numbers.data() + numbers.size(), [](double number) {
                return number >= std::numeric_limits<qint32>::min()
                    && number <= std::numeric_limits<qint32>::max();
            });
        written = written
            && nc_put_att_double(file_.id(), NC_GLOBAL, name.constData(), fits ? NC_INT : NC_DOUBLE,
                                 std::size_t(numbers.size()), numbers.data())
                == NC_NOERR;
    }
    return written && nc_enddef(file_.id()) == NC_NOERR;
}

void PyWriter::writeInstruments(const py::list &instruments)
{
    qint32 place = 0;
    for (const py::handle &one : instruments) {
        MsInstrumentDraft component(place++);
        constexpr std::size_t prefix = sizeof("instrument_") - 1;
        for (const MsVariableRow &row : ms_instrument_table) {
            const py::object text = one.attr("get")(row.name + prefix);
            if (!text.is_none())
                *reinterpret_cast<char **>(reinterpret_cast<char *>(&component) + row.field) = keep(text);
        }
        if (!file_.write(component))
            fail(QStringLiteral("netCDF refuses a component of the instrument"));
    }
}

void PyWriter::writeGroups(const py::list &groups)
{
    if (groups.empty())
        return;
    std::size_t most = 1;
    for (const py::handle &group : groups)
        most = std::max(most, py::len(group["masses"]));
    bool written = file_.defineGroups(qint32(groups.size()), qint32(most));
    qint32 place = 0;
    for (const py::handle &group : groups) {
        const auto widened = [&](const char *name) {
            std::vector<double> numbers(most, MsMissingDouble);
            const Numbers<double> given(group[name]);
            for (std::size_t i = 0; i < std::min(most, std::size_t(given.size())); ++i) {
                const double number = given.data()[i];
                numbers[i] = std::isnan(number) ? MsMissingDouble : number;
            }
            return numbers;
        };
        std::vector<double> masses = widened("masses");
        std::vector<double> samplingTimes = widened("sampling_times");
        std::vector<double> delayTimes = widened("delay_times");
        MsGroupDraft record(place++);
        record.group_mass_count = group["mass_count"].cast<qint32>();
        record.group_starting_scan = group["starting_scan"].cast<qint32>();
        record.group_masses = masses.data();
        record.group_sampling_times = samplingTimes.data();
        record.group_delay_times = delayTimes.data();
        written = written && file_.write(record);
    }
    if (!written)
        fail(QStringLiteral("netCDF refuses its groups of masses"));
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
    const Vector storedMasses(masses, layout_.floatMasses);
    const Vector storedIntensities(intensities, layout_.floatIntensities);
    if (!storedMasses.areData() || !storedIntensities.areData())
        refuse(QStringLiteral("a mass or intensity is infinite or no number"));

    MsScanDraft scan(place);
    for (const auto &[key, value] : numbers) {
        const auto name = key.cast<std::string>();
        const MsVariableRow *row = rowOf(ms_per_scan_table, name);
        if (!row || !storeNumber(value, row->nc_type, row->field, static_cast<MsScanRecord *>(&scan)))
            refuse(
                QStringLiteral("\"%1\" is no number that scans have").arg(QString::fromStdString(name)));
    }
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
        const auto name = key.cast<std::string>();
        const MsVariableRow *row = rowOf(ms_library_table, name);
        auto *record = static_cast<MsLibraryRecord *>(&compound);
        bool isSet = row != nullptr;
        if (row && row->nc_type == NC_CHAR)
            *reinterpret_cast<char **>(reinterpret_cast<char *>(record) + row->field) = keep(value);
        else if (row)
            isSet = storeNumber(value, row->nc_type, row->field, record);
        if (!isSet)
            refuse(QStringLiteral("\"%1\" is nothing that compounds have")
                       .arg(QString::fromStdString(name)));
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
    if (!file_.finish())
        fail(QStringLiteral("netCDF can't end it"));
    if (!output_->commit())
        throwWriteError(output_->errorText());
}

void definePyWriter(py::module_ &module)
{
    py::class_<PyWriter>(module, "Writer")
        .def(py::init([](const py::object &path, bool overwrite, qint32 scans, bool floatMasses,
                         bool floatIntensities, bool isLibrary, const py::dict &attributes,
                         const py::list &instruments, const py::list &groups) {
                 return std::make_unique<PyWriter>(
                     path, overwrite, PyLayout{scans, floatMasses, floatIntensities, isLibrary},
                     attributes, instruments, groups);
             }),
             py::kw_only(), py::arg("path"), py::arg("overwrite"), py::arg("scans"),
             py::arg("float_masses"), py::arg("float_intensities"), py::arg("is_library"),
             py::arg("attributes"), py::arg("instruments"), py::arg("groups"))
        .def("add", &PyWriter::add)
        .def("finish", &PyWriter::finish);
}
