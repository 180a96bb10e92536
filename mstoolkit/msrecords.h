// The toolkit's records with an owner: those that were read release themselves, those to be written come
// cleared. msfile.h has the file that they are read from and written to.
//
// What can't be read doesn't throw: the record is there, and its isRead() is false. It holds what was
// read until then; the rest is missing or null. Objects that own something can be moved, not copied; one
// that was moved from is empty. They outlive their file.
#ifndef MSRECORDS_H
#define MSRECORDS_H

#include "msnumbers.h"
#include "mstoolkit.h"

#include <algorithm>
#include <memory>
#include <utility>

// The routines of mstoolkit.h for each kind of record, for the classes below: how it is cleared, and
// freed first with `release`, which field is its number, and how it is read (-1 for a failure).
template <class Record> struct MsRoutines;

template <> struct MsRoutines<MsScanRecord> {
    static void init(char release, MsScanRecord *scan) { ms_init_per_scan(release, scan, nullptr); }
    static qint32 &number(MsScanRecord *scan) { return scan->scan_number; }
    static int read(int ncid, MsScanRecord *scan) { return ms_read_per_scan(ncid, scan, nullptr); }
};

template <> struct MsRoutines<MsLibraryRecord> {
    static void init(char release, MsLibraryRecord *entry) { ms_init_per_scan(release, nullptr, entry); }
    static qint32 &number(MsLibraryRecord *entry) { return entry->entry_index; }
    static int read(int ncid, MsLibraryRecord *entry)
    {
        // In a file that isn't a library the routine succeeds and reads nothing.
        const MsFileRecord *file = ms_file_record(ncid);
        const bool isLibrary = file && file->experiment_type == MsLibrarySpectrum;
        return isLibrary ? ms_read_per_scan(ncid, nullptr, entry) : -1;
    }
};

template <> struct MsRoutines<MsInstrumentRecord> {
    static void init(char release, MsInstrumentRecord *component)
    {
        ms_init_instrument(release, component);
    }
    static qint32 &number(MsInstrumentRecord *component) { return component->component_index; }
    static int read(int ncid, MsInstrumentRecord *component)
    {
        return ms_read_instrument(ncid, component);
    }
};

template <> struct MsRoutines<MsGroupRecord> {
    static void init(char release, MsGroupRecord *group) { ms_init_group(release, group); }
    static qint32 &number(MsGroupRecord *group) { return group->group_number; }
    static int read(int ncid, MsGroupRecord *group) { return ms_read_group(ncid, group); }
};

// ---------------------------------------------------------------------------------------------------
// Records to be written
// ---------------------------------------------------------------------------------------------------

// A record to be filled and written: cleared, so that a field that isn't filled is missing in the file,
// and with the number of its place there, from 0. Its texts and vectors are the program's own: nothing
// frees them.
template <class Record> struct MsDraft : Record {
    // Makes the record with that number, from 0.
    explicit MsDraft(qint32 number) : Record()
    {
        MsRoutines<Record>::init(0, this);
        MsRoutines<Record>::number(this) = number;
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

// Stores a text, in Latin-1, in the field at that offset of a record that owns its texts. The text that
// was there is freed.
inline void ms_replace_text(void *record, std::size_t field, const QString &text)
{
    ms_free(*reinterpret_cast<char **>(static_cast<char *>(record) + field));
    ms_store_variant(record, field, QVariant(text), NC_CHAR);
}

// A record that was read from a file. It owns its texts and vectors and frees them at its end.
template <class Record> class MsOwned : public Record
{
public:
    // An empty record, for a routine of mstoolkit.h to fill; isRead() is false.
    MsOwned()
    {
        MsRoutines<Record>::init(0, this);
        MsRoutines<Record>::number(this) = -1;
    }

    // Reads the record with that number, from 0, of an open file. isRead() is false where that fails.
    MsOwned(int ncid, qint32 number)
        : MsOwned(number, [ncid](Record *record) { return MsRoutines<Record>::read(ncid, record); })
    {
    }

    MsOwned(MsOwned &&other) noexcept : Record(other), isRead_(std::exchange(other.isRead_, false))
    {
        MsRoutines<Record>::init(0, &other);
    }
    MsOwned &operator=(MsOwned &&other) noexcept
    {
        MsOwned taken(std::move(other)); // frees in the end what this record held
        std::swap(static_cast<Record &>(*this), static_cast<Record &>(taken));
        isRead_ = taken.isRead_;
        return *this;
    }
    ~MsOwned() { MsRoutines<Record>::init(1, this); }

    // Whether the record could be read whole.
    bool isRead() const { return isRead_; }

protected:
    // Reads the record with that number by `read`, which returns -1 where that fails.
    template <class Read>
    MsOwned(qint32 number, Read read) : MsOwned() // complete from here on: its end frees what was read
    {
        MsRoutines<Record>::number(this) = number;
        isRead_ = read(static_cast<Record *>(this)) != -1;
    }

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
    // An empty scan; isRead() is false.
    MsScan() = default;

    // Reads the scan with that number, from 0, of an open file. See ms_read_per_scan.
    MsScan(int ncid, qint32 number) : MsOwned(ncid, number) { takeFormats(ncid); }

    // Likewise, but its points lie at `place`, whatever the file says. See ms_read_scan_at.
    MsScan(int ncid, qint32 number, const MsScanPlace &place)
        : MsOwned(number, [&](MsScanRecord *scan) { return ms_read_scan_at(ncid, place, scan); })
    {
        takeFormats(ncid);
    }

    // The numbers of the points as they are stored: point_count of them, or none where the file lacks
    // them or they couldn't be read. MsGlobals has their scales and units. These views, and those below,
    // show memory of the scan: they end with it.
    MsNumbers masses() const { return {mass_values, massFormat_, point_count}; }
    MsNumbers times() const { return {time_values, timeFormat_, point_count}; }
    MsNumbers intensities() const { return {intensity_values, intensityFormat_, point_count}; }

    // The numbers of the flagged peaks and the value of each flag: flag_count of them, or none, as a scan
    // without points has none to flag.
    MsNumbers flaggedPeaks() const { return {flagged_peaks, MsLongFormat, flag_count}; }
    MsNumbers flagValues() const { return {flag_values, MsShortFormat, flag_count}; }

private:
    void takeFormats(int ncid)
    {
        if (const MsFileRecord *file = ms_file_record(ncid)) {
            massFormat_ = known(file->mass_format, MsShortFormat);
            timeFormat_ = known(file->time_format, MsShortFormat);
            intensityFormat_ = known(file->intensity_format, MsLongFormat);
        }
    }

    // The format in which the toolkit reads for a code that needn't be one.
    static qint32 known(qint32 format, MsDataFormat fallback)
    {
        return ms_with_format(format, [](auto *) { return true; }) ? format : fallback;
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
    // Reads the numbers of the scan with that number, from 0, of an open file. See ms_read_scan_header.
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
    // An empty group; isRead() is false.
    MsGroup() = default;

    // Reads the group with that number, from 0, of an open file. See ms_read_group.
    MsGroup(int ncid, qint32 number) : MsOwned(ncid, number)
    {
        if (const MsFileRecord *file = ms_file_record(ncid))
            massCount_ = std::min(group_mass_count, file->dimensions[MsDim_group_max_masses].size);
    }

    // The masses of the group and their times, one of each for a mass. There may be fewer than
    // group_mass_count: a file can claim more than its arrays hold. They are as stored; the template has
    // no attribute for their units. The views show memory of the group: they end with it.
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

    // Reads the records of an open file. See ms_read_global.
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
        MsGlobals taken(std::move(other)); // frees in the end what these records held
        std::swap(static_cast<MsGlobalRecords &>(*this), static_cast<MsGlobalRecords &>(taken));
        isRead_ = taken.isRead_;
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
    // gives none stores the numbers as they are. The result is in raw.mass_units, raw.time_units and
    // raw.intensity_units.
    double mass(double stored) const { return stored * ms_given(raw.mass_scale_factor, 1.0); }
    double time(double stored) const { return stored * ms_given(raw.time_scale_factor, 1.0); }
    double intensity(double stored) const
    {
        return stored * ms_given(raw.intensity_scale_factor, 1.0)
            + ms_given(raw.intensity_add_offset, 0.0);
    }

private:
    bool isRead_ = false;
};

// The distinct masses of a run, on a grid.
class MsCensus
{
public:
    // Takes the census with so many decimals, or fewer where there are too many masses. `scale` is the
    // factor of stored masses: raw.mass_scale_factor, or 1 where the file has none. See
    // ms_read_mass_census.
    MsCensus(int ncid, qint32 wantedDecimals, double scale)
        : decimals(wantedDecimals), isRead_(ms_read_mass_census(ncid, keys, &decimals, scale) != -1)
    {
    }

    // Whether the masses could be read; there are no keys otherwise. A run without masses has none, too.
    bool isRead() const { return isRead_; }

    QSet<qint32> keys; // mass x 10^decimals, rounded
    qint32 decimals; // of the keys; -1 where there were too many even as whole numbers: some are left out

private:
    bool isRead_;
};

// The total intensity of each scan, and its time.
class MsTrace
{
public:
    // No trace.
    MsTrace() = default;

    // Reads the trace of an open file with so many scans. See ms_read_total_intensity.
    MsTrace(int ncid, qint32 scanCount) : count_(scanCount)
    {
        double *totals = nullptr;
        double *times = nullptr;
        isRead_ = ms_read_total_intensity(ncid, scanCount, &totals, &times) != -1;
        totals_.reset(totals);
        times_.reset(times);
    }

    // Whether both could be read; both are empty otherwise.
    bool isRead() const { return isRead_; }

    // One number for each scan, as stored; -9999 where a file that is cut off has none, and where the
    // system refuses to read it. The views show memory of the trace: they end with it.
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

#endif // MSRECORDS_H
