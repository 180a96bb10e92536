// In which formats an mzML or mzXML file has its numbers, which the library doesn't tell: it makes
// doubles of all.
#ifndef ARRAYFORMATS_H
#define ARRAYFORMATS_H

#include <QString>

#include <array>

// The formats of masses and of intensities, MsFloatFormat or MsDoubleFormat.
using ArrayFormats = std::array<qint32, 2>;

// Returns the formats of the first arrays of the file. They are a guess, as later arrays may have others;
// the numbers themselves decide then.
ArrayFormats firstArrayFormats(const QString &input);

#endif // ARRAYFORMATS_H
