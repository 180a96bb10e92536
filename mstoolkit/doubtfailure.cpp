// Why a scan can't be read, found out afterwards: the readers themselves only fail.

#include "doubtfailure_p.h"

#include "columnwalk_p.h"
#include "filestate_p.h"
#include "variabletables_p.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QString about(const char *variable, const char *text)
{
    return QString::fromLatin1(text).arg(QLatin1String(variable));
}

// A variable that stands in the way of all scans. Null for one that doesn't.
QString describe_variable(MsFileState &file, const MsVariableRow &row, bool is_needed)
{
    const MsColumnWalk walk(file, row.slot);
    if (!walk.exists())
        return is_needed ? about(row.name, "%1 is missing") : QString();
    if (walk.rank() != 1)
        return about(row.name, "%1 doesn't have one dimension");
    return is_needed && !walk.is_usable() ? about(row.name, "%1 doesn't hold numbers") : QString();
}

// A counter as the reader takes it.
bool get_counter(MsColumnWalk &walk, qint32 scan, double *number)
{
    constexpr double largest = std::numeric_limits<qint32>::max();
    const MsColumnNumber found = walk.get(std::size_t(scan));
    *number = found.value;
    return found.is_known && std::abs(found.value) <= largest;
}

QString describe_place(MsFileState &file, double index, double count, double flags)
{
    for (const MsVariableRow &row : ms_value_table) {
        const bool is_needed = row.slot == MsVar_intensity_values;
        const QString fault = describe_variable(file, row, is_needed);
        if (!fault.isNull())
            return fault;
        const MsColumnWalk walk(file, row.slot);
        if (walk.exists() && (index < 0.0 || index + count + flags > double(walk.length())))
            return QStringLiteral("its positions, %1 up to %2, lie outside the %3 of %4")
                .arg(QString::number(index, 'f', 0), QString::number(index + count + flags - 1.0, 'f', 0),
                     QString::number(walk.length()), QLatin1String(row.name));
    }
    if (flags > 0.0 && !file.has_mass_values && !file.has_time_values)
        return QStringLiteral(
            "it has flags, and the file neither masses nor times that they could stand on");
    if (file.data.missing_bytes() > 0)
        return QStringLiteral("the file ends before its points");
    return QStringLiteral("its points can't be read as they are stored");
}

} // namespace

QString ms_describe_failure(MsFileState &file, qint32 scan, const MsScanPlace *place)
{
    if (scan < 0)
        return QStringLiteral("no scan has a number below 0");
    for (const MsVariableRow &row : ms_per_scan_table) {
        const QString fault = describe_variable(file, row, false);
        if (!fault.isNull())
            return fault;
        const MsColumnWalk walk(file, row.slot);
        if (walk.is_usable() && std::size_t(scan) >= walk.length())
            return about(row.name, "%1 has no element for it");
    }
    if (place)
        return describe_place(file, double(place->first), place->points, std::max(place->flags, 0));
    double numbers[3] = {0.0, 0.0, 0.0}; // index, points, flags
    int i = 0;
    for (const MsVariableRow &row : ms_counter_table) {
        double &number = numbers[i++];
        const bool is_needed = row.slot != MsVar_flag_count;
        const QString fault = describe_variable(file, row, is_needed);
        MsColumnWalk walk(file, row.slot);
        if (is_needed && !fault.isNull())
            return fault;
        if (get_counter(walk, scan, &number))
            continue;
        if (is_needed && file.data.missing_bytes() > 0)
            return about(row.name, "the file ends before its %1");
        if (is_needed)
            return about(row.name, "its %1 is no 32-bit number");
        number = 0.0;
    }
    return describe_place(file, std::floor(numbers[0]), std::floor(numbers[1]),
                          std::max(std::floor(numbers[2]), 0.0));
}
