#include "givenvalues.h"

#include "errors.h"

#include "numbers_p.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <string>

namespace {

qint32 widthOf(const MsVariableRow &row)
{
    const auto *dimension =
        std::find_if(ms_dimension_table.begin(), ms_dimension_table.end(),
                     [&row](const MsDimensionRow &one) { return one.slot == row.dims[1]; });
    return dimension->size - 1; // without the NUL behind it
}

} // namespace

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

bool storeNumber(const py::handle &value, qint32 type, std::size_t field, void *record)
{
    if (type == NC_SHORT || type == NC_LONG) {
        const std::optional<qint32> number = wholeNumber(value);
        if (!number || (type == NC_SHORT && *number != qint16(*number)) || !ms_is_given(*number)
            || ms_is_fill(type, *number))
            return false;
        ms_store_variant(record, field, QVariant(*number), type);
        return true;
    }
    const double number = py::isinstance<py::str>(value) ? unknownNumber : PyFloat_AsDouble(value.ptr());
    const bool isNumber = PyErr_Occurred() == nullptr;
    PyErr_Clear();
    if (!isNumber || !ms_is_given(number) || (type == NC_FLOAT && !ms_is_given(double(float(number)))))
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

bool areNumbers(const py::array &array)
{
    const char kind = array.dtype().kind();
    return kind == 'i' || kind == 'u' || kind == 'f';
}

bool areExact(const py::array &array)
{
    constexpr double most = 9007199254740992.0; // 2^53
    if (array.dtype().kind() == 'f')
        return true;
    const Numbers<double> numbers(array);
    return std::all_of(numbers.data(), numbers.data() + numbers.size(),
                       [](double number) { return std::abs(number) < most; });
}

QString shown(const py::handle &object)
{
    return QString::fromStdString(
        py::reinterpret_steal<py::object>(PyObject_ASCII(object.ptr())).cast<std::string>());
}

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

std::optional<QByteArray> latin1Of(const py::handle &text, const MsVariableRow &row)
{
    const auto latin1 = py::reinterpret_steal<py::object>(PyUnicode_AsLatin1String(py::str(text).ptr()));
    PyErr_Clear();
    if (!latin1)
        return std::nullopt;
    QByteArray bytes = QByteArray::fromStdString(latin1.cast<std::string>());
    if (bytes.size() > widthOf(row) || bytes.contains('\0'))
        return std::nullopt;
    return bytes;
}

QString refusal(const MsVariableRow &row, const py::handle &value)
{
    const QString name = QLatin1String(row.name);
    if (row.nc_type == NC_CHAR)
        return QStringLiteral("%1 has at most %2 characters, all of Latin-1").arg(name).arg(widthOf(row));
    return QStringLiteral("%1 can't be %2").arg(name, shown(value));
}

Vector::Vector(const py::array &numbers, bool asFloat) : isFloat(asFloat)
{
    if (asFloat)
        array = Numbers<float>(numbers);
    else
        array = Numbers<double>(numbers);
}

void *Vector::data() const
{
    return array.size() > 0 ? const_cast<void *>(array.data()) : nullptr;
}

// Calls `use` with the first number and the end, of the type that the file has.
template <class Use> auto Vector::with(const Use &use) const
{
    const auto *floats = static_cast<const float *>(array.data());
    const auto *doubles = static_cast<const double *>(array.data());
    return isFloat ? use(floats, floats + array.size()) : use(doubles, doubles + array.size());
}

bool Vector::areData() const
{
    return with([](const auto *first, const auto *end) {
        return std::all_of(first, end, [](auto number) {
            return std::isfinite(number) && !ms_is_fill(NC_DOUBLE, double(number));
        });
    });
}

double Vector::sum() const
{
    return with([](const auto *first, const auto *end) { return std::accumulate(first, end, 0.0); });
}

std::optional<MsInterval> Vector::range() const
{
    if (array.size() == 0)
        return std::nullopt;
    return with([](const auto *first, const auto *end) {
        const auto [lowest, highest] = std::minmax_element(first, end);
        return MsInterval{double(*lowest), double(*highest)};
    });
}
