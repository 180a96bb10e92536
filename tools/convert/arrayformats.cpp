#include "arrayformats.h"

#include "mstoolkit.h"

#include <QFile>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

#include <pwiz/utility/misc/random_access_compressed_ifstream.hpp>

namespace {

// Returns what is said of the first array of a kind in the beginning of an mzML file, with the groups of
// parameters that it refers to.
std::string paramsOfArray(const std::string &beginning, const char *kind)
{
    const auto part = [&beginning](std::size_t from, const char *end) {
        return beginning.substr(from, beginning.find(end, from + 1) - from);
    };
    int searches = 1000; // more would take long, in a file that was made to
    for (std::size_t place = 0;
         --searches > 0 && (place = beginning.find("<binaryDataArray ", place)) != std::string::npos;
         ++place) {
        std::string params = part(place, "<binary");
        const std::string own = params;
        const std::string reference = "<referenceableParamGroupRef ref=";
        for (std::size_t at = 0; --searches > 0 && (at = own.find(reference, at)) != std::string::npos;
             ++at) {
            const std::size_t name = at + reference.size();
            const std::string quoted = own.substr(name, own.find(own[name], name + 1) + 1 - name);
            const std::size_t group = beginning.find("<referenceableParamGroup id=" + quoted);
            if (group != std::string::npos)
                params += part(group, "</referenceableParamGroup>");
        }
        if (params.find(kind) != std::string::npos)
            return params;
    }
    return std::string();
}

bool has(const std::string &text, const char *what)
{
    return text.find(what) != std::string::npos;
}

// Returns the text of the file's head and its first spectra.
std::string beginningOf(const QString &input)
{
    pwiz::util::random_access_compressed_ifstream file(QFile::encodeName(input).constData());
    constexpr std::size_t enough = 1 << 22;
    std::string beginning(enough, '\0');
    file.read(&beginning[0], std::streamsize(enough));
    beginning.resize(std::size_t(std::max<std::streamsize>(file.gcount(), 0)));
    return beginning;
}

} // namespace

UntoldFormats untoldFormats(const QString &input)
{
    const std::string beginning = beginningOf(input);
    const bool isNarrowMzXml = has(beginning, "precision=\"32\"") && !has(beginning, "precision=\"64\"");
    UntoldFormats formats;
    const char *const kinds[] = {"\"MS:1000514\"", "\"MS:1000515\""}; // arrays of m/z and intensities
    std::transform(std::begin(kinds), std::end(kinds), formats.arrays.begin(), [&](const char *kind) {
        const bool isNarrow = isNarrowMzXml || has(paramsOfArray(beginning, kind), "\"MS:1000521\"");
        return qint32(isNarrow ? MsFloatFormat : MsDoubleFormat);
    });
    formats.lacksKind = has(beginning, "<mzXML") && !has(beginning, " centroided=");
    return formats;
}
