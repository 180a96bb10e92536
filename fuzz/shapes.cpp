// The input steers a generator of valid netCDF files that have the template's names in wrong types,
// ranks, sizes, orders, spellings and counts.

#include "msfile.h"
#include "road.h"
#include "scratchfile.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <netcdf.h>
#include <numeric>
#include <vector>

namespace {

// Takes decisions from the input; behind its end all are 0.
class Choice
{
public:
    Choice(const unsigned char *bytes, std::size_t count) : data(bytes), size(count) { }

    unsigned byte() { return at < size ? data[at++] : 0; }
    unsigned below(unsigned count) { return byte() % count; }
    bool oneIn(unsigned count) { return below(count) == count - 1; }
    template <class T, std::size_t count> const T &from(const T (&list)[count])
    {
        return list[below(count)];
    }

private:
    const unsigned char *data;
    std::size_t size;
    std::size_t at = 0;
};

constexpr struct {
    int slot;
    const char *name;
    std::size_t size;
} plainDimensions[] = {
    // clang-format off
    {MsDim_scan_number,       "scan_number",        3},
    {MsDim_point_number,      "point_number",      12},
    {MsDim_error_number,      "error_number",       1},
    {MsDim_64_byte_string,    "_64_byte_string",   64},
    {MsDim_instrument_number, "instrument_number",  2},
    {MsDim_32_byte_string,    "_32_byte_string",   32},
    {MsDim_255_byte_string,   "_255_byte_string", 255},
    {MsDim_128_byte_string,   "_128_byte_string", 128},
    {MsDim_group_number,      "group_number",       2},
    {MsDim_group_max_masses,  "group_max_masses",   5},
    // clang-format on
};
// NC_UNLIMITED among them: several in a file of the newer kind.
constexpr std::size_t oddSizes[] = {0, 1, 2, 7, 40, 300, 0, 1, 2, 7, 13, 14, 15, 70000};
constexpr std::size_t mostScans = 1000; // of them, and of all but points: each takes time
constexpr std::size_t claims[] = {0x7fffffff, 0xfffffff0, 0x80000000, std::size_t(1) << 40};

constexpr nc_type classicTypes[] = {NC_FLOAT, NC_INT, NC_DOUBLE, NC_SHORT, NC_CHAR, NC_BYTE};
constexpr nc_type newTypes[] = {NC_FLOAT, NC_INT,  NC_DOUBLE, NC_SHORT,  NC_CHAR,  NC_BYTE,
                                NC_INT64, NC_UINT, NC_UINT64, NC_USHORT, NC_UBYTE, NC_STRING};

struct PlainVariable {
    const char *name;
    nc_type type;
    int dimension; // of plainDimensions
};
constexpr PlainVariable plainVariables[] = {
    {"scan_index", NC_INT, 0},    {"point_count", NC_INT, 0},      {"flag_count", NC_INT, 0},
    {"mass_values", NC_FLOAT, 1}, {"intensity_values", NC_INT, 1}, {"time_values", NC_FLOAT, 1},
};

class Generator
{
public:
    Generator(Choice *source, int file, bool isNew) : choice(source), ncid(file), newer(isNew) { }

    // False if the library refuses the whole.
    bool run()
    {
        nc_set_fill(ncid, NC_NOFILL, nullptr); // what is claimed isn't written
        for (std::size_t i = 0; i < std::size(plainDimensions); ++i)
            addDimension(i);
        addAttributes();
        for (const PlainVariable &variable : plainVariables)
            addVariable(variable.name, variable.type, {variable.dimension}, 8);
        addRows(ms_per_scan_table, 6);
        addRows(ms_error_table, 3);
        if (choice->oneIn(3))
            addRows(ms_instrument_table, 4);
        if (choice->oneIn(3))
            addRows(ms_group_table, 4);
        if (choice->oneIn(3))
            addRows(ms_library_table, 5);
        if (nc_enddef(ncid) != NC_NOERR)
            return false;
        for (const int variable : variables)
            fill(variable);
        return true;
    }

private:
    // Now and then in the dashed spelling.
    QByteArray spelt(const char *name)
    {
        return choice->oneIn(8) ? ms_dash_name(name) : QByteArray(name);
    }

    std::size_t oddSize(int slot)
    {
        const std::size_t size = choice->from(oddSizes);
        return slot == MsDim_point_number ? size : std::min(size, mostScans);
    }

    void addDimension(std::size_t i)
    {
        std::size_t size = plainDimensions[i].size;
        if (choice->oneIn(6))
            size = oddSize(plainDimensions[i].slot);
        else if (choice->oneIn(40))
            size = choice->from(claims);
        int id = -1;
        if (!choice->oneIn(12))
            nc_def_dim(ncid, spelt(plainDimensions[i].name).constData(), size, &id);
        dimensions.push_back(id);
    }

    nc_type type() { return newer ? choice->from(newTypes) : choice->from(classicTypes); }

    void addVariable(const char *name, nc_type usual, std::vector<int> over, unsigned oddness)
    {
        if (choice->oneIn(2 * oddness))
            return;
        const nc_type stored = choice->oneIn(oddness) ? type() : usual;
        std::vector<int> ids;
        for (const int i : over)
            ids.push_back(dimensions[std::size_t(i)]);
        if (choice->oneIn(2 * oddness))
            ids.push_back(dimensions[choice->below(unsigned(dimensions.size()))]);
        if (choice->oneIn(2 * oddness))
            ids.front() = dimensions[choice->below(unsigned(dimensions.size()))];
        if (choice->oneIn(4 * oddness))
            ids.clear();
        int id = -1;
        if (nc_def_var(ncid, spelt(name).constData(), stored, int(ids.size()), ids.data(), &id)
            == NC_NOERR)
            variables.push_back(id);
    }

    void addRows(const MsTable<MsVariableRow> &table, unsigned oddness)
    {
        for (const MsVariableRow &row : table) {
            std::vector<int> over;
            for (int i = 0; i < row.ndims; ++i)
                over.push_back(placeOf(row.dims[i]));
            addVariable(row.name, row.nc_type, over, oddness);
        }
    }

    // In plainDimensions.
    static int placeOf(int slot)
    {
        const auto *place = std::find_if(std::begin(plainDimensions), std::end(plainDimensions),
                                         [slot](const auto &row) { return row.slot == slot; });
        return int(place - std::begin(plainDimensions));
    }

    void addAttributes()
    {
        const MsTable<MsAttributeRow> tables[] = {ms_admin_table, ms_sample_table, ms_test_table,
                                                  ms_raw_table};
        const unsigned count = choice->below(12);
        for (unsigned i = 0; i < count; ++i) {
            const MsTable<MsAttributeRow> &table = choice->from(tables);
            addAttribute(table.first[choice->below(unsigned(table.count))]);
        }
        if (choice->oneIn(3))
            nc_put_att_text(ncid, NC_GLOBAL, "experiment_type", 21, "Library Mass Spectrum");
    }

    void addAttribute(const MsAttributeRow &row)
    {
        const nc_type stored = choice->oneIn(3) ? type() : row.nc_type;
        if (stored == NC_STRING)
            return;
        const std::size_t length = choice->oneIn(4) ? choice->below(200) : 1 + choice->below(3);
        std::vector<double> raw(length + 1);
        for (std::size_t i = 0; i < std::min<std::size_t>(length * sizeof(double), 16); ++i)
            reinterpret_cast<unsigned char *>(raw.data())[i] = static_cast<unsigned char>(choice->byte());
        nc_put_att(ncid, NC_GLOBAL, spelt(row.name).constData(), stored, length, raw.data());
    }

    // A few numbers, right ones as a rule.
    void fill(int variable)
    {
        int rank = 0;
        int ids[NC_MAX_VAR_DIMS];
        nc_type stored = NC_NAT;
        if (nc_inq_var(ncid, variable, nullptr, &stored, &rank, ids, nullptr) != NC_NOERR
            || stored == NC_STRING)
            return;
        std::vector<std::size_t> start(std::size_t(rank) + 1, 0);
        std::vector<std::size_t> count(std::size_t(rank) + 1, 1);
        std::size_t total = 1;
        int unlimited = -1;
        nc_inq_unlimdim(ncid, &unlimited);
        for (int i = 0; i < rank; ++i) {
            std::size_t length = 0;
            nc_inq_dimlen(ncid, ids[i], &length);
            if (ids[i] == unlimited || length == 0)
                length = choice->oneIn(4) ? choice->below(20) : 12;
            count[std::size_t(i)] = std::min<std::size_t>(length, 32);
            total *= count[std::size_t(i)];
        }
        if (total == 0 || total > 4096 || choice->oneIn(10))
            return;
        if (stored == NC_CHAR) {
            std::vector<char> text(total, choice->oneIn(3) ? ' ' : 'x');
            nc_put_vara_text(ncid, variable, start.data(), count.data(), text.data());
            return;
        }
        std::vector<double> numbers(total);
        const unsigned step = choice->below(6);
        for (std::size_t i = 0; i < total; ++i)
            numbers[i] = double(i) * step + 1;
        if (choice->oneIn(3))
            numbers[choice->below(unsigned(total))] = double(choice->byte()) * 1e7 - 1e9;
        nc_put_vara_double(ncid, variable, start.data(), count.data(), numbers.data());
    }

    Choice *choice;
    int ncid;
    bool newer;
    std::vector<int> dimensions;
    std::vector<int> variables;
};

// Files of the newer kinds take a hundred times as long to make. They are chosen by a sum of the whole
// input, so that the mutants of an input that made one rarely make one, too.
int kindOf(Choice *choice, const unsigned char *data, std::size_t size)
{
    constexpr int classicKinds[] = {0, NC_64BIT_OFFSET, NC_64BIT_DATA, 0};
    const int classic = choice->from(classicKinds);
    return std::accumulate(data, data + size, 0u) % 128 == 127 ? NC_NETCDF4 : classic;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    Choice choice(data, size);
    const int kind = kindOf(&choice, data, size);
    const QString path = scratchFile();
    int ncid = -1;
    if (nc_create(path.toLatin1().constData(), NC_CLOBBER | kind, &ncid) != NC_NOERR)
        return -1;
    MsFile file = MsFile::adopt(ncid);
    if (!Generator(&choice, ncid, kind == NC_NETCDF4).run())
        return -1;
    file.close();
    // A file that is really as long as it claims may take as much memory.
    constexpr qint64 longest = 1 << 20;
    if (QFileInfo(path).size() > longest)
        return -1;
    followRoad(path);
    return 0;
}
