// Private to the toolkit: the list of doubts that is being made, and what the findings are worded with.
#ifndef DOUBTLIST_P_H
#define DOUBTLIST_P_H

#include "msdoubts.h"
#include "tally_p.h"

#include <QByteArray>

struct MsDoubtRow;

class MsDoubtList
{
public:
    // `name` is the file's name as the sentences show it. The tally is the file's and outlives the list.
    MsDoubtList(const QString &file_name, const MsDoubtOptions &options, const MsTally &file_tally)
        : name(file_name), settled_only(options.settledOnly), tally(file_tally)
    {
    }

    // Adds a doubt, unless only settled ones are wanted and this one isn't. `detail` and `example` are
    // what its sentence calls them.
    void add(MsDoubtKind kind, qint64 count, const QString &detail, const QString &example,
             bool is_system_error = false);

    // Returns them in the order of their kinds.
    QList<MsDoubt> in_order() const;

private:
    struct Listed {
        const MsDoubtRow *row;
        MsDoubt doubt;
    };

    const QString name;
    const bool settled_only;
    const MsTally &tally;
    QList<Listed> listed;
};

// Whether two numbers are the same but for a thousandth.
bool ms_is_near(double one, double other);

// Returns a text such as "3 to 5".
QString ms_range_text(double least, double most);

// Returns the text of an attribute of a variable, or of NC_GLOBAL; null where it has none, or one of more
// than 200 characters, which nobody would show.
QByteArray ms_text_attribute(int ncid, int varid, const char *name);

// Returns the number of an attribute of a variable; `otherwise` where it has none, or not just one.
double ms_number_attribute(int ncid, int varid, const char *name, double otherwise);

#endif // DOUBTLIST_P_H
