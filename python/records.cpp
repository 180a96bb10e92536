#include "records.h"

#include "pyarrays.h"
#include "texts.h"

#include "numbers_p.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t longestValue = 1 << 24; // bytes; a file can claim any number

py::str textOfBytes(const std::string &bytes)
{
    const std::size_t size = std::min(bytes.find('\0'), bytes.size());
    PyObject *text = PyUnicode_DecodeUTF8(bytes.data(), py::ssize_t(size), nullptr);
    if (!text) { // as older programs wrote them
        PyErr_Clear();
        text = PyUnicode_DecodeLatin1(bytes.data(), py::ssize_t(size), nullptr);
    }
    if (!text)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(text);
}

template <class Number> py::object numbersOf(int ncid, int variable, const char *name, std::size_t count)
{
    std::vector<Number> numbers(count);
    if (nc_get_att(ncid, variable, name, numbers.data()) != NC_NOERR)
        return py::none();
    if (count == 1)
        return py::cast(numbers.front());
    py::list result;
    for (const Number number : numbers)
        result.append(number);
    return result;
}

py::object stringsOf(int ncid, int variable, const char *name, std::size_t count)
{
    std::vector<char *> strings(count, nullptr);
    if (nc_get_att_string(ncid, variable, name, strings.data()) != NC_NOERR)
        return py::none();
    py::list result;
    for (const char *string : strings)
        result.append(string ? textOfBytes(string) : py::str());
    nc_free_string(count, strings.data());
    return count == 1 ? py::object(result[0]) : py::object(result);
}

py::object valueOf(int ncid, int variable, const char *name)
{
    nc_type type = NC_NAT;
    std::size_t count = 0;
    std::size_t width = 0;
    if (nc_inq_att(ncid, variable, name, &type, &count) != NC_NOERR
        || nc_inq_type(ncid, type, nullptr, &width) != NC_NOERR
        || count > longestValue / std::max<std::size_t>(width, 1))
        return py::none();
    switch (type) {
    case NC_CHAR: {
        std::string text(count, '\0');
        if (nc_get_att_text(ncid, variable, name, text.data()) != NC_NOERR)
            return py::none();
        return textOfBytes(text);
    }
    case NC_BYTE:
        return numbersOf<signed char>(ncid, variable, name, count);
    case NC_SHORT:
        return numbersOf<short>(ncid, variable, name, count);
    case NC_INT:
        return numbersOf<int>(ncid, variable, name, count);
    case NC_FLOAT:
        return numbersOf<float>(ncid, variable, name, count);
    case NC_DOUBLE:
        return numbersOf<double>(ncid, variable, name, count);
    case NC_UBYTE:
        return numbersOf<unsigned char>(ncid, variable, name, count);
    case NC_USHORT:
        return numbersOf<unsigned short>(ncid, variable, name, count);
    case NC_UINT:
        return numbersOf<unsigned>(ncid, variable, name, count);
    case NC_INT64:
        return numbersOf<long long>(ncid, variable, name, count);
    case NC_UINT64:
        return numbersOf<unsigned long long>(ncid, variable, name, count);
    case NC_STRING:
        return stringsOf(ncid, variable, name, count);
    default:
        return py::none();
    }
}

py::object textOrNone(const char *latin1)
{
    return pythonTextOrNone(textOf(latin1));
}

py::object numberOrNone(qint32 number)
{
    return number == -1 ? py::object(py::none()) : py::object(py::int_(number));
}

// Numbers of a group, NaN for those that the file lacks.
py::array_t<double> knownNumbers(const MsNumbers &numbers)
{
    std::vector<double> result = numbers.toVector();
    for (double &number : result)
        number = known(number);
    return arrayOf(result);
}

} // namespace

py::dict attributesOf(int ncid, int variable)
{
    py::dict result;
    int count = 0;
    if ((variable == NC_GLOBAL ? nc_inq_natts(ncid, &count) : nc_inq_varnatts(ncid, variable, &count))
        != NC_NOERR)
        return result;
    for (int i = 0; i < count; ++i) {
        char name[NC_MAX_NAME + 1] = {};
        if (nc_inq_attname(ncid, variable, i, name) == NC_NOERR)
            result[textOfBytes(name)] = valueOf(ncid, variable, name);
    }
    return result;
}

py::dict attributesOfVariables(int ncid)
{
    py::dict result;
    int count = 0;
    nc_inq_nvars(ncid, &count);
    for (int variable = 0; variable < count; ++variable) {
        char name[NC_MAX_NAME + 1] = {};
        const py::dict attributes = attributesOf(ncid, variable);
        if (py::len(attributes) > 0 && nc_inq_varname(ncid, variable, name) == NC_NOERR)
            result[textOfBytes(name)] = attributes;
    }
    return result;
}

py::dict instrumentOf(const MsInstrument &component)
{
    py::dict result;
    constexpr std::size_t prefix = sizeof("instrument_") - 1; // of all names of the table
    for (const MsVariableRow &row : ms_instrument_table) {
        const auto *record =
            reinterpret_cast<const char *>(static_cast<const MsInstrumentRecord *>(&component));
        result[row.name + prefix] = textOrNone(*reinterpret_cast<char *const *>(record + row.field));
    }
    return result;
}

py::dict groupOf(const MsGroup &group)
{
    py::dict result;
    result["mass_count"] = group.group_mass_count;
    result["starting_scan"] = group.group_starting_scan;
    result["masses"] = knownNumbers(group.masses());
    result["sampling_times"] = knownNumbers(group.samplingTimes());
    result["delay_times"] = knownNumbers(group.delayTimes());
    return result;
}

py::dict compoundOf(const MsCompound &compound)
{
    py::dict result;
    const auto text = [&result](const char *name, const QString &value) {
        result[name] = pythonTextOrNone(value);
    };
    text("name", compound.name);
    py::list others;
    for (const QString &other : compound.otherNames)
        others.append(pythonText(other));
    result["other_names"] = py::tuple(others);
    text("id", compound.id);
    result["number"] = numberOrNone(compound.number);
    text("formula", compound.formula);
    text("cas_name", compound.casName);
    result["cas_number"] = numberOrNone(compound.casNumber);
    text("smiles", compound.smiles);
    text("wiswesser", compound.wiswesser);
    text("source", compound.source);
    text("molfile", compound.molfile);
    text("structure", compound.structure);
    text("information", compound.information);
    result["retention_index"] = compound.retentionIndex;
    text("retention_type", compound.retentionType);
    result["absolute_retention"] = compound.absoluteRetention;
    result["relative_retention"] = compound.relativeRetention;
    text("retention_reference", compound.retentionReference);
    result["retention_reference_number"] = numberOrNone(compound.retentionReferenceNumber);
    result["melting_point"] = compound.meltingPoint;
    result["boiling_point"] = compound.boilingPoint;
    result["chemical_mass"] = compound.chemicalMass;
    result["nominal_mass"] = numberOrNone(compound.nominalMass);
    result["accurate_mass"] = compound.accurateMass;
    return result;
}

py::dict doubtOf(const MsDoubt &doubt)
{
    py::dict result;
    result["code"] = doubt.code;
    result["count"] = doubt.count;
    result["example"] = pythonText(doubt.example);
    result["text"] = pythonText(doubt.text);
    result["is_loss"] = doubt.isLoss;
    return result;
}
