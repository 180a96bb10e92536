// The toolkit reads numbers and texts of classic files from their bytes. This compares that with the way
// over the netCDF library, for which it stands in.
#ifndef TWOROADS_H
#define TWOROADS_H

#include <QByteArray>

#include <cstddef>

// Reads parts of all variables of a file in both ways, as all types; those of up to `most` elements.
// Returns which read differs, in numbers or in its failure; empty where all are equal, and for a file
// that can't be opened.
QByteArray differenceOfRoads(const QByteArray &path, std::size_t most = 1 << 12);

#endif // TWOROADS_H
