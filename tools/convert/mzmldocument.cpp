#include "mzmldocument.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <pwiz/data/msdata/IO.hpp>
#include <pwiz/data/msdata/SHA1OutputObserver.hpp>

using namespace pwiz::msdata;
using pwiz::minimxml::XMLWriter;

namespace {

using Positions = std::vector<boost::iostreams::stream_offset>;

template <class NameOf>
void writePositions(XMLWriter &writer, const char *kind, const Positions &positions, const NameOf &nameOf)
{
    XMLWriter::Attributes attributes;
    attributes.add("name", kind);
    writer.startElement("index", attributes);
    writer.pushStyle(XMLWriter::StyleFlag_InlineInner);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        attributes.clear();
        attributes.add("idRef", nameOf(i));
        writer.startElement("offset", attributes);
        writer.characters(std::to_string(positions[i]));
        writer.endElement();
    }
    writer.popStyle();
    writer.endElement();
}

void writeIndex(XMLWriter &writer, const Run &run, const Positions &spectra,
                const Positions &chromatograms)
{
    XMLWriter::Attributes attributes;
    attributes.add("count", std::to_string(bool(run.spectrumListPtr) + bool(run.chromatogramListPtr)));
    writer.startElement("indexList", attributes);
    if (run.spectrumListPtr)
        writePositions(writer, "spectrum", spectra,
                       [&run](std::size_t i) { return run.spectrumListPtr->spectrumIdentity(i).id; });
    if (run.chromatogramListPtr)
        writePositions(writer, "chromatogram", chromatograms, [&run](std::size_t i) {
            return run.chromatogramListPtr->chromatogramIdentity(i).id;
        });
    writer.endElement();
}

} // namespace

void writeMzMlDocument(const MSData &data, const BinaryDataEncoder::Config &encoding,
                       const pwiz::util::IterationListenerRegistry &listeners, std::ostream &stream)
{
    SHA1OutputObserver observer;
    XMLWriter::Config config;
    config.outputObserver = &observer;
    XMLWriter writer(stream, config);
    writer.processingInstruction("xml", "version=\"1.0\" encoding=\"utf-8\"");
    XMLWriter::Attributes attributes;
    attributes.add("xmlns", "http://psi.hupo.org/ms/mzml");
    attributes.add("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance");
    attributes.add("xsi:schemaLocation",
                   "http://psi.hupo.org/ms/mzml "
                   "http://psidev.info/files/ms/mzML/xsd/mzML1.1.2_idx.xsd");
    writer.startElement("indexedmzML", attributes);
    Positions spectra;
    Positions chromatograms;
    IO::write(writer, data, encoding, &spectra, &chromatograms, &listeners);

    const auto indexPosition = writer.positionNext();
    writeIndex(writer, data.run, spectra, chromatograms);
    writer.pushStyle(XMLWriter::StyleFlag_InlineInner);
    writer.startElement("indexListOffset");
    writer.characters(std::to_string(indexPosition));
    writer.endElement();
    writer.startElement("fileChecksum"); // of all bytes up to here
    writer.characters(observer.hash());
    writer.endElement();
    writer.popStyle();
    writer.endElement();
}
