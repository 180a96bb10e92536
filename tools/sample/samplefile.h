// The file that a sample is written to.
#ifndef SAMPLEFILE_H
#define SAMPLEFILE_H

#include "sampleoptions.h"

#include <QString>

// Makes the file `path`, with a run's scans. Gives a null text, or why it couldn't be made; what was
// begun of it is removed then, as far as that can be done.
QString writeSample(const QString &path, const SampleOptions &options);

#endif // SAMPLEFILE_H
