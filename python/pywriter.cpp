#include "pywriter.h"

#include "errors.h"
#include "texts.h"
#include "turn.h"

#include "msspectrum.h"
#include "numbers_p.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <optional>
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

// The whole number that 32 bits hold, if it is one.
std::optional<qint32> wholeNumber(const py::handle &value)
{
    int overflow = 0;
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    const long long number = index ? PyLong_AsLongLongAndOverflow(index.ptr(), &overflow) : 0;
    PyErr_Clear();
    if (!index || overflow != 0 || number != qint32(number))
        return std::nullopt;
    return qint32(number);
}

// A number for a field of that type. Returns false where it isn't one that the type holds and a reader
// would take for one.
bool storeNumber(const py::handle &value, qint32 type, std::size_t field, void *record)
{
    if (type == NC_SHORT || type == NC_LONG) {
        const std::optional<qint32> number = wholeNumber(value);
        if (!number || (type == NC_SHORT && *number != qint16(*number)) || !isKnown(*number)
            || ms_is_fill(type, *number))
            return false;
        ms_store_variant(record, field, QVariant(*number), type);
        return true;
    }
    const double number = py::isinstance<py::str>(value) ? unknownNumber : PyFloat_AsDouble(value.ptr());
    const bool isNumber = PyErr_Occurred() == nullptr;
    PyErr_Clear();
    if (!isNumber || !isKnown(number) || (type == NC_FLOAT && !isKnown(double(float(number)))))
        return false;
    ms_store_variant(record, field, QVariant(number), type);
    return true;
}

const MsVariableRow *rowOf(const MsTable<MsVariableRow> &table, const QByteArray &name)
{
    const auto *row = std::find_if(table.begin(), table.end(),
                                   [&name](const MsVariableRow &one) { return name == one.name; });
    return row == table.end() ? nullptr : row;
}

template <class Number> using Numbers = py::array_t<Number, py::array::c_style | py::array::forcecast>;

bool areNumbers(const py::array &array)
{
    const char kind = array.dtype().kind();
    return kind == 'i' || kind == 'u' || kind == 'f';
}

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

    // Calls `use` with the first number and the end, of the type that the file has.
    template <class Use> auto with(const Use &use) const
    {
        const auto *floats = static_cast<const float *>(array.data());
        const auto *doubles = static_cast<const double *>(array.data());
        return isFloat ? use(floats, floats + array.size()) : use(doubles, doubles + array.size());
    }

    // Whether a reader would take each number for one.
    bool areData() const
    {
        return with([](const auto *first, const auto *end) {
            return std::all_of(first, end, [](auto number) {
                return std::isfinite(number) && !ms_is_fill(NC_DOUBLE, double(number));
            });
        });
    }

    double sum() const
    {
        return with([](const auto *first, const auto *end) { return std::accumulate(first, end, 0.0); });
    }

    // The lowest and the highest number, where there are any.
    std::optional<MsInterval> range() const
    {
        if (array.size() == 0)
            return std::nullopt;
        return with([](const auto *first, const auto *end) {
            const auto [lowest, highest] = std::minmax_element(first, end);
            return MsInterval{double(*lowest), double(*highest)};
        });
    }

    py::array array;
    bool isFloat = false;
};

// Returns the object as text for messages.
QString shown(const py::handle &object)
{
    return QString::fromStdString(
        py::reinterpret_steal<py::object>(PyObject_ASCII(object.ptr())).cast<std::string>());
}

// Returns the text in UTF-8. Throws WriteError for one that would come back in another form.
QByteArray bytesOf(const py::handle &text)
{
    const py::str whole(text);
    Py_ssize_t size = 0;
    const char *utf8 = PyUnicode_AsUTF8AndSize(whole.ptr(), &size);
    PyErr_Clear();
    if (!utf8 || std::memchr(utf8, 0, std::size_t(size)))
        throwWriteError(QStringLiteral("%1 can't be written, as it has a NUL or half a character.")
                            .arg(shown(whole)));
    return QByteArray(utf8, int(size));
}

qint32 widthOf(const MsVariableRow &row)
{
    const auto *dimension =
        std::find_if(ms_dimension_table.begin(), ms_dimension_table.end(),
                     [&row](const MsDimensionRow &one) { return one.slot == row.dims[1]; });
    return dimension->size - 1; // without the NUL behind it
}

// Why a variable doesn't take a value, as the rest of a sentence.
QString refusal(const MsVariableRow &row, const py::handle &value)
{
    const QString name = QLatin1String(row.name);
    if (row.nc_type == NC_CHAR)
        return QStringLiteral("%1 has at most %2 characters, all of Latin-1").arg(name).arg(widthOf(row));
    return QStringLiteral("%1 can't be %2").arg(name, shown(value));
}

} // namespace

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

// Returns the text as a variable has it, in Latin-1; null where it doesn't.
char *PyWriter::keepFor(const MsVariableRow &row, const py::handle &text)
{
    const auto latin1 = py::reinterpret_steal<py::object>(PyUnicode_AsLatin1String(py::str(text).ptr()));
    PyErr_Clear();
    const QByteArray bytes =
        latin1 ? QByteArray::fromStdString(latin1.cast<std::string>()) : QByteArray();
    const bool fits = latin1 && bytes.size() <= widthOf(row) && !bytes.contains('\0');
    return fits ? keep(bytes) : nullptr;
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
                *reinterpret_cast<char **>(field) = keep(bytesOf(value));
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
        if (!given || given.ndim() > 1 || !areNumbers(given))
            throwWriteError(QStringLiteral("The attribute \"%1\" is neither a text nor numbers.")
                                .arg(QString::fromUtf8(name)));
        const Numbers<double> numbers(given);
        const bool isWhole = given.dtype().kind() != 'f';
        const auto areWithin = [&numbers](double lowest, double highest) {
            return std::all_of(numbers.data(), numbers.data() + numbers.size(),
                               [=](double number) { return number >= lowest && number <= highest; });
        };
        constexpr double highestExact = 9007199254740992.0; // 2^53, from where double rounds
        if (isWhole && !areWithin(1.0 - highestExact, highestExact - 1.0))
            throwWriteError(QStringLiteral("The attribute \"%1\" is too large to be stored exactly.")
                                .arg(QString::fromUtf8(name)));
        const bool fits =
            isWhole && areWithin(std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max());
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
            if (text.is_none())
                continue;
            char *kept = keepFor(row, text);
            if (!kept)
                fail(refusal(row, text));
            *reinterpret_cast<char **>(reinterpret_cast<char *>(&component) + row.field) = kept;
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
    for (const py::handle &group : groups) {
        for (const char *name : {"masses", "sampling_times", "delay_times"})
            most = std::max(most, py::len(group[name]));
    }
    bool written = file_.defineGroups(qint32(groups.size()), qint32(most));
    qint32 place = 0;
    for (const py::handle &group : groups) {
        const auto refuse = [&](const char *name) {
            fail(QStringLiteral("the %1 of a group can't be %2")
                     .arg(QLatin1String(name), shown(group[name])));
        };
        const auto whole = [&](const char *name) {
            const std::optional<qint32> number = wholeNumber(group[name]);
            if (!number)
                refuse(name);
            return *number;
        };
        MsGroupDraft record(place++);
        record.group_mass_count = whole("mass_count");
        record.group_starting_scan = whole("starting_scan");
        const auto widened = [&](const char *name) {
            const py::array given = py::array::ensure(group[name]);
            if (!given || given.ndim() != 1 || !areNumbers(given)
                || given.size() > std::max(record.group_mass_count, 0))
                refuse(name); // a reader takes as many as are counted
            const Numbers<double> stored(given);
            std::vector<double> numbers(most, MsMissingDouble);
            for (std::size_t i = 0; i < std::size_t(stored.size()); ++i) {
                const double number = stored.data()[i];
                if (!std::isnan(number) && !isKnown(number))
                    refuse(name);
                numbers[i] = knownOr(number, MsMissingDouble);
            }
            return numbers;
        };
        std::vector<double> masses = widened("masses");
        std::vector<double> samplingTimes = widened("sampling_times");
        std::vector<double> delayTimes = widened("delay_times");
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
    if (!areNumbers(masses) || !areNumbers(intensities))
        refuse(QStringLiteral("masses and intensities aren't numbers"));
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
    scan.total_intensity = knownOr(scan.total_intensity, storedIntensities.sum());
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
            char *&text = *reinterpret_cast<char **>(reinterpret_cast<char *>(record) + row->field);
            text = keepFor(*row, value);
            isSet = text != nullptr;
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
