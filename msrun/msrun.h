// A run of an AIA MS file for programs that want its spectra, read with judgement: where a file
// contradicts itself or lacks something, what can be known is worked out, and a doubt says so. The
// toolkit under it (msfile.h, mstoolkit.h) takes a file as it is.
//
//     const MsRun run(QStringLiteral("run.cdf"));
//     if (!run.isOpen())
//         return fail(run.error());
//     for (const MsSpectrum &spectrum : run)
//         for (qint32 i = 0; i < spectrum.size(); ++i)
//             use(spectrum.time(), spectrum.masses()[i], spectrum.intensities()[i]);
//
// Scans are counted from 0. Numbers are double; one that isn't known is NaN, a text that isn't known is
// null. Memory doesn't grow with the run but where a call returns a number for each scan.
//
// What is judged, with the code of the doubt that says so:
//   * scans-in-a-row: scan_index is missing, or contradicts the counts, which add up to all points. The
//     scans lie one behind the other.
//   * counts-from-index: point_count is missing, or scans run into the next ones though scan_index
//     ascends. Each scan ends where the next one begins. Flags count, too.
//   * made-times: missing times are made from the durations of the scans, else from the run's length.
//   * time-units: the file doesn't count in seconds. Times are as stored.
//   * ignored-factor: a scale_factor of 0, or a factor or an offset that is no number, is left out.
//   * claimed-scans (a loss): the file claims more scans than it can hold. The rest is left out.
//
// Points that were never written, or are infinite or no number, are no data: see MsSpectrum. A scan that
// was never written, or that lies behind the end of a file that is cut off, comes as one that can't be
// read. Numbers have the type that they are stored in, whatever the attributes say.
//
// The toolkit's rules hold here, too: nothing is locked, so calls come one at a time, for whatever run;
// its messages go to MessageLoggerInterface, and std::bad_alloc passes through. A run can be moved; one
// that was moved from may only be assigned to or destroyed.
#ifndef MSRUN_H
#define MSRUN_H

#include "mscompound.h"
#include "msdoubts.h"
#include "msmodulation.h"
#include "msrunfacts.h"
#include "msspectrum.h"

#include <QList>
#include <QString>

#include <functional>
#include <iterator>
#include <memory>
#include <vector>

struct MsRunOptions {
    // The program that looks at files of the newer kinds first, see mslook.h. Where none is named, it is
    // Hsk.Dorvane.ImportAiaMs.Look in ../lib/dorvane, seen from the running program's folder, where a
    // build and an installation have it. Other programs name it; the CMake package has AiaMs_PLUGIN_DIR.
    QString lookProgram;
};

class MsRun
{
public:
    enum class Kind {
        Spectra, // scans with masses
        Trace,   // scans with a time and a total each, and no masses
        Library  // spectra of compounds, in no order of time
    };

    // What a long operation calls now and then, with the part that is done, 0 to 1. It stops the
    // operation by returning false.
    using Progress = std::function<bool(double part)>;

    // Opens the file of that name. It stays open until the object's end.
    explicit MsRun(const QString &name, const MsRunOptions &options = {});
    MsRun(MsRun &&other) noexcept;
    MsRun &operator=(MsRun &&other) noexcept;
    ~MsRun();

    // Whether the file could be opened. If not, error() is a sentence that says why, with the file's
    // name; the run then has no scans, and facts() and globals() are empty.
    bool isOpen() const;
    QString error() const;

    QString name() const; // as it was given
    Kind kind() const;

    // Scans, or entries of a library.
    qint32 size() const;

    // The netCDF id of the open file, for routines that read what is above a run; -1 for none.
    int fileId() const;

    // Points of all scans, those that several have counted for each and those without data, too; 0 where
    // there are no masses. And positions of the file's point axis, which a right file's scans share out.
    qint64 pointCount() const;
    qint64 positionCount() const;

    // Whether MsSpectrum::storedMasses and storedIntensities are there for scans with points.
    bool hasStoredMasses() const;
    bool hasStoredIntensities() const;

    // Whether reading scans makes no call of the netCDF library from now on, see ms_reads_scans_alone.
    // Compounds, instruments, groups and doubts do make calls.
    bool readsScansAlone() const;

    // Returns a scan. One that can't be read, or isn't there, says so. Scans that are asked for from
    // front to back are read ahead.
    MsSpectrum spectrum(qint32 index) const;

    // Returns the scan whose time is nearest to this one, the first of several; -1 where no scan has a
    // time.
    qint32 scanAt(double time) const;

    // A run is the range of its scans.
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = MsSpectrum;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = MsSpectrum;

        Iterator(const MsRun *run, qint32 place) : run_(run), place_(place) { }

        MsSpectrum operator*() const { return run_->spectrum(place_); }
        Iterator &operator++()
        {
            ++place_;
            return *this;
        }
        bool operator==(const Iterator &other) const { return place_ == other.place_; }
        bool operator!=(const Iterator &other) const { return place_ != other.place_; }

    private:
        const MsRun *run_;
        qint32 place_;
    };
    Iterator begin() const { return Iterator(this, 0); }
    Iterator end() const { return Iterator(this, size()); }

    // Whether the times of scans are in seconds. If not, they are as the file has them.
    bool hasSeconds() const;

    // Return a number for each scan: its time, and its total as the file gives it.
    std::vector<double> times() const;
    std::vector<double> storedTotals() const;

    // Return a number for each scan from its points, NaN for one that can't be read: the sum of all
    // intensities, or of those whose masses lie in a window, for each of the windows. All scans are read
    // once. Where `progress` stops them, they return nothing.
    std::vector<double> summedTotals(const Progress &progress = {}) const;
    std::vector<std::vector<double>> extractedTraces(const std::vector<MsInterval> &windows,
                                                     const Progress &progress = {}) const;

    // Guesses the length of the modulation from the trace, see msmodulation.h: from the stored totals, or
    // from the summed ones where most of those are missing. None for a library, and where times aren't in
    // seconds.
    MsModulation modulation(const Progress &progress = {}) const;

    // Return the peaks of all scans whose times lie in the interval, as one spectrum: intensities of the
    // same mass are added up, and averaged() divides them by the number of those scans, those that can't
    // be read aside. Peaks less than `width` above the lowest one of them count as one, at the mean of
    // their masses, weighted by intensity; by default, only equal masses do.
    MsPeaks summed(const MsInterval &times, double width = 0.0, const Progress &progress = {}) const;
    MsPeaks averaged(const MsInterval &times, double width = 0.0, const Progress &progress = {}) const;

    // Returns the compound of an entry; an empty one where the run isn't a library.
    MsCompound compound(qint32 index) const;

    // Return the components of the instrument and the groups of monitored masses: the first 10,000 of
    // them, and of groups no more than have a million masses, as a file can claim any number.
    std::vector<MsInstrument> instruments() const;
    std::vector<MsGroup> groups() const;

    // What the file says of the run as a whole, as plain values and as the toolkit's records.
    const MsRunFacts &facts() const;
    const MsGlobals &globals() const;

    // Returns what is known to be doubtful by now: the toolkit's doubts (msdoubts.h) but those that
    // judgement has mended, and then those of the list above. All are known once each scan was read.
    QList<MsDoubt> doubts() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

#endif // MSRUN_H
