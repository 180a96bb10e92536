// Walking the header of a classic netCDF file.

#include "classicheader_p.h"

#include <QByteArray>
#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstddef>
#include <netcdf.h>
#include <utility>
#include <vector>

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

// Reads a header from front to back. It fails at the first thing that can't be right, and stays failed:
// all numbers from there on are 0.
class Walk
{
    using Names = QSet<QByteArray>;

public:
    explicit Walk(MsClassicBytes &bytes) : file(bytes), length(bytes.length()) { }

    quint64 fileLength() const { return length; }
    bool isRefused() const { return refused; }
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
    quint64 number(int size);
    quint64 word() { return number(4); }
    quint64 size() { return number(version == 5 ? 8 : 4); }
    quint64 offset() { return number(version == 1 ? 4 : 8); }
    quint64 count(quint32 tag, quint64 leastSize);
    quint64 type();
    bool read(void *target, std::size_t size);
    void addBytes(quint64 size);
    void readName(Names *before);
    void readAttributes();
    void readDimensions();
    void readVariables();
    static quint64 elements(const Variable &variable, std::size_t first);
    static bool isRecord(const Variable &variable);
    void lay(MsClassicLayout *layout) const;
    quint64 recordSize() const;
    quint64 recordBegin() const;
    quint64 wholeRecords() const;

    MsClassicBytes &file;
    quint64 length;
    bool refused = false;
    quint64 position = 0;
    int version = 0;
    bool sound = true;
    MsHeaderSum sum;
    bool isPlain = true; // whether the sum can be compared with the library's
    quint64 records = 0;
    std::vector<quint64> dimensions; // 0: the unlimited one
    std::vector<Variable> variables;
};

bool Walk::fail()
{
    sound = false;
    return false;
}

void Walk::skip(quint64 size)
{
    if (size > left())
        fail();
    else
        position += size;
}

bool Walk::read(void *target, std::size_t size)
{
    const MsClassicBytes::Result result = file.read_bytes(position, size, target);
    refused = refused || result == MsClassicBytes::Result::Failed;
    if (result != MsClassicBytes::Result::Read)
        return fail();
    position += size;
    return true;
}

// Adds the next bytes to the sum, and skips the padding behind them.
void Walk::addBytes(quint64 size)
{
    sum.add(size);
    std::array<char, 1024> piece{};
    for (quint64 rest = size; sound && rest > 0;) {
        const auto next = std::size_t(std::min<quint64>(rest, piece.size()));
        if (next > left())
            fail();
        else if (read(piece.data(), next))
            sum.add(piece.data(), next);
        rest -= next;
    }
    skip(padded(size) - size);
}

// The library finds attributes by their name, and no other names than these for certain.
void Walk::readName(Names *before)
{
    const quint64 found = size();
    if (!sound || found > NC_MAX_NAME) {
        isPlain = false;
        skip(padded(found));
        return;
    }
    QByteArray name(int(found), '\0');
    if (found > left() || !read(name.data(), std::size_t(found))) {
        fail();
        return;
    }
    skip(padded(found) - found);
    const bool isAscii =
        std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c <= '~'; });
    isPlain = isPlain && isAscii && !before->contains(name);
    before->insert(name);
    sum.add(found);
    sum.add(name.constData(), std::size_t(found));
}

quint64 Walk::number(int size)
{
    std::array<char, 8> raw{};
    if (!sound || !read(raw.data() + 8 - size, std::size_t(size)))
        return 0;
    return qFromBigEndian<quint64>(raw.data());
}

// The length of a list whose entries take `leastSize` bytes or more each. Like the library, it looks at
// the tag of a list with entries only.
quint64 Walk::count(quint32 tag, quint64 leastSize)
{
    const quint64 found = word();
    const quint64 entries = size();
    if ((found != tag && entries != 0) || entries > left() / leastSize) {
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

void Walk::readAttributes()
{
    const quint64 entries = count(attributeTag, 12);
    sum.add(entries);
    Names names;
    for (quint64 i = 0; sound && i < entries; ++i) {
        readName(&names);
        const quint64 found = type();
        sum.add(found);
        addBytes(ms_product(size(), typeWidths[std::size_t(found)]));
    }
}

void Walk::readDimensions()
{
    const quint64 entries = count(dimensionTag, 8);
    sum.add(entries);
    Names names;
    for (quint64 i = 0; sound && i < entries; ++i) {
        readName(&names);
        dimensions.push_back(size());
        sum.add(dimensions.back());
    }
}

void Walk::readVariables()
{
    const quint64 entries = count(variableTag, 28);
    sum.add(entries);
    Names names;
    for (quint64 i = 0; sound && i < entries; ++i) {
        Variable variable;
        readName(&names);
        const quint64 rank = size();
        sum.add(rank);
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
            sum.add(id);
            variable.dimensions.push_back(dimensions[std::size_t(id)]);
        }
        readAttributes();
        variable.type = type();
        sum.add(variable.type);
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
    if (!read(magic.data(), magic.size()) || magic[0] != 'C' || magic[1] != 'D' || magic[2] != 'F')
        return false;
    version = static_cast<unsigned char>(magic[3]);
    return version == 1 || version == 2 || version == 5;
}

bool Walk::run(MsClassicLayout *layout)
{
    records = size();
    const quint64 streaming = version == 5 ? ~quint64(0) : 0xFFFFFFFFu;
    layout->counts_records = records != streaming;
    sum.add(layout->counts_records ? records : 0);
    readDimensions();
    readAttributes();
    readVariables();
    if (!sound)
        return false;
    if (!layout->counts_records)
        records = wholeRecords();
    layout->records = records;
    layout->header = position;
    layout->record_begin = recordBegin();
    layout->record_size = recordSize();
    layout->unlimited.clear();
    for (std::size_t i = 0; i < dimensions.size(); ++i) {
        if (dimensions[i] == 0)
            layout->unlimited.push_back(int(i));
    }
    isPlain = isPlain && layout->unlimited.size() <= 1;
    layout->sum = isPlain ? sum.result() : QByteArray();
    lay(layout);
    return true;
}

} // namespace

void MsHeaderSum::add(const char *bytes, std::size_t size)
{
    constexpr std::size_t most = 1 << 30; // the hash takes an int
    for (; size > most; bytes += most, size -= most)
        hash.addData(bytes, int(most));
    hash.addData(bytes, int(size));
}

MsHeader ms_inspect_header(MsClassicBytes &file, MsClassicLayout *layout)
{
    Walk walk(file);
    layout->length = walk.fileLength();
    const bool isClassic = walk.isClassic();
    const bool isSound = isClassic && walk.run(layout);
    if (walk.isRefused())
        return MsHeader::Refused;
    if (!isClassic)
        return MsHeader::NotClassic;
    return isSound ? MsHeader::Sound : MsHeader::Damaged;
}
