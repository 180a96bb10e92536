// The descriptions that stand in a sample: the global records and the instrument.
#ifndef SAMPLERECORDS_H
#define SAMPLERECORDS_H

#include "sampleoptions.h"

#include "msfile.h"

#include <QByteArray>

#include <deque>

// The texts of records that are written.
class SampleTexts
{
public:
    char *keep(const QByteArray &text)
    {
        texts.push_back(text);
        return texts.back().data();
    }
    void clear() { texts.clear(); }

private:
    std::deque<QByteArray> texts; // whose elements stay where they are
};

// What stands in the file for one of the sample's numbers: number / scale.
struct SampleScales {
    double mass;
    double time;
    double intensity;
};

constexpr qint32 sampleComponentCount = 2;

// Fills the records but for the ranges of the raw data.
void describeSample(const SampleOptions &options, const SampleScales &scales, SampleTexts *texts,
                    MsGlobalsDraft *globals);

// Returns component `index` of the instrument, from 0.
MsInstrumentDraft sampleComponent(int index, SampleTexts *texts);

#endif // SAMPLERECORDS_H
