// Private to the toolkit: the few ways in which its walkers reach netCDF. Whatever these routines are
// told by a file, they hand netCDF no buffer before they have looked at the stored type, rank and sizes.
#ifndef ACCESS_P_H
#define ACCESS_P_H

#include "filestate_p.h"
#include "mstoolkit.h"

#include <memory>

// netCDF's older interface ends the process at the first failing call, unless told otherwise. An absent
// object is an everyday event here, and another user of the library in the same process may have
// turned the option back on.
inline void ms_let_failures_return()
{
    ncopts = 0;
}

template <class T> T &ms_field(void *record, std::size_t offset)
{
    return *reinterpret_cast<T *>(static_cast<char *>(record) + offset);
}

template <class T> const T &ms_field(const void *record, std::size_t offset)
{
    return *reinterpret_cast<const T *>(static_cast<const char *>(record) + offset);
}

struct MsFree {
    void operator()(void *block) const { ms_free(block); }
};
template <class T> using MsBlock = std::unique_ptr<T, MsFree>;

// What the public tables leave out: the dimensions whose sizes a writer sets, the counters of a scan, and
// the value variables, with the types that stand for an unknown format.
extern const MsTable<MsDimensionRow> ms_counting_dimension_table; // 4 rows
extern const MsTable<MsVariableRow> ms_counter_table;             // 3 rows
extern const MsTable<MsVariableRow> ms_value_table;               // 3 rows: masses, times, intensities

// An uncleared block of `size` bytes, to be freed with ms_free.
void *ms_alloc_bytes(std::size_t size);

// The size of a dimension. Where the header leaves the number of records open, the library gives one as
// large as can be; this is the true one. False for an absent dimension.
bool ms_ask_length(int ncid, int dimension, std::size_t *length);

// The shape of a variable, asked of netCDF anew. False for an absent one.
bool ms_ask_shape(int ncid, int varid, MsShape *shape);

// The shape of a variable of the template. False for an absent one.
bool ms_inquire_shape(const MsFileRecord &file, int slot, MsShape *shape);

// Puts the id of a variable in the record; what was known of the slot's variable before is forgotten.
void ms_set_variable(MsFileRecord *file, int slot, int varid);

// Whether netCDF converts a type to other numbers.
bool ms_is_number(nc_type type);

// Reads elements of a variable of one dimension, with conversion to `type`. Gives a netCDF status.
int ms_fetch_stretch(int ncid, int varid, std::size_t start, std::size_t count, qint32 type,
                     void *target);

// Bytes of an element of NC_SHORT to NC_DOUBLE; 0 for other types.
quint32 ms_type_width(qint32 type);

// Reads elements of a variable of one dimension of a file as ms_fetch_stretch does, with more ahead where
// they are read from front to back. False if they can't be read or lie beyond the end of the file.
bool ms_fetch_points(const MsFileRecord &file, int slot, std::size_t start, std::size_t count,
                     qint32 type, void *target);

enum class MsPresence { Absent, Present, WrongRank };

// Whether a row's variable is in the file. Another type than the row's costs a warning, another rank an
// error message.
MsPresence ms_check_variable(const MsFileRecord &file, const MsVariableRow &row);

enum class MsFetch {
    Read,
    None, // no number that `type` can hold, or one beyond the end of a file that is cut off
    Failed
};

// Reads element `index` of a variable of one dimension and converts it to `type`, NC_SHORT to NC_DOUBLE.
MsFetch ms_fetch_number(const MsFileRecord &file, int slot, std::size_t index, qint32 type, void *target);

// Reads element `index` of one of the counters over scan_number. -1 if it can't be read as a 32-bit
// number.
int ms_read_counter(const MsFileRecord &file, int slot, qint32 index, qint32 *value);

// Reads `count` elements from `start` on of a variable of one dimension, as a new array of type
// `type`. Elements of another type are converted if all can be held. Null on failure; nothing is
// allocated where the file can't have that many.
MsBlock<void> ms_read_vector(const MsFileRecord &file, int slot, qint32 type, qint64 start, qint64 count);

// Reads the first `width` numbers of line `line` of a variable of two dimensions.
int ms_read_line(const MsFileRecord &file, int slot, qint32 line, qint32 width, double *target);

// Reads or writes a row of one number, or of one text, at `index` along its first dimension. Reading an
// absent variable gives the missing value or null. -1: a negative index, another rank, a failed
// transfer of a number, a failed write of a text.
int ms_read_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, void *record);
int ms_write_row(const MsFileRecord &file, const MsVariableRow &row, qint32 index, const void *record);

// Makes a text null, after freeing it where `release` isn't 0.
void ms_clear_text(char release, char **text);

// Clears the field of such a row, a text like that.
void ms_clear_row(char release, const MsVariableRow &row, void *record);

// The same for the field of an attribute: the missing value, the default code or null.
void ms_clear_attribute(char release, const MsAttributeRow &row, void *record);

// Makes a scan's vectors null, unfreed.
void ms_clear_vectors(MsScanRecord *scan);

// The record of a file that is about to be read, after a look at its length; null for an unknown id.
const MsFileRecord *ms_file_to_read(int ncid);

// The netCDF id of a row's variable.
inline int ms_variable(const MsFileRecord &file, const MsVariableRow &row)
{
    return file.variables[row.slot];
}

// ncdimid and ncvarid with one retry under the dashed spelling; -1 for an absent object.
int ms_find_dimension(int ncid, const char *name);
int ms_find_variable(int ncid, const char *name);

// The library steps of reading and writing a scan.
int ms_read_library_entry(const MsFileRecord &file, MsLibraryRecord *library);
int ms_write_library_entry(const MsFileRecord &file, const MsLibraryRecord *library);

#endif // ACCESS_P_H
