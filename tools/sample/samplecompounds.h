// The compounds that the samples are made of.
#ifndef SAMPLECOMPOUNDS_H
#define SAMPLECOMPOUNDS_H

#include "mstoolkit.h"

struct SampleCompound {
    const char *name;
    const char *formula;
    qint32 casNumber; // without its dashes
    qint32 nominalMass;
    double accurateMass;   // of the molecule of the most abundant isotopes
    double chemicalMass;   // of natural isotopes
    double retentionIndex; // on a column of 5% phenyl, linear between the n-alkanes
    double secondTime;     // seconds on a polar second column
    float meltingPoint;    // degrees Celsius
    float boilingPoint;
};

// The same compound's structure and names.
struct SampleStructure {
    const char *smiles;
    const char *wiswesser;
    const char *condensed;
};

struct SampleNames {
    const char *indexName;
    const char *others[4];
};

// One peak of a spectrum of 70 eV, its abundance in percent of the base peak.
struct SampleFragment {
    int mass;
    int percent;
};

constexpr int maxSampleFragments = 14;

// The main peaks from m/z 33 on. Unused places have a mass of 0.
struct SampleSpectrum {
    SampleFragment fragments[maxSampleFragments];
};

// The same row of each table belongs to the same compound, in the order of their elution.
extern const MsTable<SampleCompound> sampleCompounds;
extern const MsTable<SampleStructure> sampleStructures;
extern const MsTable<SampleNames> sampleNames;
extern const MsTable<SampleSpectrum> sampleSpectra;

#endif // SAMPLECOMPOUNDS_H
