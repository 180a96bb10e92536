// What the library doesn't tell of an mzML or mzXML file: in which formats it has its numbers, as doubles
// are made of all, and whether mzXML says of what kind its spectra are.
#ifndef ARRAYFORMATS_H
#define ARRAYFORMATS_H

#include <QString>

#include <array>

// The formats of masses and of intensities, MsFloatFormat or MsDoubleFormat.
using ArrayFormats = std::array<qint32, 2>;

// Returns the formats of the first arrays of the file. They are a guess, as later arrays may have others;
// the numbers themselves decide then.
ArrayFormats firstArrayFormats(const QString &input);

// Whether the file is mzXML that doesn't say whether its spectra are centroided, so that the library
// makes it up.
bool lacksKind(const QString &input);

#endif // ARRAYFORMATS_H
