// The file that a sample is written to.
#ifndef SAMPLEFILE_H
#define SAMPLEFILE_H

#include "sampleoptions.h"

#include <QByteArray>
#include <QString>

// Makes the file `path`, over one of that name. Returns a null text, or why it couldn't be written whole.
QString writeSample(const QByteArray &path, const SampleOptions &options);

#endif // SAMPLEFILE_H
