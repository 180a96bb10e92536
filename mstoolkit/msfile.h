// The toolkit for C++ programs: files that close themselves, records that release themselves, scans as a
// range, and numbers as double whatever their stored format. A thin layer over mstoolkit.h, which says
// what is in a record and when a reading fails.
//
//     const MsFile file("run.cdf");
//     for (const MsScan &scan : file)
//         for (const double mass : scan.masses())
//             ...
//
// Conventions that hold for every class:
//   * A name of its own stands for each use of a record: MsScan is read from a file and owns what was
//     read; MsScanDraft is filled by a program to be written, and owns nothing.
//   * What can't be read doesn't throw and doesn't end a loop: the record is there, and its isRead() is
//     false. It holds what was read until then; the rest is missing or null.
//   * Objects that own something can be moved, not copied. One that was moved from is empty.
//   * A record outlives its file. A range doesn't, nor does an iterator.
//   * Memory that runs out is std::bad_alloc, as everywhere in the toolkit; nothing leaks.
#ifndef MSFILE_H
#define MSFILE_H

#include "msformat.h"
#include "mstoolkit.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

// ---------------------------------------------------------------------------------------------------
// Numbers
// ---------------------------------------------------------------------------------------------------

// A view of numbers in one of the data formats, as double, which holds each of them exactly. It owns
// nothing: the record whose numbers it shows has to outlive it. Numbers are as stored: MsGlobals turns
// them into masses, times and intensities.
class MsNumbers
{
public:
    class Iterator;

    MsNumbers() = default;

    // `count` numbers of the data format `format` (MsDataFormat) from `first` on. Empty for a null
    // pointer, a count below 1, and a format outside the four.
    MsNumbers(const void *first, qint32 format, qint32 count)
        : first_(first), format_(format),
          size_(first && ms_nc_type_of_format(format, NC_NAT) != NC_NAT ? std::max(count, 0) : 0)
    {
    }

    qint32 size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }

    // Returns number `i`, which has to be from 0 to size() - 1.
    double operator[](qint32 i) const
    {
        return ms_with_format(format_, first_, [i](const auto *numbers) { return double(numbers[i]); });
    }

    inline Iterator begin() const;
    inline Iterator end() const;

    // Calls `use` once with the first number, as a pointer of the stored type (const qint16 *, const
    // qint32 *, const float * or const double *), and their count. The way for long loops: the format is
    // looked at once. No call for an empty view.
    template <class Use> void visit(Use &&use) const
    {
        if (size_ > 0)
            ms_with_format(format_, first_, [&](const auto *numbers) { use(numbers, size_); });
    }

    // Returns the numbers as a vector of their own.
    std::vector<double> toVector() const
    {
        std::vector<double> numbers;
        visit([&numbers](const auto *first, qint32 count) { numbers.assign(first, first + count); });
        return numbers;
    }

private:
    const void *first_ = nullptr;
    qint32 format_ = MsDoubleFormat;
    qint32 size_ = 0;
};

class MsNumbers::Iterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = double;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = double;

    Iterator(const MsNumbers &numbers, qint32 place) : numbers_(numbers), place_(place) { }

    double operator*() const { return numbers_[place_]; }
    Iterator &operator++()
    {
        ++place_;
        return *this;
    }
    Iterator operator++(int)
    {
        const Iterator before = *this;
        ++place_;
        return before;
    }
    bool operator==(const Iterator &other) const { return place_ == other.place_; }
    bool operator!=(const Iterator &other) const { return place_ != other.place_; }

private:
    MsNumbers numbers_;
    qint32 place_;
};

inline MsNumbers::Iterator MsNumbers::begin() const
{
    return Iterator(*this, 0);
}

inline MsNumbers::Iterator MsNumbers::end() const
{
    return Iterator(*this, size_);
}

// ---------------------------------------------------------------------------------------------------
// Records to be written
// ---------------------------------------------------------------------------------------------------

// The routines of mstoolkit.h by the type of the record.
namespace MsFileDetail {

inline void init(char release, MsScanRecord *scan)
{
    ms_init_per_scan(release, scan, nullptr);
}
inline void init(char release, MsLibraryRecord *entry)
{
    ms_init_per_scan(release, nullptr, entry);
}
inline void init(char release, MsInstrumentRecord *instrument)
{
    ms_init_instrument(release, instrument);
}
inline void init(char release, MsGroupRecord *group)
{
    ms_init_group(release, group);
}

inline qint32 &number(MsScanRecord *scan)
{
    return scan->scan_number;
}
inline qint32 &number(MsLibraryRecord *entry)
{
    return entry->entry_index;
}
inline qint32 &number(MsInstrumentRecord *instrument)
{
    return instrument->component_index;
}
inline qint32 &number(MsGroupRecord *group)
{
    return group->group_number;
}

inline int read(int ncid, MsScanRecord *scan)
{
    return ms_read_per_scan(ncid, scan, nullptr);
}
// The routine succeeds without an entry in a file that isn't a library.
inline int read(int ncid, MsLibraryRecord *entry)
{
    const MsFileRecord *file = ms_file_record(ncid);
    return file && file->experiment_type == MsLibrarySpectrum ? ms_read_per_scan(ncid, nullptr, entry)
                                                              : -1;
}
inline int read(int ncid, MsInstrumentRecord *instrument)
{
    return ms_read_instrument(ncid, instrument);
}
inline int read(int ncid, MsGroupRecord *group)
{
    return ms_read_group(ncid, group);
}

} // namespace MsFileDetail

// A record to be filled and written: cleared, so that a field that isn't filled is missing in the file,
// and with the number of its place there, from 0. Its texts and vectors are the program's own: nothing
// frees them.
template <class Record> struct MsDraft : Record {
    explicit MsDraft(qint32 number) : Record()
    {
        MsFileDetail::init(0, this);
        MsFileDetail::number(this) = number;
    }
};

using MsScanDraft = MsDraft<MsScanRecord>;
using MsLibraryDraft = MsDraft<MsLibraryRecord>;
using MsInstrumentDraft = MsDraft<MsInstrumentRecord>;
using MsGroupDraft = MsDraft<MsGroupRecord>;

// The four global records, cleared.
struct MsGlobalRecords {
    MsAdminRecord admin;
    MsSampleRecord sample;
    MsTestRecord test;
    MsRawGlobalRecord raw;

protected:
    MsGlobalRecords() { ms_init_global(0, &admin, &sample, &test, &raw); }
};

// The four global records to be filled and written. Their texts are the program's own, too.
struct MsGlobalsDraft : MsGlobalRecords {
};

// ---------------------------------------------------------------------------------------------------
// Records that were read
// ---------------------------------------------------------------------------------------------------

// A record that was read from a file. It owns its texts and vectors and frees them at its end.
template <class Record> class MsOwned : public Record
{
public:
    // An empty record, for a routine of mstoolkit.h to fill; isRead() is false.
    MsOwned() : Record(MsDraft<Record>(-1)) { }

    // Reads the record with that number, from 0, of an open file.
    MsOwned(int ncid, qint32 number) : MsOwned() // complete from here on: its end frees what was read
    {
        MsFileDetail::number(this) = number;
        isRead_ = MsFileDetail::read(ncid, this) != -1;
    }

    MsOwned(MsOwned &&other) noexcept : Record(other), isRead_(std::exchange(other.isRead_, false))
    {
        MsFileDetail::init(0, &other);
    }
    MsOwned &operator=(MsOwned &&other) noexcept
    {
        std::swap(static_cast<Record &>(*this), static_cast<Record &>(other));
        std::swap(isRead_, other.isRead_);
        return *this;
    }
    ~MsOwned() { MsFileDetail::init(1, this); }

    // Whether the record could be read whole.
    bool isRead() const { return isRead_; }

private:
    bool isRead_ = false;
};

// A spectrum of a library and its compound, without the points, which are the scan of the same number.
// isRead() is false in a file that isn't a library.
using MsLibraryEntry = MsOwned<MsLibraryRecord>;

// A component of the instrument. A number of -1 stands for the only one of a file with one.
using MsInstrument = MsOwned<MsInstrumentRecord>;

// A scan with its points and flags.
class MsScan : public MsOwned<MsScanRecord>
{
public:
    MsScan() = default;
    MsScan(int ncid, qint32 number) : MsOwned(ncid, number)
    {
        if (const MsFileRecord *file = ms_file_record(ncid)) {
            massFormat_ = known(file->mass_format, MsShortFormat);
            timeFormat_ = known(file->time_format, MsShortFormat);
            intensityFormat_ = known(file->intensity_format, MsLongFormat);
        }
    }

    // The numbers of the points as they are stored: point_count of them, or none where the file lacks
    // them or they couldn't be read. Masses and intensities of the same place belong together.
    MsNumbers masses() const { return {mass_values, massFormat_, point_count}; }
    MsNumbers times() const { return {time_values, timeFormat_, point_count}; }
    MsNumbers intensities() const { return {intensity_values, intensityFormat_, point_count}; }

    // The flagged peaks and the value of each flag: flag_count of them, or none, as a scan without points
    // has none to flag.
    MsNumbers flaggedPeaks() const { return {flagged_peaks, MsLongFormat, flag_count}; }
    MsNumbers flagValues() const { return {flag_values, MsShortFormat, flag_count}; }

private:
    // The format in which the toolkit reads for a code that needn't be one.
    static qint32 known(qint32 format, MsDataFormat fallback)
    {
        return ms_format_of_nc_type(ms_nc_type_of_format(format, NC_NAT), fallback);
    }

    qint32 massFormat_ = MsShortFormat;
    qint32 timeFormat_ = MsShortFormat;
    qint32 intensityFormat_ = MsLongFormat;
};

// The twelve numbers of a scan, such as its time and total intensity, without counts and points: quick,
// and without memory of its own, so it can be copied. The counts are missing values and the vectors null.
class MsScanHeader : public MsScanDraft
{
public:
    MsScanHeader(int ncid, qint32 number)
        : MsScanDraft(number), isRead_(ms_read_scan_header(ncid, this) != -1)
    {
        point_count = MsMissingLong;
        flag_count = MsMissingLong;
    }

    // Whether the numbers could be read. One that the file lacks is a missing value, and no failure.
    bool isRead() const { return isRead_; }

private:
    bool isRead_;
};

// A group of monitored masses. The groups of a file have to be looked for first: MsFile does it, and so
// does ms_inquire_groups.
class MsGroup : public MsOwned<MsGroupRecord>
{
public:
    MsGroup() = default;
    MsGroup(int ncid, qint32 number) : MsOwned(ncid, number)
    {
        if (const MsFileRecord *file = ms_file_record(ncid))
            massCount_ = std::min(group_mass_count, file->dimensions[MsDim_group_max_masses].size);
    }

    // The masses of the group and their times, one of each for a mass. There may be fewer than
    // group_mass_count: a file can claim more than its arrays hold.
    MsNumbers masses() const { return {group_masses, MsDoubleFormat, massCount_}; }
    MsNumbers samplingTimes() const { return {group_sampling_times, MsDoubleFormat, massCount_}; }
    MsNumbers delayTimes() const { return {group_delay_times, MsDoubleFormat, massCount_}; }

private:
    qint32 massCount_ = 0;
};

// The four global records of a file, and what stored numbers mean by them.
class MsGlobals : public MsGlobalRecords
{
public:
    // Empty records, for a routine of mstoolkit.h to fill; isRead() is false.
    MsGlobals() = default;

    // Reads the records of an open file.
    explicit MsGlobals(int ncid) : MsGlobals() // complete from here on: its end frees what was read
    {
        isRead_ = ms_read_global(ncid, &admin, &sample, &test, &raw) != -1;
    }

    MsGlobals(MsGlobals &&other) noexcept
        : MsGlobalRecords(other), isRead_(std::exchange(other.isRead_, false))
    {
        ms_init_global(0, &other.admin, &other.sample, &other.test, &other.raw);
        other.admin.error_log = nullptr;
    }
    MsGlobals &operator=(MsGlobals &&other) noexcept
    {
        std::swap(static_cast<MsGlobalRecords &>(*this), static_cast<MsGlobalRecords &>(other));
        std::swap(isRead_, other.isRead_);
        return *this;
    }
    ~MsGlobals()
    {
        ms_free(admin.error_log);
        ms_init_global(1, &admin, &sample, &test, &raw);
    }

    // Whether the records could be read whole.
    bool isRead() const { return isRead_; }

    // The number that a stored one stands for, by the scale and the offset of its variable. A file that
    // gives none stores the numbers as they are. Masses are in raw.mass_units, and so on.
    double mass(double stored) const { return stored * given(raw.mass_scale_factor, 1.0); }
    double time(double stored) const { return stored * given(raw.time_scale_factor, 1.0); }
    double intensity(double stored) const
    {
        return stored * given(raw.intensity_scale_factor, 1.0) + given(raw.intensity_add_offset, 0.0);
    }

private:
    static double given(double number, double otherwise)
    {
        return number == MsMissingDouble ? otherwise : number;
    }

    bool isRead_ = false;
};

// The distinct masses of a run, on a grid.
class MsCensus
{
public:
    // Takes the census with so many decimals, or fewer where there are too many masses. `scale` is the
    // factor of stored masses: raw.mass_scale_factor, or 1 where the file has none.
    MsCensus(int ncid, qint32 wantedDecimals, double scale)
        : decimals(wantedDecimals), isRead_(ms_read_mass_census(ncid, keys, &decimals, scale) != -1)
    {
    }

    // Whether the masses could be read; there are no keys otherwise. A run without masses has none, too.
    bool isRead() const { return isRead_; }

    QSet<qint32> keys; // mass x 10^decimals, rounded
    qint32
        decimals; // those of the keys; -1 where even whole numbers were too many, and some are left out

private:
    bool isRead_;
};

// The total intensity of each scan, and its time.
class MsTrace
{
public:
    // Reads the trace of a file with so many scans.
    MsTrace(int ncid, qint32 scanCount)
    {
        double *totals = nullptr;
        double *times = nullptr;
        isRead_ = ms_read_total_intensity(ncid, scanCount, &totals, &times) != -1;
        totals_.reset(totals);
        times_.reset(times);
        count_ = isRead_ ? scanCount : 0;
    }

    // Whether both could be read; both are empty otherwise.
    bool isRead() const { return isRead_; }

    // One number for each scan, as stored. One beyond the end of a file that is cut off is missing,
    // -9999.
    MsNumbers totalIntensities() const { return {totals_.get(), MsDoubleFormat, count_}; }
    MsNumbers times() const { return {times_.get(), MsDoubleFormat, count_}; }

private:
    struct Free {
        void operator()(double *numbers) const { ms_free(numbers); }
    };

    std::unique_ptr<double[], Free> totals_;
    std::unique_ptr<double[], Free> times_;
    qint32 count_ = 0;
    bool isRead_ = false;
};

// ---------------------------------------------------------------------------------------------------
// Files
// ---------------------------------------------------------------------------------------------------

// Records 0 to size() - 1 of a file, each read when the loop comes to it and released before the next.
// The file has to stay open. A file may claim two thousand million scans and have none: a program that
// reads files of strangers sets itself a limit.
template <class Record> class MsRange
{
public:
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Record;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = Record;

        Iterator(int ncid, qint32 number) : ncid_(ncid), number_(number) { }

        Record operator*() const { return Record(ncid_, number_); } // the caller's, to keep or to move
        Iterator &operator++()
        {
            ++number_;
            return *this;
        }
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++number_;
            return before;
        }
        bool operator==(const Iterator &other) const { return number_ == other.number_; }
        bool operator!=(const Iterator &other) const { return number_ != other.number_; }

    private:
        int ncid_;
        qint32 number_;
    };

    MsRange(int ncid, qint32 count) : ncid_(ncid), count_(std::max(count, 0)) { }

    qint32 size() const { return count_; }
    Iterator begin() const { return Iterator(ncid_, 0); }
    Iterator end() const { return Iterator(ncid_, count_); }

private:
    int ncid_;
    qint32 count_;
};

// What a new file is made for: the arguments of ms_open_write.
struct MsFileLayout {
    qint32 experiment_type = MsCentroidedSpectrum; // MsExperimentType
    qint32 scan_count = 1;
    qint32 instrument_count = 0;
    qint32 mass_format =
        MsFloatFormat; // MsDataFormat: the type of the vectors that scans are written from
    qint32 time_format = MsFloatFormat;
    qint32 intensity_format = MsFloatFormat;
    bool has_mass_values = true;
    bool has_time_values = false;
};

// An open file. It closes at the object's end.
class MsFile
{
public:
    // No file.
    MsFile() = default;

    // Opens a file for reading. No file where that fails, see ms_open_read.
    explicit MsFile(const char *path) : id_(ms_open_read(path)) { }

    // Creates a file for writing, over one of that name. No file where that fails, see ms_open_write.
    static MsFile create(const char *path, const MsFileLayout &layout)
    {
        return adopt(ms_open_write(
            path, layout.experiment_type, layout.scan_count, layout.instrument_count, layout.mass_format,
            layout.time_format, layout.intensity_format, layout.has_mass_values, layout.has_time_values));
    }

    // Takes over a file that a routine of mstoolkit.h opened; -1 is no file.
    static MsFile adopt(int ncid)
    {
        MsFile file;
        file.id_ = ncid;
        return file;
    }

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

    // The netCDF id, for the routines of mstoolkit.h and of netCDF; -1 for no file. It stays this
    // object's.
    int id() const { return id_; }

    // Hands the open file over: returns its id, which the caller has to close. This is no file
    // afterwards.
    int release() { return std::exchange(id_, -1); }

    // Closes the file. A writer who wants to know that all has reached the disk calls finish.
    void close()
    {
        if (isOpen())
            ms_close(release());
    }

    // Writes what is still in memory and closes the file. Returns false if something could not be
    // written.
    bool finish()
    {
        const bool written = isOpen() && nc_sync(id_) == NC_NOERR;
        close();
        return written;
    }

    // What the toolkit knows of the file, until it is closed; null for no file.
    const MsFileRecord *record() const { return ms_file_record(id_); }

    // Bytes that a file which is cut off lacks at its end; 0 for a whole one. See ms_missing_bytes.
    quint64 missingBytes() const { return ms_missing_bytes(id_); }

    bool isLibrary() const { return record() && record()->experiment_type == MsLibrarySpectrum; }

    // How many there are; 0 for no file.
    qint32 scanCount() const { return size(MsDim_scan_number); }
    qint32 entryCount() const { return isLibrary() ? scanCount() : 0; }
    qint32 instrumentCount() const { return size(MsDim_instrument_number); }
    qint32 groupCount() const
    {
        qint32 groups = 0;
        qint32 masses = 0;
        return ms_inquire_groups(id_, &groups, &masses) == -1 ? 0 : groups;
    }

    // What the file holds, read now. Numbers are counted from 0; one beyond the end isn't read.
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

    // All of a kind, one after the other; not of a file that closes in the same statement.
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

    // A file is the range of its scans.
    MsRange<MsScan>::Iterator begin() const { return scans().begin(); }
    MsRange<MsScan>::Iterator end() const { return scans().end(); }

    // Write to a file that was created; false at a refused write. See ms_write_global, ms_write_per_scan,
    // ms_write_instrument, ms_define_groups and ms_write_group. The records stay as they are.
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
