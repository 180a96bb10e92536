// Runs in mzML and mzXML files, made into .cdf files.
#ifndef MZMLREADER_H
#define MZMLREADER_H

#include "conversionlog.h"
#include "convertoptions.h"
#include "progressbar.h"

#include <QByteArray>

// Writes the MS1 spectra of `input` to the file `path`. Returns false where that fails, and says why in
// the log, which also has what of the input couldn't be kept.
bool convertToCdf(const QString &input, const QByteArray &path, const ConversionOptions &options,
                  ProgressBar *progress, ConversionLog *log);

#endif // MZMLREADER_H
