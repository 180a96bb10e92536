// What a file says beside its scans, as PyWriter writes it.

#include "pywriter.h"

#include "errors.h"
#include "givenvalues.h"

#include "numbers_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
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

} // namespace

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
        if (!areExact(given))
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
            const std::optional<QByteArray> latin1 = latin1Of(text, row);
            if (!latin1)
                fail(refusal(row, text));
            *reinterpret_cast<char **>(reinterpret_cast<char *>(&component) + row.field) = keep(*latin1);
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
                if (!std::isnan(number) && !ms_is_given(number))
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
