// Private to the toolkit: the codes and sentences of the doubts.
#ifndef DOUBTTEXTS_P_H
#define DOUBTTEXTS_P_H

#include "tally_p.h"

#include <QString>
#include <QStringList>

struct MsDoubtRow {
    MsDoubtKind kind;
    const char *code;
    bool is_loss;
    bool is_settled; // whether further reading of points leaves it as it is
    // %1 is the file's name, %2 the count, %3 a total or another detail, %4 the example,
    // %5 a reason. Of [one|many] the count takes its part.
    const char *sentence;
};

// Returns the code and sentence of a kind.
const MsDoubtRow &ms_doubt_row(MsDoubtKind kind);

// Returns the row's sentence with the arguments in the places of %1 to %5, in words for that count.
// QString::arg would number the markers anew where a sentence leaves one out.
QString ms_doubt_text(const MsDoubtRow &row, qint64 count, const QStringList &arguments);

#endif // DOUBTTEXTS_P_H
