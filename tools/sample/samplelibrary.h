// The library entries of a sample.
#ifndef SAMPLELIBRARY_H
#define SAMPLELIBRARY_H

#include "samplerecords.h"

// Returns entry `index`, from 0, whose texts live as long as `texts`. The compounds take turns.
MsLibraryDraft sampleLibraryEntry(int index, SampleTexts *texts);

#endif // SAMPLELIBRARY_H
