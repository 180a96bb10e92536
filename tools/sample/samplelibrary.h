// The library entries of a sample.
#ifndef SAMPLELIBRARY_H
#define SAMPLELIBRARY_H

#include "samplerecords.h"

// Entry `index`, from 0: the compounds in turn. Its texts are kept in `texts`.
MsLibraryDraft sampleLibraryEntry(int index, SampleTexts *texts);

#endif // SAMPLELIBRARY_H
