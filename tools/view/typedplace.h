// A place in a run as people type it.
#ifndef TYPEDPLACE_H
#define TYPEDPLACE_H

#include "msrun.h"

#include <optional>

struct TypedPlace {
    enum class Kind { Scan, Time, Average };

    Kind kind = Kind::Scan;
    qint32 scan = -1;
    double time = 0.0;
    MsInterval average{};
    std::optional<MsInterval> background{};
};

// Takes apart a scan such as "344" or "scan 344", a time such as "6.44" or "6 min", or a range of times
// such as "6.4-6.5", behind a comma with that of the background: "6.4-6.5, 6-6.2". A whole number without
// a unit is a scan. Returns nothing for another text.
std::optional<TypedPlace> typedPlace(const QString &text);

#endif // TYPEDPLACE_H
