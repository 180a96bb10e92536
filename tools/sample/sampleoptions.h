// What a sample is asked to be.
#ifndef SAMPLEOPTIONS_H
#define SAMPLEOPTIONS_H

#include "mstoolkit.h"

enum class SampleKind { Gcms, Gcxgc, Tic, Library, Sim };

constexpr qint64 max_sample_points = 100'000'000; // of a file
constexpr int max_points_per_scan = 1'000'000;

struct SampleOptions {
    SampleKind kind = SampleKind::Gcms;
    int scans = 0;
    int points = 0; // of each scan; 0 for as many as the signal gives
    quint64 seed = 1;
    qint32 mass_format = MsFloatFormat;
    qint32 time_format = MsFloatFormat;
    qint32 intensity_format = MsFloatFormat;

    bool has_masses() const { return kind != SampleKind::Tic; }
    bool has_times() const { return kind == SampleKind::Tic; }
    bool is_library() const { return kind == SampleKind::Library; }
};

#endif // SAMPLEOPTIONS_H
