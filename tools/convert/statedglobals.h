// The global records of a run without what the template's defaults made up.
#ifndef STATEDGLOBALS_H
#define STATEDGLOBALS_H

#include "msrun.h"

#include "conversionlog.h"

#include <cstddef>
#include <functional>
#include <vector>

// Global records with texts in UTF-8.
struct StatedGlobals : MsGlobalsDraft {
    std::vector<QByteArray> texts; // which the records point to
};

// Returns the records with what the file itself says: a term that it doesn't state, or that the
// vocabulary lacks, has no code. The log gets the terms that the vocabulary lacks.
StatedGlobals statedGlobals(const MsRun &run, ConversionLog *log);

// Takes the template's defaults out of cleared records: their terms have no codes then.
void clearTerms(MsGlobalRecords *globals);

// Calls `use` with name and text of each attribute of the records that describes the run: who, when, what
// and how, but nothing of how the file is made. Texts of the records are UTF-8.
void forEachDescription(const MsGlobalRecords &globals,
                        const std::function<void(const QByteArray &name, const QString &text)> &use);

// Stores bytes as the text of a record's field at that offset, in place of the earlier text.
void replaceText(void *record, std::size_t field, const QByteArray &bytes);

// Sets the attribute of that name in the records; nothing for a name that forEachDescription doesn't use.
// The text is a new block in UTF-8, which the records own. Returns whether it was set.
bool setDescription(const char *name, const QString &text, MsGlobalRecords *globals);

#endif // STATEDGLOBALS_H
