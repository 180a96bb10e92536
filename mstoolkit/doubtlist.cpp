#include "doubtlist_p.h"

#include "countedtext_p.h"
#include "doubttexts_p.h"
#include "types_p.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <netcdf.h>

#include <algorithm>
#include <cmath>

void MsDoubtList::add(MsDoubtKind kind, qint64 count, const QString &detail, const QString &example,
                      bool is_system_error)
{
    const MsDoubtRow &row = ms_doubt_row(kind);
    if (settled_only && !row.is_settled)
        return;
    const QString text = ms_counted_text(
        row.sentence, count, {name, QString::number(count), detail, example, tally.first_failure});
    listed.append({&row, {row.code, count, example, text, row.is_loss, is_system_error}});
}

QList<MsDoubt> MsDoubtList::in_order() const
{
    QList<Listed> sorted = listed;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Listed &one, const Listed &other) {
        return one.row->kind < other.row->kind;
    });
    QList<MsDoubt> doubts;
    for (const Listed &each : qAsConst(sorted))
        doubts.append(each.doubt);
    return doubts;
}

bool ms_is_near(double one, double other)
{
    constexpr double tolerance = 1e-3;
    return std::abs(one - other) <= tolerance * std::max(std::abs(one), std::abs(other));
}

QString ms_range_text(double least, double most)
{
    return QStringLiteral("%1 to %2").arg(least).arg(most);
}

QByteArray ms_text_attribute(int ncid, int varid, const char *name)
{
    constexpr std::size_t longest = 200;
    nc_type type = NC_NAT;
    std::size_t length = 0;
    if (nc_inq_att(ncid, varid, name, &type, &length) != NC_NOERR || type != NC_CHAR || length > longest)
        return QByteArray();
    QByteArray text(int(length), '\0');
    if (nc_get_att_text(ncid, varid, name, text.data()) != NC_NOERR)
        return QByteArray();
    return text.constData(); // up to a zero byte
}

double ms_number_attribute(int ncid, int varid, const char *name, double otherwise)
{
    nc_type type = NC_NAT;
    std::size_t length = 0;
    double number = otherwise;
    if (nc_inq_att(ncid, varid, name, &type, &length) != NC_NOERR || !ms_is_number(type) || length != 1
        || nc_get_att_double(ncid, varid, name, &number) != NC_NOERR)
        return otherwise;
    return number;
}
