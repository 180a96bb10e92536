// A run or a library, made into a clean .cdf file.
#ifndef RUNTOCDF_H
#define RUNTOCDF_H

#include "conversionlog.h"
#include "msrun.h"
#include "progressbar.h"

#include <QByteArray>

// Writes all scans that can be read to the file `path`. Returns false where that fails; the log says why,
// and what couldn't be kept.
bool writeCdf(const MsRun &run, const QByteArray &path, ProgressBar *progress, ConversionLog *log);

#endif // RUNTOCDF_H
