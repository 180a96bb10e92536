// Reading the global records of a file.

#include "field_p.h"
#include "globalrecords_p.h"
#include "msformat.h"
#include "rows_p.h"
#include "text_p.h"

#include "messageloggerinterface.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

void warn(const char *text, const QByteArray &name)
{
    MessageLoggerInterface::Warning(QString::fromLatin1(text).arg(QString::fromLatin1(name)), nullptr);
}

// An attribute as a file has it.
struct Attribute {
    int holder;
    QByteArray name; // the spelling that the file uses; the dashed one of an absent attribute
    nc_type type;
    std::size_t length; // 0 also for an absent one
    bool present;
};

Attribute find_attribute(const MsFileState &file, const MsAttributeRow &row)
{
    Attribute attribute;
    attribute.holder = row.variable == -1 ? NC_GLOBAL : file.variables[row.variable];
    attribute.name = row.name;
    attribute.type = row.nc_type;
    attribute.length = 0;

    // nc_inq_att: the older interface's int is too narrow for what a file may hold.
    const auto inquire = [&] {
        nc_type type = NC_NAT;
        std::size_t length = 0;
        if (nc_inq_att(file.ncid, attribute.holder, attribute.name.constData(), &type, &length)
            != NC_NOERR)
            return false;
        attribute.type = type;
        attribute.length = length;
        return true;
    };
    attribute.present = inquire();
    if (!attribute.present) {
        attribute.name = ms_dash_name(row.name);
        attribute.present = inquire();
    }
    return attribute;
}

// The bytes of a text attribute, in a buffer that ends in a NUL. False if they can't be read.
bool fetch_text(int ncid, const Attribute &attribute, std::vector<char> *buffer)
{
    buffer->resize(std::max(buffer->size(), attribute.length + 1));
    std::fill(buffer->begin(), buffer->end(), '\0');
    return ncattget(ncid, attribute.holder, attribute.name.constData(), buffer->data()) != -1;
}

// The first number of a numeric attribute.
template <class T> bool fetch_first(int ncid, const Attribute &attribute, T *value)
{
    std::vector<T> values(attribute.length);
    if (ncattget(ncid, attribute.holder, attribute.name.constData(), values.data()) == -1)
        return false;
    *value = values.front();
    return true;
}

// The value of a present attribute that is a number, as the file's type has it. Invalid if it can't be
// read.
QVariant fetch_number(int ncid, const Attribute &attribute)
{
    const auto fetch = [&](auto value) {
        if (!fetch_first(ncid, attribute, &value))
            return QVariant();
        if constexpr (std::is_integral_v<decltype(value)>)
            return QVariant(int(value));
        else
            return QVariant(value);
    };
    if (attribute.type == NC_BYTE)
        return fetch(qint8());
    return ms_with_format(ms_format_of_nc_type(attribute.type, 0),
                          [&](auto *type) { return fetch(std::remove_pointer_t<decltype(type)>()); });
}

int read_attribute(const MsFileState &file, const MsAttributeRow &row, void *record,
                   std::vector<char> *buffer)
{
    const Attribute attribute = find_attribute(file, row);
    if (attribute.present && attribute.type != row.nc_type)
        warn("Data type mismatch for attribute <b>%1</b>", attribute.name);
    if (!attribute.present && row.mandatory)
        warn("Mandatory attribute <b>%1</b> is missing from file", attribute.name);

    if (!attribute.present) {
        ms_clear_attribute(0, row, record);
        return 0;
    }
    if (attribute.type < NC_BYTE || attribute.type > NC_DOUBLE)
        return -1;

    if (attribute.type == NC_CHAR) {
        constexpr std::size_t longest_text = 1 << 29; // that QVariant can hold
        if (attribute.length > longest_text || !fetch_text(file.ncid, attribute, buffer))
            return -1;
        if (row.enumerated)
            ms_field<qint32>(record, row.field) = ms_enum_code(buffer->data());
        else
            ms_store_variant(record, row.field, QVariant(buffer->data()), row.nc_type);
        return 0;
    }

    if (attribute.length == 0) { // a number without a value counts as absent
        ms_clear_attribute(0, row, record);
        return 0;
    }
    const QVariant number = fetch_number(file.ncid, attribute);
    if (!number.isValid())
        return -1;
    if (row.enumerated)
        ms_field<qint32>(record, row.field) = row.default_code;
    else
        ms_store_variant(record, row.field, number, row.nc_type);
    return 0;
}

int read_table(const MsFileState &file, const MsTable<MsAttributeRow> &table, void *record)
{
    constexpr std::size_t first_capacity = 255;
    std::vector<char> buffer(first_capacity);
    for (const MsAttributeRow &row : table) {
        if (read_attribute(file, row, record, &buffer) == -1)
            return -1;
    }
    return 0;
}

// The record has room for one line: the first one that isn't blank.
int read_error_log(MsFileState &file, MsAdminRecord *admin)
{
    // A file may claim more lines, and more bytes in them, than anybody would wait for.
    constexpr qint32 lines_looked_at = 1000;

    const MsVariableRow &row = *ms_error_table.begin();
    const MsShape *shape = file.column(row.slot).shape();
    if (shape && !ms_fits(*shape, row))
        return -1;

    admin->error_log = nullptr;
    if (!shape)
        return 0;
    const qint32 lines = std::min(file.dimensions[row.dims[0]].size, lines_looked_at);
    const qint32 width = file.dimensions[row.dims[1]].size;
    const auto is_held = [&](qint32 line) {
        return file.data.can_hold((quint64(line) + 1) * quint64(width));
    };
    for (qint32 i = 0; i < lines && is_held(i) && !admin->error_log; ++i)
        admin->error_log = ms_read_text(file.data, *shape, {file.variables[row.slot], i, -1, width});
    return 0;
}

int take_sizes(const MsFileState &file, MsAdminRecord *admin, MsRawGlobalRecord *raw)
{
    const MsDimension &scans = file.dimensions[MsDim_scan_number];
    const MsDimension &points = file.dimensions[MsDim_point_number];
    if (scans.id == -1 && points.id == -1) {
        raw->scan_count = 0;
        return -1;
    }
    raw->scan_count = scans.id != -1 ? scans.size : points.size;

    const MsDimension &instruments = file.dimensions[MsDim_instrument_number];
    admin->instrument_count = instruments.id != -1 ? instruments.size : -1;
    raw->has_mass_values = file.has_mass_values;
    raw->has_time_values = file.has_time_values;
    return 0;
}

char *latin1_block(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    auto *block = static_cast<char *>(ms_alloc_bytes(std::size_t(text.length()) + 1));
    std::memcpy(block, bytes.constData(), std::size_t(bytes.size()) + 1);
    return block;
}

// A number as a field of its type has it.
template <class Number> Number number_of(const QVariant &value)
{
    bool known = false;
    if constexpr (std::is_integral_v<Number>) {
        const int number = value.toInt(&known);
        return Number(known ? number : MsMissingLong);
    } else {
        const double number = value.toDouble(&known);
        return Number(known ? number : MsMissingDouble);
    }
}

} // namespace

void ms_store_variant(void *record, std::size_t field, const QVariant &value, qint32 type)
{
    const qint32 format = ms_format_of_nc_type(type, 0);
    if (type == NC_BYTE) {
        ms_field<char>(record, field) = value.toChar().toLatin1();
    } else if (type == NC_CHAR) {
        ms_field<char *>(record, field) = latin1_block(value.toString());
    } else if (format != 0) {
        ms_with_format(format, [&](auto *stored) {
            using Number = std::remove_pointer_t<decltype(stored)>;
            ms_field<Number>(record, field) = number_of<Number>(value);
        });
    } else {
        MessageLoggerInterface::Warning(QStringLiteral("Bad value transcoding"), nullptr);
    }
}

int ms_read_global(int ncid, MsAdminRecord *admin, MsSampleRecord *sample, MsTestRecord *test,
                   MsRawGlobalRecord *raw)
{
    MsFileState *file = ms_file_state(ncid);
    if (!admin || !sample || !test || !raw || !file)
        return -1;

    if (read_table(*file, ms_admin_table, admin) == -1 || read_table(*file, ms_sample_table, sample) == -1
        || read_table(*file, ms_test_table, test) == -1 || read_table(*file, ms_raw_table, raw) == -1
        || read_error_log(*file, admin) == -1 || take_sizes(*file, admin, raw) == -1)
        return -1;
    ms_tally_globals(file->tally, *admin, *raw);
    return 0;
}
