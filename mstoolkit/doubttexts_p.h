// Private to the toolkit: the codes and sentences of the doubts.
#ifndef DOUBTTEXTS_P_H
#define DOUBTTEXTS_P_H

#include "findings_p.h"

struct MsDoubtRow {
    MsDoubtKind kind;
    const char *code;
    bool is_loss;
    bool is_settled; // whether further reading of points leaves it as it is
    // %1 is the file's name, %2 the count, %3 a total or another detail, %4 the example,
    // %5 a reason; see ms_counted_text.
    const char *sentence;
};

// Returns the code and sentence of a kind.
const MsDoubtRow &ms_doubt_row(MsDoubtKind kind);

#endif // DOUBTTEXTS_P_H
