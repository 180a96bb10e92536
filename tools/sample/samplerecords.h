// The descriptions in a sample: the global records and the instrument.
#ifndef SAMPLERECORDS_H
#define SAMPLERECORDS_H

#include "sampleoptions.h"

#include "msfile.h"

#include <QByteArray>

#include <deque>

// Owns the texts of records that are written.
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
    std::deque<QByteArray> texts; // its elements stay in their places
};

// The file stores each number of the sample divided by its scale.
struct SampleScales {
    double mass;
    double time;
    double intensity;
};

constexpr qint32 sampleComponentCount = 2;

// Fills all of the records but the ranges of the raw data. Their texts live as long as `texts`.
void describeSample(const SampleOptions &options, const SampleScales &scales, SampleTexts *texts,
                    MsGlobalsDraft *globals);

// Returns component `index` of the instrument, from 0.
MsInstrumentDraft sampleComponent(int index, SampleTexts *texts);

#endif // SAMPLERECORDS_H
