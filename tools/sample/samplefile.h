// The file that a sample is written to.
#ifndef SAMPLEFILE_H
#define SAMPLEFILE_H

#include "sampleoptions.h"

#include <QString>

// Makes the file `path`, over one of that name. Returns a null text, or the sentence that says why it
// couldn't be made. What was written of it is removed then, as far as possible.
QString writeSample(const QString &path, const SampleOptions &options);

#endif // SAMPLEFILE_H
