#include "infofields.h"

#include "msformat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <type_traits>

namespace {

constexpr int longestAttribute = 1000;
constexpr int longestLine = 255; // of a text variable: the widest in the template

QVariant shortened(const char *text, int longest)
{
    const QString whole = QString::fromLatin1(text);
    if (whole.size() <= longest)
        return whole;
    return QStringLiteral("%1... (%2 characters)").arg(whole.left(longest)).arg(whole.size());
}

// Returns the double with the same shortest decimal as the float: 70.1, not 70.0999985.
double widened(float number)
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    double wide = double(number); // stays for what isn't a number
    std::from_chars(text.data(), end, wide);
    return wide;
}

template <class T> T fieldOf(const void *record, std::size_t offset)
{
    return *reinterpret_cast<const T *>(static_cast<const char *>(record) + offset);
}

template <class Number> QVariant variantOf(Number number)
{
    if constexpr (std::is_same_v<Number, float>)
        return widened(number);
    else if constexpr (std::is_same_v<Number, qint16>)
        return int(number);
    else
        return number;
}

// Returns the value of a field of a record; an invalid one for a null text and a missing number.
QVariant fieldValue(const void *record, std::size_t offset, qint32 type, int longestText)
{
    if (type == NC_CHAR) {
        const char *text = fieldOf<const char *>(record, offset);
        return text ? shortened(text, longestText) : QVariant();
    }
    const void *field = static_cast<const char *>(record) + offset;
    return ms_with_format(ms_format_of_nc_type(type, 0), field, [](const auto *number) {
        return double(*number) == MsMissingDouble ? QVariant() : variantOf(*number);
    });
}

void addIfThere(InfoNode *section, const QString &name, const QVariant &value)
{
    if (value.isValid())
        section->addValue(name, value);
}

// Attributes of different variables have the same names, so a prefix says to which variable one belongs.
QString attributeName(const MsAttributeRow &row)
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

QVariant textValue(const char *text)
{
    return shortened(text, longestLine);
}

QString phraseOf(qint32 code)
{
    const char *phrase = ms_enum_text(code);
    return phrase ? QString::fromLatin1(phrase) : QStringLiteral("(not in the vocabulary)");
}

void addAttributes(const MsTable<MsAttributeRow> &table, const void *record, InfoNode *section)
{
    for (const MsAttributeRow &row : table) {
        const QVariant value = row.enumerated
            ? phraseOf(fieldOf<qint32>(record, row.field))
            : fieldValue(record, row.field, row.nc_type, longestAttribute);
        addIfThere(section, attributeName(row), value);
    }
}

void addVariables(const MsTable<MsVariableRow> &table, const void *record, InfoNode *section)
{
    for (const MsVariableRow &row : table) {
        if (row.ndims == 1 || row.nc_type == NC_CHAR)
            addIfThere(section, QString::fromLatin1(row.name),
                       fieldValue(record, row.field, row.nc_type, longestLine));
    }
}

std::vector<QVariant> numberValues(const MsNumbers &numbers, qint64 count)
{
    std::vector<QVariant> values;
    numbers.visit([&](const auto *first, qint32 size) {
        for (const auto *number = first; number < first + std::min<qint64>(size, count); ++number) {
            const bool isMissing =
                std::is_same_v<decltype(*number), const double &> && double(*number) == MsMissingDouble;
            values.push_back(isMissing ? QVariant() : variantOf(*number));
        }
    });
    return values;
}
