#include "infofields.h"

#include "msformat.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <type_traits>

namespace {

constexpr int longest_attribute = 1000;
constexpr int longest_line = 255; // of a text variable: the widest of the template

QVariant shortened(const char *text, int longest)
{
    const QString whole = QString::fromLatin1(text);
    if (whole.size() <= longest)
        return whole;
    return QStringLiteral("%1... (%2 characters)").arg(whole.left(longest)).arg(whole.size());
}

// A float as the double of the same shortest decimal: 70.1 rather than 70.0999985.
double widened(float number)
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    double wide = double(number); // stays for what isn't a number
    std::from_chars(text.data(), end, wide);
    return wide;
}

template <class T> T field_of(const void *record, std::size_t offset)
{
    return *reinterpret_cast<const T *>(static_cast<const char *>(record) + offset);
}

template <class Number> QVariant variant_of(Number number)
{
    if constexpr (std::is_same_v<Number, float>)
        return widened(number);
    else if constexpr (std::is_same_v<Number, qint16>)
        return int(number);
    else
        return number;
}

// The value of a field of a record; invalid for a null text and a missing number.
QVariant field_value(const void *record, std::size_t offset, qint32 type, int longest_text)
{
    if (type == NC_CHAR) {
        const char *text = field_of<const char *>(record, offset);
        return text ? shortened(text, longest_text) : QVariant();
    }
    const void *field = static_cast<const char *>(record) + offset;
    return ms_with_format(ms_format_of_nc_type(type, 0), field, [](const auto *number) {
        return double(*number) == MsMissingDouble ? QVariant() : variant_of(*number);
    });
}

void add_if_there(InfoNode *section, const QString &name, const QVariant &value)
{
    if (value.isValid())
        section->addValue(name, value);
}

// Attributes of variables share their names; the prefix tells whose it is.
QString attribute_name(const MsAttributeRow &row)
{
    QString name = QString::fromLatin1(row.name);
    switch (row.variable) {
    case MsVar_mass_values:
        return QLatin1String("mass_") + name;
    case MsVar_time_values:
        return QLatin1String("time_") + name;
    case MsVar_intensity_values:
        return QLatin1String("intensity_") + name;
    case MsVar_total_intensity:
        return QLatin1String("total_intensity_") + name;
    default:
        return name;
    }
}

} // namespace

QVariant text_value(const char *text)
{
    return shortened(text, longest_line);
}

QString phrase_of(qint32 code)
{
    const char *phrase = ms_enum_text(code);
    return phrase ? QString::fromLatin1(phrase) : QStringLiteral("(not in the vocabulary)");
}

void add_attributes(const MsTable<MsAttributeRow> &table, const void *record, InfoNode *section)
{
    for (const MsAttributeRow &row : table) {
        const QVariant value = row.enumerated
            ? phrase_of(field_of<qint32>(record, row.field))
            : field_value(record, row.field, row.nc_type, longest_attribute);
        add_if_there(section, attribute_name(row), value);
    }
}

void add_variables(const MsTable<MsVariableRow> &table, const void *record, InfoNode *section)
{
    for (const MsVariableRow &row : table) {
        if (row.ndims == 1 || row.nc_type == NC_CHAR)
            add_if_there(section, QString::fromLatin1(row.name),
                         field_value(record, row.field, row.nc_type, longest_line));
    }
}

QVariant element(const void *array, qint32 format, qint32 index)
{
    return ms_with_format(format, array, [index](const auto *numbers) {
        const auto number = numbers[index];
        const bool is_missing =
            std::is_same_v<decltype(number), const double> && number == MsMissingDouble;
        return is_missing ? QVariant() : variant_of(number);
    });
}
