// What kind of sample is wanted.
#ifndef SAMPLEOPTIONS_H
#define SAMPLEOPTIONS_H

#include "mstoolkit.h"

enum class SampleKind { Gcms, Gcxgc, Tic, Library, Sim };

constexpr qint64 maxSamplePoints = 100'000'000; // of a file
constexpr int maxPointsPerScan = 1'000'000;

struct SampleOptions {
    SampleKind kind = SampleKind::Gcms;
    int scans = 0;
    int points = 0; // of each scan; 0 for as many as the signal has
    quint64 seed = 1;
    qint32 massFormat = MsFloatFormat;
    qint32 timeFormat = MsFloatFormat;
    qint32 intensityFormat = MsFloatFormat;

    bool hasMasses() const { return kind != SampleKind::Tic; }
    bool hasTimes() const { return kind == SampleKind::Tic; }
    bool isLibrary() const { return kind == SampleKind::Library; }
};

#endif // SAMPLEOPTIONS_H
