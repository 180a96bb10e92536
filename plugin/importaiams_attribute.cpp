// Reads a single global text attribute, apart from the records.

#include "importaiams.h"

#include "ttestingmacros.h"

#include <QString>

#include <algorithm>
#include <cstring>
#include <vector>

int ImportAiaMs::readGlobalTextAttribute(const char *name, char *buffer, int size)
{
    if (!buffer || size < 1)
        return 0;
    buffer[0] = '\0';
    if (!name)
        return 0;

    // nc_get_att_text refuses attributes that aren't text, so `length` is their number of bytes.
    std::size_t length = 0;
    if (nc_inq_attlen(fileId, NC_GLOBAL, name, &length) != NC_NOERR)
        return 0;
    std::vector<char> text(length + 1, '\0');
    if (nc_get_att_text(fileId, NC_GLOBAL, name, text.data()) != NC_NOERR)
        return 0;

    const std::size_t copied = std::min(std::strlen(text.data()), std::size_t(size) - 1);
    std::memcpy(buffer, text.data(), copied);
    buffer[copied] = '\0';
    testingMessageOutput(
        2, nullptr,
        QStringLiteral("%1 = %2").arg(QString::fromLatin1(name), QString::fromLatin1(buffer)));
    return 1;
}
