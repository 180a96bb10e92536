// Windows of masses as people type them.
#ifndef MASSWINDOWS_H
#define MASSWINDOWS_H

#include "rundata.h"

#include <optional>

// Takes apart a list such as "43, 57-71, 100.05": masses and ranges with commas or semicolons between
// them. A mass takes in all that rounds to it in the digits that it has: 43 those from 42.5 to 43.5.
// Returns the windows with their texts as names, or nothing, and in `fault` a sentence, where a part
// can't be understood.
std::optional<std::vector<ExtractedTrace>> massWindows(const QString &text, QString *fault);

#endif // MASSWINDOWS_H
