// What can't be right about an opened run: doubts, each with a code, a count, an example and a sentence.
//
// The readers of mstoolkit.h take a file as it is and pass no judgement. These routines say what of it
// can't be right. They change nothing that a reader returns, and read no points a second time: what is
// said of points was gathered while ms_read_per_scan and ms_read_mass_census read them.
//
// The codes, in the order in which they are listed. L: scans or numbers are lost. P: hangs on points, so
// it isn't settled before each scan has been read once.
//
// clang-format off
//     code                    count of   meaning
//     cut-off             L   bytes      the file ends before its header says
//     unfinished          L   records    records behind those that the header counts: its writer was interrupted
//     trailing-bytes          bytes      bytes behind the end that the header gives, not all 0, which no scan misses
//     read-failed         LP  reads      the system couldn't read the file
//     changed-file        LP  1          the file was changed while it was open
//     dashed-names        L   names      of scan_index, point_count, flag_count, the three kinds of points, and the type of a
//                                        library: with dashes in place of underscores, by which they aren't found
//     unwritten-scans     L   scans      point_count or time were never written: they hold the fill value
//     bad-counts          L   scans      a point_count that is no number from 0 on
//     bad-flag-counts         scans      the same of flag_count, in some scans only
//     no-scan-index       L   scans      scan_index is missing or unusable, though point_count adds up to all points
//     falling-scan-index      scans      has its points before those of the scan before
//     overlapping-scans       scans      begins among the points of another scan
//     scans-beyond-end    L   scans      begins before the first point or ends behind the last one
//     unowned-points          positions  no scan has them, though they hold other than fill values and zeros
//     unreadable-scans    LP  scans      can't be read; the sentence says why the first one can't
//     unreadable-masses   L   scans      the masses can't be read, so that a run comes as a trace
//     missing-masses      L   points     the scans have points, and the file neither masses nor times for them
//     no-intensities      L   scans      the run has neither masses nor a total intensity
//     bad-totals          L   scans      of a trace: a total intensity that is missing, infinite or NaN
//     mass-scale              1          a scale_factor of 0, below 0, infinite or NaN, or that the ranges of scans lack
//     mass-offset             1          mass_values has an add_offset other than 0, which isn't used
//     intensity-scale         1          the same of the intensities
//     intensity-offset        1          an add_offset that is infinite or NaN
//     merged-masses           1          the scale_factor leaves fewer than two masses, where more are stored
//     single-mass             points     all have the same mass, so that a run comes as a trace
//     wrong-totals        P   scans      total_intensity isn't the sum of the intensities; see below
//     bad-masses          P   masses     infinite or NaN
//     fill-masses         P   masses     never written: the fill value
//     negative-masses     P   masses     below 0
//     zero-masses         P   masses     0
//     odd-masses              masses     not multiples of 1, 0.1 or 0.05, as 99 in 100 different ones are
//     equal-masses        P   scans      three masses or more, and all the same
//     unordered-masses    P   scans      the masses don't rise, though those of nearly all scans do
//     bad-intensities     P   points     infinite or NaN
//     fill-intensities    P   points     never written: the fill value
//     unplaced-points     P   points     a mass without a place in the table of masses, which the caller counts
//     missing-times           scans      no time, or the missing value
//     bad-times               scans      a time that is infinite or NaN
//     negative-times          scans      a time below 0
//     zero-time               1          the first scan has the time 0, far before the others
//     restarting-times        scans      at which the times begin anew
//     falling-times           scans      a time before that of the scan before
//     equal-times             scans      a time that the scan before has, too, and not by rounding
//     time-gap                1          the step to the last scan is longer than all others together
//     odd-times               scans      of a run whose scans are evenly spaced: a step that no pause explains
//     uneven-times            scans      of a GCxGC run: more than a step out of an even spacing
//     mass-format             1          the attribute names another format than the stored one
//     intensity-format        1          the same of the intensities
//     time-units              1          another text than those of the template and minutes, or an empty one
//     time-range              1          scans were taken outside global_time_min and global_time_max
//     acquisition-date        1          experiment_date_time_stamp isn't a date in the form of the template, or one that can be
//     starting-scan           1          starting_scan_number isn't the first actual_scan_number, give or take one
//     group-counts            groups     more masses than there is room for, or a first scan that isn't there
//     mass-range          P   scans      masses outside global_mass_min and global_mass_max
//     intensity-range     P   scans      intensities outside global_intensity_min and global_intensity_max
//     scan-mass-range     P   scans      masses outside the scan's own mass_range_min and mass_range_max; see below
//     scan-time-range     P   scans      point times outside time_range_min and time_range_max
// clang-format on
//
// A total intensity is wrong where it is off by more than a tenth of a percent in more than a hundredth
// of the scans, and else where it is off by more than a hundredth. A range is wrong where points lie
// outside by more than rounding: a mass unit, half of one where the range isn't in whole masses, or a
// thousandth of the largest intensity. Where nearly all scans (99 in 100) agree with their points to the
// last digits, one that doesn't is wrong, too.
#ifndef MSDOUBTS_H
#define MSDOUBTS_H

#include <QList>
#include <QString>

struct MsDoubt {
    const char *code;   // of the list above; constant
    qint64 count;       // how often, in what the list says
    QString example;    // the first place or the value concerned, such as "scan 3"; may be empty
    QString text;       // one sentence: plain text, with the file's name in double quotes
    bool isLoss;        // L of the list above
    bool isSystemError; // a read failed in the system: more than a warning
};

struct MsDoubtOptions {
    double modulation = 0.0;       // above 0: a GCxGC run, whose scans have to be evenly spaced
    qint64 unplacedPoints = 0;     // points whose mass has no place in the table of masses,
    qint32 firstUnplacedScan = -1; // and the first scan with one
    bool settledOnly = false;      // leaves out what further reading of points may change
};

// Lists what is known to be doubtful of a file that ms_open_read opened. `name` is the file's name as the
// sentences show it. The first call for a file reads the numbers of scans that say where their points lie
// and when they were taken. Nothing is listed for a right file, and for an unknown id. Scans are counted
// from 0.
QList<MsDoubt> ms_list_doubts(int ncid, const QString &name, const MsDoubtOptions &options = {});

// Returns why the last scan that ms_read_per_scan failed to read couldn't be read, as the rest of a
// sentence such as "scan_index is missing". Null where none has failed.
QString ms_scan_failure(int ncid);

// Returns how many scans of the file weren't read yet by ms_read_per_scan; 0 for an unknown id.
qint32 ms_count_unread_scans(int ncid);

// Reads all scans that weren't read yet, for the list to be whole. -1: unknown id, or a file that claims
// more than it can hold, which is given up.
int ms_read_other_scans(int ncid);

#endif // MSDOUBTS_H
