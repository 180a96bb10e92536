// The command line of aia-convert.
#ifndef CONVERTOPTIONS_H
#define CONVERTOPTIONS_H

#include "fileformat.h"
#include "outputfile.h"

#include <QStringList>

#include <optional>
#include <vector>

// The tables of a run that CSV can hold.
enum class CsvTable { Trace, Scans, Points, Matrix, Map };

// A time range of a run, in minutes, both ends in it.
struct MinuteRange {
    double from;
    double to;
};

// What applies to each file alike.
struct ConversionOptions {
    bool quiet = false;
    bool verbose = false;
    bool strict = false;

    // Of mzML.
    bool isCompressed = true;
    bool inMinutes = false;

    // Of CSV.
    CsvTable table = CsvTable::Trace;
    char delimiter = ',';
    std::vector<double> masses; // with a column of the trace each
    double binWidth = 0.0;      // of the matrix; 0 for unit masses

    // The length of a modulation in seconds; a guess of the run where it isn't given.
    std::optional<double> modulation;

    // Spectra of a run for MSP.
    std::vector<int> scans;
    std::vector<double> minutes;
    std::vector<MinuteRange> sums;

    // What to take of a file with several MS levels or polarities.
    std::optional<int> msLevel;
    std::optional<bool> isPositive;
};

// One file to be made of another.
struct ConversionPair {
    QString input;
    QString output;
    FileFormat format; // of the output
};

struct ConvertOptions {
    ConversionOptions conversion;
    std::vector<ConversionPair> pairs;
    OutputFile::Existing existing = OutputFile::Existing::Keep;
    int jobs = 1;
    QString part;              // where a worker makes its file before it is moved
    QStringList passedOptions; // for a worker: the command line without names and jobs
};

// Returns the exit code where there is nothing to convert, after a report in case of a mistake. Nothing
// has been written then.
std::optional<int> parseCommandLine(const QStringList &arguments, ConvertOptions *target);

#endif // CONVERTOPTIONS_H
