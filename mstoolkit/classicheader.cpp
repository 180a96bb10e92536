// Walking the header of a classic netCDF file.

#include "classicheader_p.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <utility>

namespace {

constexpr quint32 dimensionTag = 0x0A;
constexpr quint32 variableTag = 0x0B;
constexpr quint32 attributeTag = 0x0C;

quint64 padded(quint64 size)
{
    return ms_sum(size, 3) & ~quint64(3);
}

// Bytes of an element by nc type, NC_BYTE to NC_UINT64; the last five are of CDF-5.
constexpr std::array<quint64, 12> typeWidths = {0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};

// Reads a header from front to back. What can't be right makes it fail, and it stays failed: all
// further numbers are 0.
class Walk
{
public:
    explicit Walk(const char *path);

    quint64 fileLength() const { return length; }
    bool isClassic();
    bool run(MsClassicLayout *layout);

private:
    struct Variable {
        std::vector<quint64> dimensions;
        quint64 type;
        quint64 begin;

        quint64 width() const { return typeWidths[std::size_t(type)]; }
    };

    quint64 left() const { return length - position; }
    bool fail();
    void skip(quint64 size);
    quint64 number(int bytes);
    quint64 word() { return number(4); }
    quint64 size() { return number(version == 5 ? 8 : 4); }
    quint64 offset() { return number(version == 1 ? 4 : 8); }
    quint64 count(quint32 tag, quint64 leastSize);
    quint64 type();
    void skipName() { skip(padded(size())); }
    void skipAttributes();
    void readDimensions();
    void readVariables();
    static quint64 elements(const Variable &variable, std::size_t first);
    static bool isRecord(const Variable &variable);
    void lay(MsClassicLayout *layout) const;
    quint64 recordSize() const;
    quint64 recordBegin() const;
    quint64 wholeRecords() const;

    std::ifstream file; // takes the bytes of a path as they are
    quint64 length = 0;
    quint64 position = 0;
    int version = 0;
    bool sound = true;
    quint64 records = 0;
    std::vector<quint64> dimensions; // 0: the unlimited one
    std::vector<Variable> variables;
};

Walk::Walk(const char *path) : file(path, std::ios::binary)
{
    if (file.seekg(0, std::ios::end))
        length = quint64(file.tellg());
    file.seekg(0);
}

bool Walk::fail()
{
    sound = false;
    return false;
}

void Walk::skip(quint64 size)
{
    // Padding at the very end may be missing.
    if (size > left() + 3) {
        fail();
        return;
    }
    constexpr quint64 in_reach = 4096; // a seek would throw the stream's buffer away
    size = std::min(size, left());
    position += size;
    if (size <= in_reach)
        file.ignore(std::streamsize(size));
    else
        file.seekg(std::streamoff(position));
}

quint64 Walk::number(int bytes)
{
    std::array<char, 8> raw{};
    if (!sound || !file.read(raw.data() + 8 - bytes, bytes)) {
        fail();
        return 0;
    }
    position += quint64(bytes);
    return qFromBigEndian<quint64>(raw.data());
}

// The length of a list whose entries take `leastSize` bytes or more each.
quint64 Walk::count(quint32 tag, quint64 leastSize)
{
    const quint64 found = word();
    const quint64 entries = size();
    if ((found != tag && (found != 0 || entries != 0)) || entries > left() / leastSize) {
        fail();
        return 0;
    }
    return entries;
}

quint64 Walk::type()
{
    const quint64 found = word();
    if (found < 1 || found >= typeWidths.size()) {
        fail();
        return 0;
    }
    return found;
}

void Walk::skipAttributes()
{
    const quint64 entries = count(attributeTag, 12);
    for (quint64 i = 0; sound && i < entries; ++i) {
        skipName();
        const quint64 width = typeWidths[std::size_t(type())];
        skip(padded(ms_product(size(), width)));
    }
}

void Walk::readDimensions()
{
    const quint64 entries = count(dimensionTag, 8);
    for (quint64 i = 0; sound && i < entries; ++i) {
        skipName();
        dimensions.push_back(size());
    }
}

void Walk::readVariables()
{
    const quint64 entries = count(variableTag, 28);
    for (quint64 i = 0; sound && i < entries; ++i) {
        Variable variable;
        skipName();
        const quint64 rank = size();
        if (rank > left() / 4) {
            fail();
            return;
        }
        for (quint64 j = 0; sound && j < rank; ++j) {
            const quint64 id = size();
            if (id >= dimensions.size()) {
                fail();
                return;
            }
            variable.dimensions.push_back(dimensions[std::size_t(id)]);
        }
        skipAttributes();
        variable.type = type();
        size(); // the stored size is only a help; the library, too, makes its own
        variable.begin = offset();
        if (variable.begin > ms_largest)
            fail();
        variables.push_back(std::move(variable));
    }
}

bool Walk::isRecord(const Variable &variable)
{
    return !variable.dimensions.empty() && variable.dimensions.front() == 0;
}

// Elements over the dimensions from `first` on.
quint64 Walk::elements(const Variable &variable, std::size_t first)
{
    quint64 result = 1;
    for (std::size_t i = first; i < variable.dimensions.size(); ++i)
        result = ms_product(result, variable.dimensions[i]);
    return result;
}

// Bytes from one record to the next. The only record variable of a file isn't padded.
quint64 Walk::recordSize() const
{
    quint64 result = 0;
    quint64 unpadded = 0;
    int found = 0;
    for (const Variable &variable : variables) {
        if (!isRecord(variable))
            continue;
        unpadded = ms_product(elements(variable, 1), variable.width());
        result = ms_sum(result, padded(unpadded));
        ++found;
    }
    return found == 1 ? unpadded : result;
}

// Where the first record lies; the end of the file where that is beyond it.
quint64 Walk::recordBegin() const
{
    quint64 begin = length;
    for (const Variable &variable : variables) {
        if (isRecord(variable))
            begin = std::min(begin, variable.begin);
    }
    return begin;
}

// The records that the file has in full.
quint64 Walk::wholeRecords() const
{
    const quint64 stride = recordSize();
    return stride == 0 ? 0 : (length - recordBegin()) / stride;
}

void Walk::lay(MsClassicLayout *layout) const
{
    layout->needed = 0;
    layout->variables.clear();
    const quint64 stride = recordSize();
    for (const Variable &variable : variables) {
        MsVariableExtent extent;
        extent.type = int(variable.type);
        extent.begin = variable.begin;
        extent.width = variable.width();
        const quint64 lineSize = ms_product(elements(variable, 1), extent.width);
        extent.stride = isRecord(variable) ? stride : lineSize;
        const quint64 lead = isRecord(variable) ? extent.begin - recordBegin() : 0;
        // A variable of another place has no record in common with the others.
        extent.lead = ms_sum(lead, extent.width) <= stride ? lead : 0;
        layout->variables.push_back(extent);

        const quint64 lines = isRecord(variable) ? records
            : variable.dimensions.empty()        ? 1
                                                 : variable.dimensions.front();
        if (lines == 0 || lineSize == 0)
            continue;
        const quint64 end = ms_sum(ms_sum(extent.begin, ms_product(lines - 1, extent.stride)), lineSize);
        layout->needed = std::max(layout->needed, end);
    }
}

bool Walk::isClassic()
{
    std::array<char, 4> magic{};
    if (!file.read(magic.data(), 4) || magic[0] != 'C' || magic[1] != 'D' || magic[2] != 'F')
        return false;
    position = magic.size();
    version = static_cast<unsigned char>(magic[3]);
    return version == 1 || version == 2 || version == 5;
}

bool Walk::run(MsClassicLayout *layout)
{
    records = size();
    const quint64 streaming = version == 5 ? ~quint64(0) : 0xFFFFFFFFu;
    layout->counts_records = records != streaming;
    readDimensions();
    skipAttributes();
    readVariables();
    if (!sound)
        return false;
    if (!layout->counts_records)
        records = wholeRecords();
    layout->records = records;
    layout->header = position;
    layout->record_begin = recordBegin();
    layout->record_size = recordSize();
    lay(layout);
    return true;
}

} // namespace

MsHeader ms_inspect_header(const char *path, MsClassicLayout *layout)
{
    Walk walk(path);
    layout->length = walk.fileLength();
    if (!walk.isClassic())
        return MsHeader::NotClassic;
    return walk.run(layout) ? MsHeader::Sound : MsHeader::Damaged;
}
