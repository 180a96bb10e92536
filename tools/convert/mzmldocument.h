// An mzML document with its index and checksum.
#ifndef MZMLDOCUMENT_H
#define MZMLDOCUMENT_H

#include <ostream>

#include <pwiz/data/msdata/BinaryDataEncoder.hpp>
#include <pwiz/data/msdata/MSData.hpp>
#include <pwiz/utility/misc/IterationListener.hpp>

// Writes the document as the library's own routine does, but looks at `encoding` anew for each array, so
// that the lists in `data` can change it while they are written. Where a listener stops it, the document
// is of no use.
void writeMzMlDocument(const pwiz::msdata::MSData &data,
                       const pwiz::msdata::BinaryDataEncoder::Config &encoding,
                       const pwiz::util::IterationListenerRegistry &listeners, std::ostream &stream);

#endif // MZMLDOCUMENT_H
