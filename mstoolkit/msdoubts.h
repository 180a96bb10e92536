// What can't be right about an opened run: doubts, each with a code, a count, an example and a sentence.
//
// The readers of mstoolkit.h take a file as it is and pass no judgement. These routines say what of it
// can't be right. They change nothing that a reader returns, and read no points a second time: what is
// said of points was gathered while ms_read_per_scan and ms_read_mass_census read them.
//
// The codes, in the order in which they are listed. L: scans or numbers are lost, while the data that is
// there may be right.
//
// clang-format off
//     code                   count of    meaning
//     cut-off             L  bytes       the file ends before its header says
//     unfinished          L  records     records behind those that the header counts: its writer was interrupted
//     trailing-bytes         bytes       bytes behind the end that the header gives
//     unwritten-scans     L  scans       point_count or time were never written: they hold the fill value
//     bad-counts          L  scans       a point_count that is no number from 0 on
//     bad-flag-counts        scans       the same of flag_count, in some scans only
//     no-scan-index       L  scans       scan_index is missing or unusable, though point_count adds up to all points
//     falling-scan-index     scans       begins before the scan before it
//     overlapping-scans      scans       begins among the points of another scan
//     scans-beyond-end    L  scans       begins before the first point or ends behind the last one
//     unowned-points         positions   no scan has them, though they hold other than fill values and zeros
//     no-intensities      L  scans       the run has neither masses nor a total intensity
//     bad-totals          L  scans       of a run without masses: a total intensity that is missing, infinite or NaN
//     mass-scale             1           a scale_factor of 0, below 0, infinite or NaN
//     intensity-scale        1           the same of the intensities
//     intensity-offset       1           an add_offset that is infinite or NaN
//     missing-times          scans       no time, or the missing value
//     bad-times              scans       a time that is infinite or NaN
//     restarting-times       scans       at which the times begin anew
//     falling-times          scans       a time before that of the scan before
//     equal-times            scans       a time that the scan before has, too
//     time-gap               1           one step in time is longer than all others together
//     uneven-times           scans       of a GCxGC run: more than half a step out of an even spacing
//     mass-format            1           the attribute names another format than the stored one
//     intensity-format       1           the same of the intensities
// clang-format on
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

#endif // MSDOUBTS_H
