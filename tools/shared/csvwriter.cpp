#include "csvwriter.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <cstddef>

void CsvWriter::text(const QString &cell)
{
    separate();
    const QByteArray bytes = cell.toUtf8();
    const bool isPlain = std::none_of(bytes.begin(), bytes.end(), [this](char one) {
        return one == delimiter_ || one == '"' || one == '\n' || one == '\r';
    });
    if (isPlain)
        return put(bytes.constData(), std::size_t(bytes.size()));
    put('"');
    for (const char one : bytes) {
        if (one == '"')
            put('"');
        put(one);
    }
    put('"');
}

void CsvWriter::number(double cell)
{
    separate();
    if (!std::isnan(cell))
        real(cell);
}

void CsvWriter::whole(qint64 cell)
{
    separate();
    integer(cell);
}

void CsvWriter::endRow()
{
    put('\n');
    inRow = false;
}

void CsvWriter::separate()
{
    if (inRow)
        put(delimiter_);
    inRow = true;
}
