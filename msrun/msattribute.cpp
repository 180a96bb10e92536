#include "msattribute.h"

#include "numbers_p.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr std::size_t longestText = 1 << 20;

// The place of an attribute in a file, as ms_read_global looks for it.
struct Place {
    int holder = NC_GLOBAL;
    QByteArray name{};
    std::size_t length = 0;
    bool isText = false; // no text is taken from a number
};

Place placeOf(int ncid, const MsAttributeRow &row)
{
    Place place;
    const MsFileRecord *file = ms_file_record(ncid);
    if (row.variable != -1 && file)
        place.holder = file->variables[row.variable];
    nc_type type = NC_NAT;
    for (const QByteArray &name : {QByteArray(row.name), ms_dash_name(row.name)}) {
        if (nc_inq_att(ncid, place.holder, name.constData(), &type, &place.length) != NC_NOERR)
            continue;
        place.name = name;
        place.isText = type == NC_CHAR;
        break;
    }
    return place;
}

// Returns how many bytes of UTF-8 are there without the part of a letter that they may end with.
int sizeOfWholeLetters(const QByteArray &bytes)
{
    constexpr int mostFollowing = 3; // bytes of a letter behind its first one
    for (int following = 0; following < std::min(mostFollowing, bytes.size()); ++following) {
        const int place = bytes.size() - 1 - following;
        const auto byte = uchar(bytes[place]);
        if (byte >= 0xc0) {
            const int needed = byte >= 0xf0 ? 3 : byte >= 0xe0 ? 2 : 1;
            return following < needed ? place : bytes.size();
        }
        if (byte < 0x80)
            break;
    }
    return bytes.size();
}

} // namespace

bool isStated(int ncid, const MsAttributeRow &row)
{
    return placeOf(ncid, row).isText;
}

QString textFromFile(const char *bytes)
{
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() == bytes)
        return text;
    // A text that was cut off to fit its field may end within a letter, which isn't there then.
    const QByteArray whole = QByteArray(bytes).left(sizeOfWholeLetters(bytes));
    const QString cut = QString::fromUtf8(whole);
    const bool isUtf8 = cut.size() < whole.size() && cut.toUtf8() == whole;
    return isUtf8 ? cut : QString::fromLatin1(bytes);
}

QString statedText(int ncid, const MsAttributeRow &row)
{
    const Place place = placeOf(ncid, row);
    if (row.nc_type != NC_CHAR || !place.isText || place.length > longestText)
        return QString();
    std::vector<char> text(place.length + 1, '\0');
    if (nc_get_att_text(ncid, place.holder, place.name.constData(), text.data()) != NC_NOERR)
        return QString();
    return textOf(text.data());
}

QString textOfAttribute(int ncid, const MsAttributeRow &row, const void *record)
{
    const QString text = statedText(ncid, row);
    return text.isNull()
        ? textOf(*reinterpret_cast<char *const *>(static_cast<const char *>(record) + row.field))
        : text;
}

QByteArray attributeName(const MsAttributeRow &row)
{
    switch (row.variable) {
    case MsVar_mass_values:
        return QByteArray("mass_") + row.name;
    case MsVar_time_values:
        return QByteArray("time_") + row.name;
    case MsVar_intensity_values:
        return QByteArray("intensity_") + row.name;
    case MsVar_total_intensity:
        return QByteArray("total_intensity_") + row.name;
    default:
        return row.name;
    }
}

const MsAttributeRow &attributeRow(const MsTable<MsAttributeRow> &table, std::size_t field)
{
    return *std::find_if(table.begin(), table.end(),
                         [field](const MsAttributeRow &row) { return row.field == field; });
}
