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
    const char *kind; // of a file that is made, as a dialog names it; null where none is
} formats[] = {
    {FileFormat::MzMl,   ".mzML",     true,  "mzML"},
    {FileFormat::MzMlGz, ".mzML.gz",  true,  "Compressed mzML"},
    {FileFormat::MzXml,  ".mzXML",    true,  nullptr},
    {FileFormat::MzXml,  ".mzXML.gz", true,  nullptr},
    {FileFormat::Cdf,    ".cdf",      true,  "Clean file"},
    {FileFormat::Csv,    ".csv",      false, "Table"},
    {FileFormat::Msp,    ".msp",      false, "Spectra"},
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
        if (row.kind)
            words += QLatin1String(row.end + 1);
    }
    return words;
}

QStringList writtenKinds()
{
    QStringList kinds;
    for (const auto &row : formats) {
        if (row.kind)
            kinds += QStringLiteral("%1 (*%2)").arg(QLatin1String(row.kind), QLatin1String(row.end));
    }
    return kinds;
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
