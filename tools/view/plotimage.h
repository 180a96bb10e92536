// A plot as an image in a file.
#ifndef PLOTIMAGE_H
#define PLOTIMAGE_H

#include <QByteArray>
#include <QString>

class OutputFile;
class QCustomPlot;

// Whether the ending of a name is one that plotImage() draws.
bool isImageName(const QString &name);

// Draws the plot as the ending of `name` says: .png, with `scale` pixels for one of the screen, .pdf or
// .svg. Returns no bytes where that can't be done.
QByteArray plotImage(QCustomPlot *plot, const QString &name, double scale);

// Writes an image to a file that isn't open yet. Returns a sentence that says why that failed, as for an
// image without bytes; null if it didn't.
QString writeImage(OutputFile *output, const QByteArray &image);

#endif // PLOTIMAGE_H
