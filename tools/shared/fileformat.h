// The kinds of files that are converted, told by the ends of their names.
#ifndef FILEFORMAT_H
#define FILEFORMAT_H

#include <QString>
#include <QStringList>

enum class FileFormat { Unknown, Cdf, MzMl, MzMlGz, MzXml, Csv, Msp };

// Returns the format of a name's end, in any mixture of case.
FileFormat formatOfName(const QString &name);

// Returns the format called that, which is the end of names without its dot.
FileFormat formatCalled(const QString &word);

// Whether it is one that becomes .cdf alone.
bool isMzMlOrMzXml(FileFormat format);

// Returns what --to takes, in the order in which it is listed.
QStringList writtenFormats();

// Returns the formats that are written in the words of a dialog for files, such as "mzML (*.mzML)".
QStringList writtenKinds();

// Returns the name without folders and without the end of a format that is read.
QString baseName(const QString &input);

// Returns the end of names of a format, with its dot.
QString endOfNames(FileFormat format);

#endif // FILEFORMAT_H
