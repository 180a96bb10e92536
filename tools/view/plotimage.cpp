#include "plotimage.h"

#include "outputfile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <qcustomplot.h>

#include <cstddef>

namespace {

constexpr int dotsPerInch = 96;

} // namespace

bool isImageName(const QString &name)
{
    static const QStringList endings{QStringLiteral("png"), QStringLiteral("pdf"), QStringLiteral("svg")};
    return endings.contains(QFileInfo(name).suffix().toLower());
}

QByteArray plotImage(QCustomPlot *plot, const QString &name, double scale)
{
    plot->replot(); // labels go by the plot's size
    const QString kind = QFileInfo(name).suffix().toLower();
    const QSize size = plot->size();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (kind == QLatin1String("png")) {
        const QPixmap image = plot->toPixmap(size.width(), size.height(), scale);
        return image.save(&buffer, "PNG") ? buffer.data() : QByteArray();
    }
    QCPPainter painter;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    if (kind == QLatin1String("pdf")) {
        QPdfWriter writer(&buffer);
        writer.setResolution(dotsPerInch);
        writer.setPageMargins(QMarginsF());
        writer.setPageSize(QPageSize(QSizeF(size) * (72.0 / dotsPerInch), QPageSize::Point, QString(),
                                     QPageSize::ExactMatch));
        if (!painter.begin(&writer))
            return QByteArray();
        plot->toPainter(&painter, size.width(), size.height());
        painter.end();
        return buffer.data();
    }
    if (kind != QLatin1String("svg"))
        return QByteArray();
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(dotsPerInch);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(), size));
    if (!painter.begin(&generator))
        return QByteArray();
    plot->toPainter(&painter, size.width(), size.height());
    painter.end();
    return buffer.data();
}

QString writeImage(OutputFile *output, const QByteArray &image)
{
    if (image.isEmpty())
        return QStringLiteral("The image can't be drawn in this size; a smaller one may be.");
    const bool isWritten =
        output->open() && output->write(image.constData(), std::size_t(image.size())) && output->commit();
    return isWritten ? QString() : output->errorText();
}
