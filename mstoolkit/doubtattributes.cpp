#include "doubtattributes_p.h"

#include "columnwalk_p.h"
#include "filestate_p.h"

#include <QByteArray>
#include <QDate>
#include <QString>

#include <algorithm>
#include <cmath>

namespace {

QString quoted(const char *text)
{
    return QLatin1Char('"') + QString::fromLatin1(text) + QLatin1Char('"');
}

bool is_bad_scale(double scale)
{
    return scale != MsMissingDouble && (!std::isfinite(scale) || scale <= 0.0);
}

// Whether digits of a text are a number from `least` to `most`.
bool is_number_between(const QByteArray &digits, int least, int most)
{
    const auto is_digit = [](char one) { return one >= '0' && one <= '9'; };
    const int number = digits.toInt();
    return std::all_of(digits.begin(), digits.end(), is_digit) && number >= least && number <= most;
}

QDate date_of(const QByteArray &stamp)
{
    return QDate(stamp.left(4).toInt(), stamp.mid(4, 2).toInt(), stamp.mid(6, 2).toInt());
}

// Whether the stamp of an acquisition has the form of the template, as far as its date is made of it.
bool is_date(const QByteArray &stamp)
{
    constexpr int farthest_zone = 14; // hours from UTC
    const auto part = [&stamp](int first, int length) { return stamp.mid(first, length); };
    const bool has_date = is_number_between(part(0, 4), 1, 9999) && is_number_between(part(4, 2), 1, 12)
        && date_of(stamp).isValid();
    const bool has_time = is_number_between(part(6, 2), 1, 31) && is_number_between(part(8, 2), 0, 23)
        && is_number_between(part(10, 2), 0, 59) && is_number_between(part(12, 2), 0, 60);
    const bool has_zone = part(14, 1) == "+" || part(14, 1) == "-";
    return stamp.size() >= 14 && has_date && has_time
        && (!has_zone || is_number_between(part(15, 2), 0, farthest_zone));
}

// A number in its place counts as absent.
bool is_given_text(int ncid, const QByteArray &name)
{
    nc_type type = NC_NAT;
    return nc_inq_atttype(ncid, NC_GLOBAL, name.constData(), &type) == NC_NOERR && type == NC_CHAR;
}

class AttributeDoubts
{
public:
    AttributeDoubts(MsFileState &state, MsDoubtList &doubts)
        : file(state), tally(state.tally), list(doubts)
    {
    }

    void look_at_all()
    {
        const MsRawGlobalRecord &raw = tally.raw;
        // Or one with which nearly all scans' ranges are those of the masses as they are stored.
        if (is_bad_scale(raw.mass_scale_factor) || tally.stored_masses.holds_where(tally.most_masses))
            list.add(MsDoubtKind::MassScale, 1, QString(), QString::number(raw.mass_scale_factor));
        look_at_mass_offset();
        if (is_bad_scale(raw.intensity_scale_factor))
            list.add(MsDoubtKind::IntensityScale, 1, QString(),
                     QString::number(raw.intensity_scale_factor));
        if (!std::isfinite(raw.intensity_add_offset))
            list.add(MsDoubtKind::IntensityOffset, 1, QString(),
                     QString::number(raw.intensity_add_offset));
        look_at_format(MsDoubtKind::MassFormat, "raw_data_mass_format", raw.raw_data_mass_format,
                       MsVar_mass_values);
        look_at_format(MsDoubtKind::IntensityFormat, "raw_data_intensity_format",
                       raw.raw_data_intensity_format, MsVar_intensity_values);
        look_at_time_unit(raw.time_units);
        look_at_date();
        look_at_times();
        look_at_first_scan(raw.starting_scan_number);
    }

private:
    void look_at_mass_offset()
    {
        const int masses = file.variables[MsVar_mass_values];
        const double offset =
            masses == -1 ? 0.0 : ms_number_attribute(file.ncid, masses, "add_offset", 0.0);
        if (offset != 0.0)
            list.add(MsDoubtKind::MassOffset, 1, QString(), QString::number(offset));
    }

    void look_at_format(MsDoubtKind kind, const char *attribute, qint32 claimed, int slot)
    {
        const char *text = ms_enum_text(claimed);
        const MsShape *shape = file.column(slot).shape();
        if (!text || !shape
            || (!is_given_text(file.ncid, attribute)
                && !is_given_text(file.ncid, ms_dash_name(attribute))))
            return;
        const char *stored = ms_enum_text(ms_format_of_nc_type(shape->type, -1));
        if (stored && qstrcmp(text, stored) != 0)
            list.add(kind, 1, quoted(stored), quoted(text));
    }

    // Minutes are no unit of the template, but that of all times that an import hands over.
    void look_at_time_unit(qint32 unit)
    {
        constexpr qint32 last_known = MsSeconds + 2; // of the units of time in the vocabulary
        const bool is_known = unit >= MsSeconds && unit <= last_known;
        const int slot = file.variables[MsVar_time_values];
        const QByteArray text = ms_text_attribute(file.ncid, slot == -1 ? NC_GLOBAL : slot, "units");
        if (!is_known && !text.isNull() && !text.trimmed().toLower().startsWith("min"))
            list.add(MsDoubtKind::TimeUnit, 1, QString(), quoted(text.trimmed()));
    }

    void look_at_date()
    {
        constexpr int clocks = 2;        // days by which two may differ, with their time zones
        constexpr int first_year = 1970; // of the dates that a host takes
        if (tally.stamp.isNull())
            return;
        const bool is_form = is_date(tally.stamp);
        const QDate date = date_of(tally.stamp);
        QString fault;
        if (!is_form)
            fault = QStringLiteral("isn't a date in the form YYYYMMDDhhmmss+hhmm");
        else if (date.year() < first_year)
            fault = QStringLiteral("lies before %1").arg(first_year);
        else if (is_date(tally.file_stamp) && date_of(tally.file_stamp).daysTo(date) > clocks)
            fault = QStringLiteral("is later than netcdf_file_date_time_stamp, %1")
                        .arg(quoted(tally.file_stamp));
        if (!fault.isNull())
            list.add(MsDoubtKind::AcquisitionDate, 1, fault, quoted(tally.stamp));
    }

    // The template leaves open whether the range is that of the points' times, where they are in use
    // and not those of the scans.
    void look_at_times()
    {
        constexpr double slack = 0.01; // of the range
        if (!tally.claims.times.is_known() || !tally.times.is_known())
            return;
        const auto [claimed_least, claimed_most] = tally.claims.times;
        const MsColumnNumber point_time = MsColumnWalk(file, MsVar_time_values).get(0);
        const MsColumnNumber scan_time = MsColumnWalk(file, MsVar_scan_acquisition_time).get(0);
        const bool has_point_times = tally.points_of_scans > file.dimensions[MsDim_scan_number].size
            && point_time.is_known && ms_is_given(point_time.value)
            && !ms_is_near(point_time.value, scan_time.value);
        if (has_point_times)
            return;
        constexpr double minute = 60.0; // some state the range in minutes
        const double room = slack * (claimed_most - claimed_least) + 1.0;
        const bool is_in_minutes = std::abs(tally.times.least / minute - claimed_least) <= room / minute
            && std::abs(tally.times.most / minute - claimed_most) <= room / minute;
        if (!is_in_minutes
            && (tally.times.least < claimed_least - room || tally.times.most > claimed_most + room))
            list.add(MsDoubtKind::TimeRange, 1, ms_range_text(tally.times.least, tally.times.most),
                     ms_range_text(claimed_least, claimed_most));
    }

    // Some count from 0, others from 1.
    void look_at_first_scan(qint32 claimed)
    {
        MsColumnWalk numbers(file, MsVar_actual_scan_number);
        const auto [number, is_known] = numbers.get(0);
        if (claimed != MsMissingLong && is_known && !ms_is_missing(number) && !numbers.is_fill(number)
            && std::abs(number - claimed) > 1.0)
            list.add(MsDoubtKind::StartingScan, 1, QString::number(number), QString::number(claimed));
    }

    MsFileState &file;
    const MsTally &tally;
    MsDoubtList &list;
};

} // namespace

void ms_doubt_attributes(MsFileState &file, MsDoubtList *list)
{
    AttributeDoubts(file, *list).look_at_all();
}
