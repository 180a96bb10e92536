// A plot as an image in a file.
#ifndef PLOTIMAGE_H
#define PLOTIMAGE_H

#include <QByteArray>
#include <QString>

class OutputFile;
class QCustomPlot;

// Draws the plot as the ending of `name` says: .png, with `scale` pixels for one of the screen, .pdf or
// .svg. Returns no bytes where that can't be done.
QByteArray plotImage(QCustomPlot *plot, const QString &name, double scale);

// Writes bytes to a file that isn't open yet. Returns a sentence that says why that failed; null if it
// didn't.
QString writeBytes(OutputFile *output, const QByteArray &bytes);

#endif // PLOTIMAGE_H
