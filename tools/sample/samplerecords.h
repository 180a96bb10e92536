// The descriptions that stand in a sample: the global records and the instrument.
#ifndef SAMPLERECORDS_H
#define SAMPLERECORDS_H

#include "sampleoptions.h"

#include <QByteArray>

#include <deque>

// The texts of records that are written.
class SampleTexts
{
public:
    char *keep(const QByteArray &text)
    {
        texts_.push_back(text);
        return texts_.back().data();
    }
    void clear() { texts_.clear(); }

private:
    std::deque<QByteArray> texts_; // whose elements stay where they are
};

// What stands in the file for one of the sample's numbers: number / scale.
struct SampleScales {
    double mass;
    double time;
    double intensity;
};

constexpr qint32 sample_component_count = 2;

// Fills the records but for the ranges of the raw data.
void describe_sample(const SampleOptions &options, const SampleScales &scales, SampleTexts *texts,
                     MsAdminRecord *admin, MsSampleRecord *sample, MsTestRecord *test,
                     MsRawGlobalRecord *raw);

MsInstrumentRecord sample_component(int index, SampleTexts *texts);

#endif // SAMPLERECORDS_H
