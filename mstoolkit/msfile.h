// The toolkit for C++ programs: a file that closes itself, and its scans as a range. A thin layer over
// mstoolkit.h, which says what is in a record and when a reading fails.
//
//     const MsFile file("run.cdf");
//     for (const MsScan &scan : file)
//         for (const double mass : scan.masses())
//             ...
//
// A scan that can't be read doesn't end such a loop and doesn't throw: its isRead() is false. msrecords.h
// tells of the records, msnumbers.h of their numbers. Memory that runs out is std::bad_alloc, as
// everywhere in the toolkit; nothing leaks then.
#ifndef MSFILE_H
#define MSFILE_H

#include "msrecords.h"

#include <algorithm>
#include <utility>

// Records 0 to size() - 1 of a file. Each is read when it is asked for, and belongs to who asked, who may
// keep it or let it go. The file has to stay open. A file may claim two thousand million scans and have
// none, so a program that reads files of strangers sets itself a limit.
template <class Record> class MsRange
{
public:
    using Iterator = MsIterator<MsRange, Record>;

    MsRange(int ncid, qint32 count) : ncid_(ncid), count_(std::max(count, 0)) { }

    // How many the file claims, those included that can't be read.
    qint32 size() const { return count_; }

    // Reads the record with that number. One outside the range isn't read: its isRead() is false.
    Record operator[](qint32 number) const { return Record(ncid_, number); }
    Iterator begin() const { return Iterator(*this, 0); }
    Iterator end() const { return Iterator(*this, count_); }

private:
    int ncid_;
    qint32 count_;
};

// What a new file is made for: the arguments of ms_open_write. The formats are MsDataFormat, and the
// vectors of each scan that is written have to be of that type.
struct MsFileLayout {
    qint32 experiment_type = MsCentroidedSpectrum; // MsExperimentType
    qint32 scan_count = 1;                         // at least 1
    qint32 instrument_count = 0;                   // below 1 the file has no instrument
    qint32 mass_format = MsFloatFormat;
    qint32 time_format = MsFloatFormat;
    qint32 intensity_format = MsFloatFormat;
    bool has_mass_values = true; // at least one of these two
    bool has_time_values = false;
};

// An open file. It closes at the object's end.
class MsFile
{
public:
    // No file.
    MsFile() = default;

    // Opens a file for reading. No file where that fails, see ms_open_read, which also says how `path` is
    // coded. A name of Qt is coded by ms_path_of.
    explicit MsFile(const char *path) : id_(ms_open_read(path)) { }
    explicit MsFile(const QString &name) : MsFile(ms_path_of(name).constData()) { }

    // Creates a file for writing, over one of that name. No file where that fails, see ms_open_write.
    static MsFile create(const char *path, const MsFileLayout &layout)
    {
        return adopt(ms_open_write(
            path, layout.experiment_type, layout.scan_count, layout.instrument_count, layout.mass_format,
            layout.time_format, layout.intensity_format, layout.has_mass_values, layout.has_time_values));
    }

    // Takes over a file that a routine of mstoolkit.h opened, or netCDF itself; -1 is no file. Of one
    // that netCDF opened the toolkit knows nothing.
    static MsFile adopt(int ncid)
    {
        MsFile file;
        file.id_ = ncid;
        return file;
    }

    // Moving hands the file over; the other object then has none. A file that this one had is closed.
    MsFile(MsFile &&other) noexcept : id_(other.release()) { }
    MsFile &operator=(MsFile &&other) noexcept
    {
        const int taken = other.release(); // first, as it may be this very file
        close();
        id_ = taken;
        return *this;
    }
    ~MsFile() { close(); }

    bool isOpen() const { return id_ != -1; }
    explicit operator bool() const { return isOpen(); }

    // The netCDF id, for the routines of mstoolkit.h and of netCDF; -1 for no file. This object closes
    // it.
    int id() const { return id_; }

    // Returns the netCDF id, which the caller closes from now on. This object has no file any more.
    int release() { return std::exchange(id_, -1); }

    // Closes the file. A writer who wants to know that all has reached the disk calls finish.
    void close()
    {
        if (isOpen())
            ms_close(release());
    }

    // Writes what is still in memory and closes the file. False if that couldn't be written.
    bool finish()
    {
        const bool written = isOpen() && nc_sync(id_) == NC_NOERR;
        close();
        return written;
    }

    // What the toolkit knows of the file. It is the toolkit's, until the file is closed; null for no
    // file.
    const MsFileRecord *record() const { return ms_file_record(id_); }

    // Bytes that a file which is cut off lacks at its end; 0 for a whole one. See ms_missing_bytes.
    quint64 missingBytes() const { return ms_missing_bytes(id_); }

    // Whether the file holds library spectra; false for no file.
    bool isLibrary() const { return record() && record()->experiment_type == MsLibrarySpectrum; }

    // How many the file claims; 0 for no file. There are entries in a library only, one for each scan.
    qint32 scanCount() const { return size(MsDim_scan_number); }
    qint32 entryCount() const { return isLibrary() ? scanCount() : 0; }
    qint32 instrumentCount() const { return size(MsDim_instrument_number); }
    qint32 groupCount() const
    {
        qint32 groups = 0;
        qint32 masses = 0;
        return ms_inquire_groups(id_, &groups, &masses) == -1 ? 0 : groups;
    }

    // What the file holds, read now and owned by the caller. Numbers are counted from 0. Where a reading
    // fails, as beyond the end and for no file, isRead() is false; msrecords.h says what is there then.
    // The census wants the decimals of its grid and the factor of stored masses, see MsCensus.
    MsGlobals globals() const { return MsGlobals(id_); }
    MsScan scan(qint32 number) const { return MsScan(id_, number); }
    MsScanHeader scanHeader(qint32 number) const { return MsScanHeader(id_, number); }
    MsLibraryEntry entry(qint32 number) const { return MsLibraryEntry(id_, number); }
    MsInstrument instrument(qint32 number) const { return MsInstrument(id_, number); }
    MsGroup group(qint32 number) const
    {
        groupCount(); // looks for the groups
        return MsGroup(id_, number);
    }
    MsCensus census(qint32 decimals, double scale) const { return MsCensus(id_, decimals, scale); }
    MsTrace trace() const { return MsTrace(id_, scanCount()); }

    // All of a kind, one after the other. Deleted for a file that would close in the same statement.
    MsRange<MsScan> scans() const & { return {id_, scanCount()}; }
    MsRange<MsScanHeader> scanHeaders() const & { return {id_, scanCount()}; }
    MsRange<MsLibraryEntry> entries() const & { return {id_, entryCount()}; }
    MsRange<MsInstrument> instruments() const & { return {id_, instrumentCount()}; }
    MsRange<MsGroup> groups() const & { return {id_, groupCount()}; }
    void scans() const && = delete;
    void scanHeaders() const && = delete;
    void entries() const && = delete;
    void instruments() const && = delete;
    void groups() const && = delete;

    // A file is the range of its scans, see scans().
    MsRange<MsScan>::Iterator begin() const { return scans().begin(); }
    MsRange<MsScan>::Iterator end() const { return scans().end(); }

    // Write to a file that was created; false at a refused write and for no file. See ms_write_global,
    // ms_write_per_scan, ms_write_instrument, ms_define_groups, which comes before the groups and takes
    // the width of their arrays, and ms_write_group. The records stay the caller's, and as they are.
    bool write(const MsGlobalRecords &globals)
    {
        MsAdminRecord admin = globals.admin; // the routine drops four texts from its copy
        return ms_write_global(id_, &admin, &globals.sample, &globals.test, &globals.raw) == 0;
    }
    bool write(const MsScanRecord &scan) { return ms_write_per_scan(id_, &scan, nullptr) == 0; }
    bool write(const MsScanRecord &scan, const MsLibraryRecord &entry)
    {
        return ms_write_per_scan(id_, &scan, &entry) == 0;
    }
    bool write(const MsInstrumentRecord &instrument)
    {
        return ms_write_instrument(id_, &instrument) == 0;
    }
    bool defineGroups(qint32 count, qint32 maxMasses)
    {
        return ms_define_groups(id_, count, maxMasses) == 0;
    }
    bool write(const MsGroupRecord &group) { return ms_write_group(id_, &group) == 0; }

private:
    qint32 size(MsDimensionSlot slot) const { return record() ? record()->dimensions[slot].size : 0; }

    int id_ = -1;
};

#endif // MSFILE_H
