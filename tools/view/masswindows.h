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

// Returns the windows as such a list, by their names.
QString textOf(const std::vector<ExtractedTrace> &windows);

// Returns the list with these masses behind it, as whole numbers; one that stands in it already, or is no
// mass, is left out.
QString withMasses(const QString &text, const std::vector<double> &masses);

#endif // MASSWINDOWS_H
