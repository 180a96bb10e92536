// A .cdf file in the template's own spelling and layout, with all that readers of such files look for.
#ifndef CDFWRITER_H
#define CDFWRITER_H

#include "msfile.h"

#include "conversionlog.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <limits>
#include <vector>

// A range that grows with what is added; no number for NaN.
class GrowingRange
{
public:
    void add(double number);
    // Missing values where nothing was added.
    double min() const { return isEmpty() ? MsMissingDouble : min_; }
    double max() const { return isEmpty() ? MsMissingDouble : max_; }
    bool isEmpty() const { return !(min_ <= max_); }

private:
    double min_ = std::numeric_limits<double>::infinity();
    double max_ = -std::numeric_limits<double>::infinity();
};

class CdfWriter
{
public:
    // What is written before the first scan. Records and their texts have to outlive the writer.
    struct Head {
        MsFileLayout layout;            // instrument_count comes from `instruments`
        const MsGlobalRecords *globals; // with texts in UTF-8
        std::vector<const MsInstrumentRecord *>
            instruments;                     // may be empty: an unknown one is written then
        std::vector<const MsGroup *> groups; // of monitored masses
    };

    // Creates the file, over one of that name. The log gets the texts that the template has no room for.
    CdfWriter(const QByteArray &path, const Head &head, ConversionLog *log);

    // Appends a scan, in its order, and its entry to a library. Its masses ascend. Ranges that it lacks
    // are those of its points; points outside make one wider.
    bool add(const MsScanRecord &source, const MsLibraryRecord *entry = nullptr);

    // Writes what is known at the end only, and closes the file.
    bool finish();

    // Why a call returned false, as a part of a sentence.
    QString failure() const { return failure_; }

private:
    bool check(bool isWritten);
    bool writeGlobals();
    bool writeGroups();
    void warnOfLongTexts(const MsTable<MsVariableRow> &table, const void *record);

    const Head head_;
    ConversionLog *log_;
    MsFile file;
    GrowingRange masses;
    GrowingRange times;
    GrowingRange intensities;
    qint32 firstNumber = MsMissingLong;
    QString failure_;
};

// Returns the bytes of a text for a variable: Latin-1, as other programs take it, where textFromFile
// makes the same text of it again, else UTF-8.
QByteArray bytesOfText(const QString &text);

// Returns the moment in the form of a time stamp of the template, in UTC.
QByteArray stampOf(const QDateTime &moment);

#endif // CDFWRITER_H
