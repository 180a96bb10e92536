#include "infofields.h"

#include "msattribute.h"
#include "msformat.h"
#include "terminaltext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <type_traits>

namespace {

constexpr int longestAttribute = 1000;
constexpr int longestLine = 255; // of a text variable: the widest in the template

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

// Returns the value of a field of a record; an invalid one for a null text, and for a number that is
// missing or was never written. `type` is the field's, `stored` the file's.
QVariant fieldValue(const void *record, std::size_t offset, qint32 type, nc_type stored, int longestText)
{
    if (type == NC_CHAR) {
        const char *text = fieldOf<const char *>(record, offset);
        return text ? QVariant(shortened(QString::fromLatin1(text), longestText)) : QVariant();
    }
    const void *field = static_cast<const char *>(record) + offset;
    return ms_with_format(ms_format_of_nc_type(type, 0), field, [stored](const auto *number) {
        const bool isThere = double(*number) != MsMissingDouble && !ms_is_fill(stored, double(*number));
        return isThere ? variantOf(*number) : QVariant();
    });
}

void addField(InfoNode *section, const QString &name, const QVariant &value, Lacking lacking)
{
    if (value.isValid() || lacking == Lacking::Listed)
        section->addValue(name, value);
}

} // namespace

QVariant textValue(const char *text)
{
    return shortened(QString::fromLatin1(text), longestLine);
}

double shortest(double number, qint32 format)
{
    return format == MsFloatFormat ? widened(float(number)) : number;
}

QString phraseOf(qint32 code)
{
    const char *phrase = ms_enum_text(code);
    return QString::fromLatin1(phrase);
}

void addAttributes(int ncid, const MsTable<MsAttributeRow> &table, const void *record, Lacking lacking,
                   InfoNode *section)
{
    for (const MsAttributeRow &row : table) {
        const QString name = QString::fromLatin1(attributeName(row));
        if (!row.enumerated) {
            addField(section, name,
                     fieldValue(record, row.field, row.nc_type, row.nc_type, longestAttribute), lacking);
            continue;
        }
        QString phrase = phraseOf(fieldOf<qint32>(record, row.field));
        if (phrase.isNull())
            phrase = QStringLiteral("%1 (not in the vocabulary)")
                         .arg(shortened(statedText(ncid, row), longestLine));
        section->addValue(name, phrase).isDefault = !isStated(ncid, row);
    }
}

void addVariables(int ncid, const MsTable<MsVariableRow> &table, const void *record, Lacking lacking,
                  InfoNode *section)
{
    const MsFileRecord *file = ms_file_record(ncid);
    for (const MsVariableRow &row : table) {
        nc_type stored = row.nc_type;
        if (file)
            nc_inq_vartype(ncid, file->variables[row.slot], &stored); // stays for an absent variable
        if (row.ndims == 1 || row.nc_type == NC_CHAR)
            addField(section, QString::fromLatin1(row.name),
                     fieldValue(record, row.field, row.nc_type, stored, longestLine), lacking);
    }
}

std::vector<QVariant> numberValues(const MsNumbers &numbers, qint64 count)
{
    std::vector<QVariant> values;
    const int type = numbers.type();
    numbers.visit([&](const auto *first, qint32 size) {
        for (const auto *number = first; number < first + std::min<qint64>(size, count); ++number) {
            const bool isMissing = ms_is_fill(type, double(*number))
                || (type == NC_DOUBLE && double(*number) == MsMissingDouble);
            values.push_back(isMissing ? QVariant() : variantOf(*number));
        }
    });
    return values;
}
