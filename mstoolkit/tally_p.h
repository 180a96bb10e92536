// Private to the toolkit: what is gathered of an open file while others read it, so that nobody has to
// read it again to find what can't be right. Memory doesn't grow with the points: it takes a bit for each
// scan.
#ifndef TALLY_P_H
#define TALLY_P_H

#include "agreement_p.h"
#include "findings_p.h"
#include "mstoolkit.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

struct MsFileState;

// A range of numbers.
struct MsNumberRange {
    void add(double number)
    {
        least = std::min(least, number);
        most = std::max(most, number);
    }
    bool is_known() const { return least <= most; }

    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
};

// What the attributes of a file say about its points.
struct MsClaims {
    double mass_scale = 1.0;
    double intensity_scale = 1.0;
    double intensity_offset = 0.0;
    MsNumberRange masses;
    MsNumberRange times;
    MsNumberRange intensities; // as they are stored, with room for rounding
};

// What the last census of masses came to.
struct MsCensusTally {
    bool is_done = false;
    bool is_read = false;
    qint64 keys = 0;
    // Of masses that all come to one key.
    qint64 seen = 0;
    MsNumberRange masses;
    MsFindings found; // by position
    // Where nearly all masses are multiples of 1, 0.1 or 0.05: of which, and how many masses aren't.
    double grid = 0.0;
    qint64 odd_keys = 0;
};

// Scans, a bit for each. It grows as a reader goes on.
class MsScanSet
{
public:
    qint32 size() const { return count; }

    bool contains(qint32 scan) const
    {
        const auto word = std::size_t(scan) / bits;
        return word < words.size() && (words[word] >> (std::size_t(scan) % bits) & 1) != 0;
    }

    // Returns false for a scan that is there already.
    bool insert(qint32 scan)
    {
        const auto word = std::size_t(scan) / bits;
        if (word >= words.size())
            words.resize(word + 1, 0);
        const quint64 mark = quint64(1) << (std::size_t(scan) % bits);
        if ((words[word] & mark) != 0)
            return false;
        words[word] |= mark;
        ++count;
        return true;
    }

private:
    static constexpr std::size_t bits = 64;

    std::vector<quint64> words;
    qint32 count = 0;
};

struct MsTally {
    // Of ms_read_global: the numbers of the record that it returned; the texts belong to others.
    bool knows_globals = false;
    MsRawGlobalRecord raw;
    MsClaims claims;
    QByteArray stamp;      // the beginning of experiment_date_time_stamp; null without one
    QByteArray file_stamp; // the same of netcdf_file_date_time_stamp

    // Of the scans' own numbers, which are read once, and the totals of a trace likewise.
    bool knows_scans = false;
    bool knows_totals = false;
    MsNumberRange times;
    MsAgreement trace_totals;
    double second_time = 0.0;   // where the first one is 0 and far before it
    qint64 points_of_scans = 0; // flags count, too

    MsCensusTally census;

    // Of scans that were read.
    MsScanSet seen;
    qint64 scans_with_order = 0; // with two points or more
    MsAgreement totals;
    MsAgreement rounded_totals; // the same, where one that was rounded to a whole number agrees
    MsAgreement stored_totals;  // with the sum as it is stored, where the file has a scale or an offset
    MsAgreement least_masses;
    MsAgreement most_masses;
    MsAgreement stored_masses; // the largest as it is stored, where the file has a scale
    MsNumberRange claimed_totals;
    bool has_failure = false;
    qint32 failed_scan = -1;                 // the last one
    std::optional<MsScanPlace> failed_place; // where its points were looked for, if not by its counters
    QString first_failure;                   // why the first one that failed couldn't be read

    MsFindings found;
};

// Takes note of the records that ms_read_global returned.
void ms_tally_globals(MsTally &tally, const MsAdminRecord &admin, const MsRawGlobalRecord &raw);

// Takes note of a scan that was read, or that couldn't be read. `place` is where its points were looked
// for, null where that was by the file's own counters.
void ms_tally_scan(MsFileState &file, const MsScanRecord &scan);
void ms_tally_failure(MsFileState &file, qint32 scan, const MsScanPlace *place = nullptr);

// Takes note of the next masses of a census that has no more than one key yet.
void ms_tally_masses(MsCensusTally &census, const void *masses, qint32 format, qint32 count);

// Takes note of the end of a census.
void ms_tally_census(MsCensusTally &census, bool is_read, const QSet<qint32> &keys, qint32 decimals);

#endif // TALLY_P_H
