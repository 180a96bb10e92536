// What the library doesn't tell of an mzML or mzXML file: in which formats it has its numbers, as doubles
// are made of all, and whether mzXML says of what kind its spectra are.
#ifndef ARRAYFORMATS_H
#define ARRAYFORMATS_H

#include <QString>

#include <array>

struct UntoldFormats {
    // Of masses and of intensities, MsFloatFormat or MsDoubleFormat, as the first arrays of the file have
    // them. They are a guess, as later arrays may have others; the numbers themselves decide then.
    std::array<qint32, 2> arrays;
    // Whether it is mzXML that doesn't say whether its spectra are centroided, so that the library makes
    // it up.
    bool lacksKind;
};

UntoldFormats untoldFormats(const QString &input);

#endif // ARRAYFORMATS_H
