// The compounds that the samples are made of.
#ifndef SAMPLECOMPOUNDS_H
#define SAMPLECOMPOUNDS_H

#include "mstoolkit.h"

struct SampleCompound {
    const char *name;
    const char *formula;
    qint32 cas_number; // without its dashes
    qint32 nominal_mass;
    double accurate_mass;   // of the molecule of the most abundant isotopes
    double chemical_mass;   // of natural isotopes
    double retention_index; // on a column of 5% phenyl, linear between the n-alkanes
    double second_time;     // seconds on a polar second column
    float melting_point;    // degrees Celsius
    float boiling_point;
};

// The same compound's structure and names.
struct SampleStructure {
    const char *smiles;
    const char *wiswesser;
    const char *condensed;
};

struct SampleNames {
    const char *index_name;
    const char *others[4];
};

// One peak of a spectrum of 70 eV, its abundance in percent of the base peak.
struct SampleFragment {
    int mass;
    int percent;
};

constexpr int max_sample_fragments = 14;

// The main peaks from m/z 33 on; unused places have a mass of 0.
struct SampleSpectrum {
    SampleFragment fragments[max_sample_fragments];
};

// Row by row one compound, in the order of their elution.
extern const MsTable<SampleCompound> sample_compounds;
extern const MsTable<SampleStructure> sample_structures;
extern const MsTable<SampleNames> sample_names;
extern const MsTable<SampleSpectrum> sample_spectra;

#endif // SAMPLECOMPOUNDS_H
