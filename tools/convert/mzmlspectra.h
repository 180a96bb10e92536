// The scans of a run as the mzML library asks for them: from several threads, nearly in order.
#ifndef MZMLSPECTRA_H
#define MZMLSPECTRA_H

#include "msrun.h"

#include <map>
#include <mutex>
#include <vector>

#include <pwiz/data/msdata/SpectrumListBase.hpp>

// What each spectrum of a run says alike.
struct SpectrumFacts {
    std::vector<qint32> scans;   // of the run, in the order in which they are written
    std::vector<qint32> numbers; // the same scans' numbers, each once
    std::vector<double> totals;
    std::vector<double> times; // in timeUnit; NaN unknown
    bool isSelectedIons = false;
    pwiz::cv::CVID representation = pwiz::cv::MS_centroid_spectrum;
    pwiz::cv::CVID polarity = pwiz::cv::CVID_Unknown;
    pwiz::cv::CVID intensityUnit = pwiz::cv::MS_number_of_detector_counts;
    pwiz::cv::CVID timeUnit = pwiz::cv::UO_second;
};

class RunSpectra : public pwiz::msdata::SpectrumListBase
{
public:
    // Run and facts have to outlive the list.
    RunSpectra(const MsRun &run, const SpectrumFacts &facts) : run_(run), facts_(facts) { }

    size_t size() const override { return facts_.scans.size(); }
    const pwiz::msdata::SpectrumIdentity &spectrumIdentity(size_t index) const override;
    pwiz::msdata::SpectrumPtr spectrum(size_t index, bool getBinaryData) const override;

    // Whether the points of a spectrum were put in the order of their masses.
    bool hasSorted() const { return hasSorted_; }
    // Whether there was too little memory for a spectrum. What was written is of no use then.
    bool isExhausted() const { return isExhausted_; }
    // Whether a scan could no longer be read. What was written is of no use then, either.
    bool isLacking() const { return isLacking_; }

private:
    MsSpectrum take(size_t index, MsCompound *compound) const;
    pwiz::msdata::SpectrumPtr make(size_t index) const;
    void addPoints(const MsSpectrum &scan, pwiz::msdata::Spectrum *spectrum) const;

    const MsRun &run_;
    const SpectrumFacts &facts_;
    mutable std::mutex mutex;                     // of the run and all below
    mutable std::map<size_t, MsSpectrum> waiting; // read from front to back, and not asked for yet
    mutable size_t next = 0;
    mutable bool hasSorted_ = false;
    mutable bool isExhausted_ = false;
    mutable bool isLacking_ = false;
};

// Returns the text as XML can hold it: without control characters and what is no character.
std::string xmlText(const QString &text);

// Returns a number as text that reads back to the same double.
std::string exactText(double number);

#endif // MZMLSPECTRA_H
