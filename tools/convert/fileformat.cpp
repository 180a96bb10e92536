#include "fileformat.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace {

// clang-format off
constexpr struct {
    FileFormat format;
    const char *end;
    bool isRead;
    bool isWritten;
} formats[] = {
    {FileFormat::Cdf,    ".cdf",     true,  true},
    {FileFormat::MzMl,   ".mzML",    true,  true},
    {FileFormat::MzMlGz, ".mzML.gz", true,  true},
    {FileFormat::MzXml,  ".mzXML",   true,  false},
    {FileFormat::Csv,    ".csv",     false, true},
    {FileFormat::Msp,    ".msp",     false, true},
};
// clang-format on

} // namespace

FileFormat formatOfName(const QString &name)
{
    const auto row = std::find_if(std::begin(formats), std::end(formats), [&name](const auto &one) {
        return name.endsWith(QLatin1String(one.end), Qt::CaseInsensitive);
    });
    return row == std::end(formats) ? FileFormat::Unknown : row->format;
}

FileFormat formatCalled(const QString &word)
{
    const auto row = std::find_if(std::begin(formats), std::end(formats), [&word](const auto &one) {
        return word.compare(QLatin1String(one.end + 1), Qt::CaseInsensitive) == 0;
    });
    return row == std::end(formats) ? FileFormat::Unknown : row->format;
}

bool isMzMlOrMzXml(FileFormat format)
{
    return format == FileFormat::MzMl || format == FileFormat::MzMlGz || format == FileFormat::MzXml;
}

QStringList writtenFormats()
{
    QStringList words;
    for (const auto &row : formats) {
        if (row.isWritten)
            words += QLatin1String(row.end + 1);
    }
    return words;
}

QString baseName(const QString &input)
{
    QString name = QFileInfo(input).fileName();
    for (const auto &row : formats) {
        const QLatin1String end(row.end);
        if (row.isRead && name.endsWith(end, Qt::CaseInsensitive) && name.size() > end.size())
            return name.left(name.size() - end.size());
    }
    return name;
}

QString endOfNames(FileFormat format)
{
    const auto row = std::find_if(std::begin(formats), std::end(formats),
                                  [format](const auto &one) { return one.format == format; });
    return row == std::end(formats) ? QString() : QString(QLatin1String(row->end));
}
